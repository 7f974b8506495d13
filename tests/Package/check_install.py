"""Installs the build and compares the files with what an installation has to hold, by component.

The prefix is moved afterwards, so that whoever uses it finds out when a file still names its first place."""
import argparse
import os
import shutil
import subprocess
import sys
from pathlib import Path

RUNTIME = {"lib/libORVImg.so.3"}
DEV = {"lib/libORVImg.so", "lib/pkgconfig/orvimg.pc", "lib/cmake/ORVImg/ORVImgConfig.cmake",
       "lib/cmake/ORVImg/ORVImgConfigVersion.cmake", "lib/cmake/ORVImg/ORVImgTargets.cmake"}
CONFIGURATIONS = {f"lib/cmake/ORVImg/ORVImgTargets-{name}.cmake" for name in ("release", "debug", "noconfig")}


def install(arguments, prefix, *options):
    shutil.rmtree(prefix, ignore_errors=True)
    subprocess.run([arguments.cmake, "--install", arguments.build, "--prefix", prefix, *options], check=True,
                   stdout=subprocess.DEVNULL)
    return {str(path.relative_to(prefix)) for path in Path(prefix).rglob("*") if not path.is_dir()}


def differences(title, files, expected):
    yield from (f"{title}: {name} is missing" for name in sorted(expected - files))
    yield from (f"{title}: {name} does not belong there" for name in sorted(files - expected))


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--cmake", required=True)
    parser.add_argument("--build", required=True)
    parser.add_argument("--headers", required=True, type=Path)
    parser.add_argument("--prefix", required=True)
    arguments = parser.parse_args()
    headers = {f"include/ORVImg-3/{path.relative_to(arguments.headers)}" for path in arguments.headers.rglob("*.h")}
    first = arguments.prefix + "-first-place"
    found = list(differences("runtime", install(arguments, first, "--component", "runtime"), RUNTIME))
    files = install(arguments, first)
    if len(files & CONFIGURATIONS) != 1:
        found.append("all: there is not exactly one file of imported targets")
    found += differences("all", files - CONFIGURATIONS, RUNTIME | DEV | headers)
    for name in sorted(files):
        if not name.startswith("lib/libORVImg") and first in (Path(first) / name).read_text():
            found.append(f"{name} names the prefix")
    if os.readlink(Path(first) / "lib/libORVImg.so") != "libORVImg.so.3":
        found.append("libORVImg.so does not lead to libORVImg.so.3")
    shutil.rmtree(arguments.prefix, ignore_errors=True)
    os.rename(first, arguments.prefix)
    print("\n".join(found) or f"{len(files)} files")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
