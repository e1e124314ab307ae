"""Checks a reference that Doxygen made: it names every export, and no link in it is broken.

usage: check.py EXPORTS_MAP TAG_FILE HTML_DIR
"""
import html.parser
import pathlib
import re
import sys
import urllib.parse
import xml.etree.ElementTree


def exported_names(exports_map):
    """Names as a reader writes them: Dirent::setAttr, without argument types."""
    for line in pathlib.Path(exports_map).read_text().splitlines():
        found = re.match(r'\s*"?([\w:~]+)(\(.*\)")?;', line)
        if found:
            yield found[1]


def documented_names(tag_file):
    for compound in xml.etree.ElementTree.parse(tag_file).iter("compound"):
        scope = compound.findtext("name") + "::" if compound.get("kind") in (
            "class", "struct", "namespace") else ""
        for member in compound.iter("member"):
            yield scope + member.findtext("name")


class Page(html.parser.HTMLParser):
    def __init__(self, path):
        super().__init__()
        self.links, self.anchors = [], set()
        self.feed(path.read_text())

    def handle_starttag(self, tag, attributes):
        for name, value in attributes:
            if name in ("id", "name"):
                self.anchors.add(value)
            if name in ("href", "src"):
                self.links.append(value)


def broken_links(directory):
    pages = {path.resolve(): Page(path) for path in pathlib.Path(directory).rglob("*.html")}
    for path, page in pages.items():
        for link in page.links:
            target = urllib.parse.urlsplit(link)
            if target.scheme:
                continue
            file = (path.parent / urllib.parse.unquote(target.path)).resolve() if target.path else path
            anchor = urllib.parse.unquote(target.fragment)
            if not file.exists() or (anchor and file in pages and anchor not in pages[file].anchors):
                yield f"{path.name}: broken link {link}"


def main(exports_map, tag_file, html_dir):
    exports = set(exported_names(exports_map))
    if not exports:
        sys.exit(f"{exports_map}: no exports")
    missing = exports - set(documented_names(tag_file))
    complaints = [f"{name}: exported, but not in the reference" for name in sorted(missing)]
    complaints += broken_links(html_dir)
    if complaints:
        sys.exit("\n".join(complaints))


main(*sys.argv[1:])
