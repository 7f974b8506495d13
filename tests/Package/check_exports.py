"""The version script, the built library and the public headers name the same functions."""
import argparse
import re
import subprocess
import sys
from pathlib import Path

NODE = "ORV_3"


def names_of_map(path):
    text = re.sub(r"/\*.*?\*/", "", path.read_text(), flags=re.S)
    node = re.fullmatch(r"\s*(\w+)\s*\{\s*global:(.*?)local:\s*\*;\s*\};\s*", text, flags=re.S)
    if not node or node.group(1) != NODE:
        sys.exit(f"{path}: not one node {NODE} with a list of names and local: *")
    names = [name.strip() for name in node.group(2).split(";") if name.strip()]
    if len(names) != len(set(names)):
        sys.exit(f"{path}: a name stands there twice")
    return set(names)


def names_of_library(library, nm):
    lines = subprocess.run([nm, "-D", "--defined-only", library], check=True, capture_output=True,
                           text=True).stdout.splitlines()
    names = set()
    for line in lines:
        kind, symbol = line.split()[-2:]
        if kind == "A" and symbol.split("@")[0] == NODE:
            continue
        name, _, version = symbol.partition("@@")
        if version != NODE:
            sys.exit(f"{library}: {symbol} is not of version {NODE}")
        names.add(name)
    return names


def names_of_headers(folder):
    names = set()
    for header in sorted(folder.rglob("*.h")):
        text = re.sub(r"/\*.*?\*/|//[^\n]*", "", header.read_text(), flags=re.S)
        text = re.sub(r"^\s*#\s*define\b.*$", "", text, flags=re.M)
        names.update(re.findall(r"\bORV_API\b[^;{(]*?(\w+)\s*\(", text))
    return names


def differences(first, first_name, second, second_name):
    for name in sorted(first - second):
        yield f"{name}: in {first_name}, not in {second_name}"
    for name in sorted(second - first):
        yield f"{name}: in {second_name}, not in {first_name}"


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--library", dest="binary", required=True)
    parser.add_argument("--map", required=True, type=Path)
    parser.add_argument("--headers", required=True, type=Path)
    parser.add_argument("--nm", default="nm")
    arguments = parser.parse_args()
    listed = names_of_map(arguments.map)
    built = names_of_library(arguments.binary, arguments.nm)
    declared = names_of_headers(arguments.headers)
    found = list(differences(listed, "the version script", built, "the library"))
    found += differences(listed, "the version script", declared, "the headers")
    print("\n".join(found) or f"{len(listed)} names, the same in all three")
    return 1 if found or not listed else 0


if __name__ == "__main__":
    sys.exit(main())
