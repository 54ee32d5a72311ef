"""Reads a shortcut of Windows (.lnk) as [MS-SHLLINK] describes it: the script host of Wine only writes them."""

import struct
import types

HAS_ID_LIST, HAS_LINK_INFO, HAS_NAME, HAS_RELATIVE_PATH, HAS_FOLDER, HAS_ARGUMENTS = (1 << bit for bit in range(6))


def read_shortcut(path):
    """Its target, arguments and folder."""
    data = path.read_bytes()
    flags, place = struct.unpack_from("<I", data, 20)[0], 76
    target = ""
    if flags & HAS_ID_LIST:
        place += 2 + struct.unpack_from("<H", data, place)[0]
    if flags & HAS_LINK_INFO:
        size, base = struct.unpack_from("<I12xI", data, place)
        target = data[place + base:data.index(b"\0", place + base)].decode("ascii")
        place += size
    texts = {}
    for flag in (HAS_NAME, HAS_RELATIVE_PATH, HAS_FOLDER, HAS_ARGUMENTS):
        if flags & flag:
            end = place + 2 + 2 * struct.unpack_from("<H", data, place)[0]
            # Wine counts the end of the text as well.
            texts[flag] = data[place + 2:end].decode("utf-16-le").rstrip("\0")
            place = end
    return types.SimpleNamespace(target=target, folder=texts[HAS_FOLDER], arguments=texts[HAS_ARGUMENTS])
