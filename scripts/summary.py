#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Prints a table of the events in a file that vorna-devserver has written: one line for each name."""

import collections
import json
import sys

names = collections.Counter()
values = collections.defaultdict(collections.Counter)
users = set()
with open(sys.argv[1], encoding="utf-8") as lines:
    for line in lines:
        event = json.loads(line)
        names[event["name"]] += 1
        if event["customValue"]:
            values[event["name"]][event["customValue"]] += 1
        users.add((event["deviceData"]["appId"], event["deviceData"]["userId"]))

print(f"{'event':<34}{'count':>6}  custom values")
for name, count in sorted(names.items()):
    shown = ", ".join(
        f"{value} × {times}" if times > 1 else value for value, times in values[name].most_common(4)
    )
    more = len(values[name]) - 4
    print(f"{name:<34}{count:>6}  {shown}{f' and {more} more' if more > 0 else ''}")
print(f"{'all':<34}{names.total():>6}")
for app, user in sorted(users):
    print(f"application {app}, user {user}")
