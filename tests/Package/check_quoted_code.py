"""The README and the manual tell the truth: quoted code stands word for word in a compiled file, quoted output is what
the program prints now, links lead somewhere, and the lists that claim to be complete are."""
import argparse
import re
import subprocess
import sys
from pathlib import Path

BLOCK = re.compile(r"(?:<!-- (quote|output): ([^\n]*?) -->\n)?```(\w*)\n(.*?)^```$", re.S | re.M)
LINK = re.compile(r"\]\(([^)#]+)(?:#[^)]*)?\)")


def quoted_source(root, reference):
    path, _, name = reference.partition(" ")
    text = (root / path).read_text()
    if not name:
        return text
    found = re.search(rf"^// quoted: {re.escape(name)}\n(.*?)^// end of quote$", text, re.S | re.M)
    return found.group(1) if found else None


def wrong_blocks(root, page, programs):
    for kind, reference, language, body in BLOCK.findall(page.read_text()):
        if kind == "quote":
            if quoted_source(root, reference) != body:
                yield f"the quote of {reference} differs from its source"
        elif kind == "output":
            printed = subprocess.run([programs[reference]], capture_output=True, text=True, check=True).stdout
            if printed.strip() != body.strip():
                yield f"the output of {reference} is not what it prints now"
        elif language in ("c", "cpp"):
            yield f"code that no compiler has seen: {body.splitlines()[0]}"


def dead_links(root, page):
    for target in LINK.findall(page.read_text()):
        if "://" not in target and not (page.parent / target).exists():
            yield f"the link to {target} leads nowhere"


def missing_names(root):
    errors = (root / "docs/errors.md").read_text()
    constants = re.findall(r"\bErr[A-Z]\w+(?= = )", (root / "include/ErrorHandling.h").read_text())
    exports = re.findall(r"^\s+(\w+);$", (root / "cmake/ORVImg.map").read_text(), re.M)
    for name in constants + exports:
        if not re.search(rf"\b{name}\b", errors):
            yield f"docs/errors.md does not name {name}"
    architecture = (root / "docs/architecture.md").read_text()
    for top in root.iterdir():
        if not top.is_dir() or top.name.startswith((".", "build", "out")):
            continue
        for folder in [top, *top.rglob("*/")]:
            name = folder.relative_to(root).as_posix()
            if any(entry.is_file() for entry in folder.iterdir()) and f"`{name}`" not in architecture:
                yield f"docs/architecture.md does not name the folder {name}"


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--root", required=True, type=Path)
    parser.add_argument("--program", action="append", default=[], help="NAME=PATH of a program whose output is quoted")
    arguments = parser.parse_args()
    programs = dict(entry.split("=", 1) for entry in arguments.program)
    root = arguments.root
    pages = [root / "README.md", *sorted((root / "docs").glob("*.md"))]
    found = [f"{page.relative_to(root)}: {text}" for page in pages
             for check in (wrong_blocks(root, page, programs), dead_links(root, page)) for text in check]
    found += missing_names(root)
    quotes = sum(bool(kind) for page in pages for kind, *_ in BLOCK.findall(page.read_text()))
    if "examples/minimal.cpp" not in [reference for _, reference, *_ in BLOCK.findall((root / "README.md").read_text())]:
        found.append("README.md does not quote examples/minimal.cpp")
    print("\n".join(found) or f"{len(pages)} pages, {quotes} quotes")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
