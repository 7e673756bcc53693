#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Runs clang-tidy over the sources given as arguments, as build/dev compiles them, and prints what it finds.

A source without findings is not analysed again until it, a header that it includes, its compile command or the rules
change; build/tidy remembers. The headers are those that the last build recorded.
"""

import concurrent.futures
import hashlib
import json
import os
import re
import subprocess
import sys

build = "build/dev"
passed = "build/tidy"


def run(*command):
    return subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True, check=False).stdout


def dependencies():
    """The files that each object was compiled from."""
    files = {}
    for line in run("ninja", "-C", build, "-t", "deps").splitlines():
        if line.startswith("    "):
            files[current].append(os.path.join(build, line.strip()))
        elif line:
            current = line.split(": #deps")[0]
            files[current] = []
    return files


contents = {}


def fingerprint(path):
    if path not in contents:
        with open(path, "rb") as file:
            contents[path] = hashlib.sha256(file.read()).digest()
    return contents[path]


def key_of(entry, recorded):
    """Empty if it is not known what the source includes."""
    arguments = entry["command"].split()
    files = recorded.get(arguments[arguments.index("-o") + 1], [])
    if not files or not all(os.path.exists(path) for path in files):
        return ""
    digest = hashlib.sha256(rules)
    digest.update(entry["command"].encode())
    for path in sorted({entry["file"], *files}):
        digest.update(path.encode() + fingerprint(path))
    return digest.hexdigest()


def analyse(path):
    entry = commands.get(os.path.abspath(path))
    if entry is None:
        return ""
    key = key_of(entry, recorded)
    if key and os.path.exists(f"{passed}/{key}"):
        return ""
    result = subprocess.run(
        ["clang-tidy", "-p", build, "--quiet", "--extra-arg=-Wno-unknown-warning-option", path],
        stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, check=False)
    lines = [line for line in result.stdout.splitlines() if re.search(r"(error|warning):", line)]
    found = [line for line in lines if not line.startswith("/usr/")]
    if result.returncode != 0 and not lines:
        found = [f"{path}: clang-tidy fails: {result.stderr.strip()[-500:]}"]
    if key and not found:
        with open(f"{passed}/{key}", "w", encoding="utf-8"):
            pass
    return "\n".join(found)


os.makedirs(passed, exist_ok=True)
with open(f"{build}/compile_commands.json", encoding="utf-8") as file:
    commands = {entry["file"]: entry for entry in json.load(file)}
rules = run("clang-tidy", "--version").encode() + fingerprint(".clang-tidy")
recorded = dependencies()
with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as workers:
    lines = {line for found in workers.map(analyse, sys.argv[1:]) for line in found.splitlines()}
print("\n".join(sorted(lines)), end="\n" if lines else "")
