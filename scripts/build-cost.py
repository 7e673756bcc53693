#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Prints what builds have cost, in seconds by folder:  build-cost.py [BUILD-FOLDER...]

Sums the duration of each command in the folders' .ninja_log; without arguments, of every build under build/. These are
elapsed times of single commands: processor time as long as the machine runs nothing else and no more commands at once
than it has processors, more than that otherwise.
"""

import collections
import glob
import os
import sys


def commands(log):
    """The last run of each command, as (first output, seconds)."""
    last = {}
    with open(log, encoding="utf-8") as lines:
        for line in lines:
            if not line.startswith("#"):
                start, end, _, output, command = line.rstrip("\n").split("\t")
                last[output] = (command, (int(end) - int(start)) / 1000)
    # A command with several outputs has one line for each.
    return {command: (output, seconds) for output, (command, seconds) in last.items()}.values()


def group(output):
    if output.endswith((".gch", ".pch")):
        return "precompiled headers"
    if "_verify_interface_header_sets.dir/" in output:
        return "public headers alone"
    if output.endswith(".o"):
        return "compile " + output.split("/CMakeFiles/")[0]
    return "link, generate, discover tests"


folders = sys.argv[1:] or [
    os.path.dirname(log)
    for pattern in ("build/*/.ninja_log", "build/deb/vorna/obj*/.ninja_log", "build/dev/install-test/*/.ninja_log")
    for log in sorted(glob.glob(pattern))
]
for folder in folders:
    seconds = collections.Counter()
    count = collections.Counter()
    for output, duration in commands(os.path.join(folder, ".ninja_log")):
        seconds[group(output)] += duration
        count[group(output)] += 1
    print(f"{folder}: {sum(seconds.values()):.0f} s in {count.total()} commands")
    for name, total in seconds.most_common():
        print(f"{total:9.1f} s {count[name]:5}  {name}")
