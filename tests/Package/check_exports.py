"""The version script, the built library and the public headers name the same functions and the same classes."""
import argparse
import re
import subprocess
import sys
from pathlib import Path

NODE = "ORV_3"


# What a class of the version script brings along: its members, and what the compiler makes for it.
CLASS_PATTERNS = ("{}::*", "typeinfo?for?{}", "typeinfo?name?for?{}", "vtable?for?{}")


def separated(text):
    return [name.strip() for name in text.split(";") if name.strip()]


def names_of_map(path):
    """The functions, and the classes as the patterns spell them."""
    text = re.sub(r"/\*.*?\*/", "", path.read_text(), flags=re.S)
    node = re.fullmatch(r'\s*(\w+)\s*\{\s*global:(.*?)extern "C\+\+"\s*\{(.*?)\};\s*local:\s*\*;\s*\};\s*', text,
                        flags=re.S)
    if not node or node.group(1) != NODE:
        sys.exit(f"{path}: not one node {NODE} with a list of names, a list of classes and local: *")
    names, patterns = separated(node.group(2)), separated(node.group(3))
    classes = {pattern.removesuffix("::*") for pattern in patterns if pattern.endswith("::*")}
    if set(patterns) != {form.format(name) for name in classes for form in CLASS_PATTERNS}:
        sys.exit(f"{path}: a class has not all of its patterns, or a pattern has no class")
    if len(names) != len(set(names)) or len(patterns) != len(set(patterns)):
        sys.exit(f"{path}: a name stands there twice")
    return set(names), classes


def as_pattern(name):
    """A class as the version script spells it: ? stands for what its patterns can't hold."""
    return re.sub(r"[<>*]", "?", name)


def class_of(symbol, library):
    """The class that a C++ symbol belongs to."""
    name = re.sub(r"^(typeinfo name for|typeinfo for|vtable for|(non-)?virtual thunk to) ", "", symbol)
    if name != symbol and "::" not in name:
        return name
    found = re.match(r"(\w+(?:<[^()]*?>)?)::", name)
    if not found:
        sys.exit(f"{library}: {symbol} is of no class")
    return found.group(1)


def names_of_library(library, nm, demangled):
    options = ["-D", "-C"] if demangled else ["-D"]
    lines = subprocess.run([nm, *options, "--defined-only", library], check=True, capture_output=True,
                           text=True).stdout.splitlines()
    names = set()
    for line in lines:
        kind, symbol = line.split(maxsplit=2)[1:]
        if kind == "A" and symbol.split("@")[0] == NODE:
            continue
        name, _, version = symbol.partition("@@")
        if version != NODE:
            sys.exit(f"{library}: {symbol} is not of version {NODE}")
        names.add(name)
    return names


def functions_and_classes(library, nm):
    functions = {name for name in names_of_library(library, nm, False) if not name.startswith("_Z")}
    members = names_of_library(library, nm, True) - functions
    return functions, {as_pattern(class_of(name, library)) for name in members}


def names_of_headers(folder):
    functions, classes = set(), set()
    for header in sorted(folder.rglob("*.h")):
        text = re.sub(r"/\*.*?\*/|//[^\n]*", "", header.read_text(), flags=re.S)
        text = re.sub(r"^\s*#\s*define\b.*$", "", text, flags=re.M)
        classes.update(re.findall(r"\bclass\s+ORV_API\s+(\w+)", text))
        text = re.sub(r"\bclass\s+ORV_API\b", "class", text)
        functions.update(re.findall(r"\bORV_API\b[^;{(]*?(\w+)\s*\(", text))
    return functions, classes


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
    built = functions_and_classes(arguments.binary, arguments.nm)
    declared = names_of_headers(arguments.headers)
    found = list(differences(listed[0], "the version script", built[0], "the library"))
    found += differences(listed[0], "the version script", declared[0], "the headers")
    found += differences(listed[1], "the classes of the version script", built[1], "the library")
    # Of a template the headers tell the name, the other two which instance of it there is.
    templates = {name.split("?")[0] for name in listed[1]}
    found += differences(templates, "the classes of the version script", declared[1], "the headers")
    print("\n".join(found) or f"{len(listed[0])} functions and {len(listed[1])} classes, the same in all three")
    return 1 if found or not all(listed) else 0


if __name__ == "__main__":
    sys.exit(main())
