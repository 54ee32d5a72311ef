"""What the archives and packages have in common: the version, the manifest of a client, and zip files that are the same
whenever they are made of the same."""

import datetime
import re
import subprocess
import zipfile

# The first time that an archive can tell.
EARLIEST = datetime.datetime(1980, 1, 1, tzinfo=datetime.timezone.utc)


def version_of(root):
    return re.search(r"project\(KespCommObj VERSION ([\d.]+)", (root / "CMakeLists.txt").read_text()).group(1)


def commit_seconds(root):
    """Since 1970, of the present commit; 0 where there is none."""
    result = subprocess.run(["git", "-C", str(root), "log", "-1", "--format=%ct"], capture_output=True, text=True,
                            check=False)
    return int(result.stdout) if result.returncode == 0 else 0


def client_manifest(root):
    return (root / "packaging" / "portable" / "client.manifest").read_bytes()


def archive_time(seconds):
    """Of the parts that an archive tells; it counts in twos. Build tools copy a file again only when its time is a
    later one, so a later commit gives later times."""
    told = max(datetime.datetime.fromtimestamp(seconds, datetime.timezone.utc), EARLIEST)
    return (told.year, told.month, told.day, told.hour, told.minute, told.second & ~1)


def write_archive(output, found, seconds):
    """`found` is content by place, `seconds` the time since 1970 that each file gets."""
    partial = output.with_name(output.name + ".partial")
    with zipfile.ZipFile(partial, "w", zipfile.ZIP_DEFLATED, compresslevel=9) as archive:
        for place in sorted(found, key=str):
            entry = zipfile.ZipInfo(str(place), archive_time(seconds))
            entry.compress_type = zipfile.ZIP_DEFLATED
            entry.external_attr = 0o644 << 16
            archive.writestr(entry, found[place])
    partial.replace(output)
