#!/usr/bin/env python3
"""Names the places of stacks: places.py DLL <text, in which "KespCommObj.dll+0x1234" becomes a function and a line."""
import os
import re
import subprocess
import sys

library = sys.argv[1]
name = os.path.basename(library)
place = re.compile(re.escape(name) + r"\+0x([0-9a-f]+)")
lines = sys.stdin.read().splitlines()
offsets = sorted({found for line in lines for found in place.findall(line)})
names = {}
if offsets:
    headers = subprocess.run(["x86_64-w64-mingw32-objdump", "-p", library], capture_output=True, text=True, check=True)
    base = int(re.search(r"ImageBase\s+([0-9a-f]+)", headers.stdout).group(1), 16)
    # A return address is behind its call.
    asked = [hex(base + int(offset, 16) - 1) for offset in offsets]
    said = subprocess.run(["addr2line", "-Cfse", library, *asked], capture_output=True, text=True, check=True)
    pairs = said.stdout.splitlines()
    for offset, function, line in zip(offsets, pairs[::2], pairs[1::2]):
        names[offset] = f"{function.split('(')[0][-90:]} {line}"
for line in lines:
    print(place.sub(lambda found: names[found.group(1)], line))
