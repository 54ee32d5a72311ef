#!/usr/bin/env python3
"""Takes the time of its making out of a type library that widl wrote, so that two builds are the same:
type_library_time.py FILE.tlb

widl notes it twice: as a text, and as a number of seconds. Both become the beginning of 1970. It has to run with
TZ=UTC: in another zone an hour that comes twice would be ambiguous.
"""

import calendar
import pathlib
import re
import struct
import sys
import time

NOTE = re.compile(rb"(Created by WIDL version \S+ at )(\w{3} \w{3} [ \d]\d \d\d:\d\d:\d\d \d{4})")
FIXED = b"Thu Jan  1 00:00:00 1970"


def without_time(data):
    noted = NOTE.search(data)
    if not noted:
        sys.exit("there is no note of widl's in it; is this another version?")
    seconds = calendar.timegm(time.strptime(noted.group(2).decode(), "%a %b %d %H:%M:%S %Y"))
    number = struct.pack("<I", seconds)
    if noted.group(2) != FIXED and data.count(number) != 1:
        sys.exit(f"the number of seconds, {seconds}, is in it {data.count(number)} times")
    return NOTE.sub(rb"\g<1>" + FIXED, data.replace(number, bytes(4)) if noted.group(2) != FIXED else data)


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    path = pathlib.Path(sys.argv[1])
    path.write_bytes(without_time(path.read_bytes()))


if __name__ == "__main__":
    main()
