#!/usr/bin/python3
# SPDX-License-Identifier: Apache-2.0
"""Draws the pictures and videos of the examples: ridges at dusk, and a rolling sea that loops.

Needs python3-numpy and ffmpeg; run it in this folder. The results are committed.
"""
import subprocess

import numpy as np

WIDTH, HEIGHT = 1200, 600


def mix(first, second, share):
    share = np.asarray(share)[..., None]
    return np.asarray(first, float) * (1 - share) + np.asarray(second, float) * share


def sky(top, bottom):
    return np.repeat(mix(top, bottom, np.linspace(0, 1, HEIGHT) ** 1.4)[:, None, :], WIDTH, axis=1)


def ridge(seed, roughness):
    """A line of hills: noise in octaves."""
    random = np.random.default_rng(seed)
    x = np.linspace(0, 1, WIDTH)
    line = np.zeros(WIDTH)
    for octave in range(1, 9):
        points = random.random(2**octave + 2)
        line += np.interp(x * 2**octave, np.arange(points.size), points) * roughness**octave
    return (line - line.min()) / (line.max() - line.min())


def glow(picture, x, y, radius, colour, strength):
    rows, columns = np.mgrid[0:HEIGHT, 0:WIDTH]
    distance = np.hypot(columns - x, rows - y)
    return mix(picture, colour, strength * np.exp(-((distance / radius) ** 2)))


def mountains():
    picture = sky((38, 28, 84), (255, 150, 106))
    picture = glow(picture, 820, 360, 260, (255, 214, 150), 0.8)
    picture = glow(picture, 820, 360, 46, (255, 244, 214), 1.0)
    rows = np.arange(HEIGHT)[:, None]
    layers = [(3, 0.55, 250, 170, (150, 92, 132)), (8, 0.52, 330, 150, (98, 64, 120)),
              (21, 0.5, 410, 130, (60, 44, 98)), (34, 0.5, 490, 110, (27, 27, 58))]
    for seed, roughness, base, height, colour in layers:
        top = base + height * (1 - ridge(seed, roughness))
        edge = np.clip(rows - top[None, :], 0, 1)
        picture = picture * (1 - edge[..., None]) + np.asarray(colour, float) * edge[..., None]
    return picture


def sea(turn):
    """The sea at a point of its loop; 0 and 1 look the same."""
    picture = sky((14, 44, 92), (120, 190, 214))
    picture = glow(picture, 380, 200, 210, (255, 240, 200), 0.7)
    x = np.linspace(0, 2 * np.pi, WIDTH)
    rows = np.arange(HEIGHT)[:, None]
    for layer in range(6):
        depth = layer / 5
        phase = 2 * np.pi * turn * (1 if layer % 2 else -1)
        swell = np.sin(x * (2 + layer) + phase + layer * 1.7) + 0.4 * np.sin(x * (5 + 2 * layer) - phase * 2)
        top = 250 + 58 * layer + (10 + 8 * depth) * swell
        edge = np.clip((rows - top[None, :]) / 2, 0, 1)
        colour = mix((84, 160, 196), (12, 30, 66), depth)
        picture = picture * (1 - edge[..., None]) + colour * edge[..., None]
    return picture


def encode(picture):
    return np.clip(picture, 0, 255).astype(np.uint8).tobytes()


def ffmpeg(arguments, frames):
    subprocess.run(["ffmpeg", "-y", "-loglevel", "error", "-f", "rawvideo", "-pix_fmt", "rgb24", "-s",
                    f"{WIDTH}x{HEIGHT}", "-r", "25", "-i", "-", *arguments], input=frames, check=True)


ffmpeg(["-q:v", "4", "mountains.jpg"], encode(mountains()))
ffmpeg(["-q:v", "4", "waves.jpg"], encode(sea(0)))
FRAMES = 75
video = b"".join(encode(sea(frame / FRAMES)) for frame in range(FRAMES))
tone = ["-f", "lavfi", "-i", "sine=frequency=110:duration=3", "-af", "volume=0.05", "-vf", "scale=640:320", "-shortest"]
ffmpeg([*tone, "-c:v", "libx264", "-pix_fmt", "yuv420p", "-crf", "30", "-c:a", "aac", "-b:a", "48k", "-movflags",
        "+faststart", "waves.mp4"], video)
ffmpeg([*tone, "-c:v", "libvpx", "-b:v", "300k", "-c:a", "libvorbis", "waves.webm"], video)
