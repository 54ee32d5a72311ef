"""What a project file of .NET, or a part of one, comes to for given properties: its values and its files."""

import re
import xml.etree.ElementTree as ElementTree


def holds(condition):
    """Of a condition whose properties are put in: comparisons joined by "And"."""
    for part in re.split(r"\s+And\s+", condition):
        one, operator, other = re.fullmatch(r"\s*'([^']*)'\s*(==|!=)\s*'([^']*)'\s*", part).groups()
        if (one == other) != (operator == "=="):
            return False
    return True


class ProjectFile:
    """`properties` by name, and `files`: the attributes of each None item that counts. Given properties are as if a
    project had set them before; what the file itself sets comes over them."""

    def __init__(self, text, **given):
        self.properties, self.files = dict(given), []
        for group in ElementTree.fromstring(text):
            kind = group.tag.rpartition("}")[2]
            if kind not in ("PropertyGroup", "ItemGroup") or not self.counts(group):
                continue
            for element in filter(self.counts, group):
                name = element.tag.rpartition("}")[2]
                if kind == "PropertyGroup":
                    self.properties[name] = self.filled(element.text or "")
                elif name == "None":
                    self.files.append({key: self.filled(value) for key, value in element.attrib.items()})

    def filled(self, text):
        return re.sub(r"\$\((\w+)\)", lambda found: self.properties.get(found.group(1), ""), text)

    def counts(self, element):
        return holds(self.filled(element.get("Condition", "'' == ''")))
