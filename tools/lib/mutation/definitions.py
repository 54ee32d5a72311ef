"""The names of the library's constants and enumerators, which values can be exchanged for."""

import re

NAMED = re.compile(
    r"constexpr (?:const )?(?:std::u?int\d+_t|std::size_t|int|unsigned|long|DWORD|ULONG|UINT|LONG|WORD|SHORT|HRESULT"
    r"|wchar_t|char|const wchar_t\*|const char\*)(?: const)?\*? (k\w+)(?:\[\])?(?= =|\{)"
)
ENUMERATION = re.compile(r"enum class (\w+)[^{;]*\{(.*?)\}", re.S)
ERRORS = re.compile(r"^\s+(ERR_\w+)\b", re.M)


def definitions(sources):
    """Names of constants that may be changed by one, and for each enumerator of a scoped enumeration the next one."""
    names, enumerators = set(), {}
    for source in sources:
        names |= set(NAMED.findall(source)) | set(ERRORS.findall(source))
        for name, body in ENUMERATION.findall(source):
            members = re.findall(r"(?:^|,)\s*(\w+)", re.sub(r"//[^\n]*", "", body))
            for at, member in enumerate(members):
                if len(members) > 1:
                    enumerators[(name, member)] = members[(at + 1) % len(members)]
    return names, enumerators
