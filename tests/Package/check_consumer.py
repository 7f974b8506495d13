"""Builds and runs a program outside the tree against an installation, by one of three ways."""
import argparse
import os
import shlex
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

WARNINGS = ["-Wall", "-Wextra", "-Wpedantic", "-Wconversion", "-Werror"]


def run(*command, **options):
    print("+", shlex.join(map(str, command)), flush=True)
    return subprocess.run(list(map(str, command)), check=True, **options)


def with_find_package(arguments, work):
    build = work / "build"
    run(arguments.cmake, "-S", work, "-B", build, "-G", "Ninja", "--no-warn-unused-cli",
        f"-DCMAKE_PREFIX_PATH={arguments.prefix}", f"-DCMAKE_C_COMPILER={arguments.c_compiler}",
        f"-DCMAKE_CXX_COMPILER={arguments.cxx_compiler}",
        "-DCMAKE_DISABLE_FIND_PACKAGE_Boost=ON")
    run(arguments.cmake, "--build", build)
    return [build / "consumer_c", build / "consumer_cpp"]


def with_pkg_config(arguments, work):
    search = {**os.environ, "PKG_CONFIG_PATH": f"{arguments.prefix}/lib/pkgconfig"}
    flags = shlex.split(run("pkg-config", "--cflags", "--libs", "orvimg >= 3.0", env=search, capture_output=True,
                            text=True).stdout)
    path = f"-Wl,-rpath,{arguments.prefix}/lib"
    run(arguments.c_compiler, "-std=c11", *WARNINGS, work / "consumer.c", "-o", work / "consumer_c", *flags, path)
    run(arguments.cxx_compiler, "-std=c++17", *WARNINGS, work / "consumer.cpp", "-o", work / "consumer_cpp", *flags,
        path)
    return [work / "consumer_c", work / "consumer_cpp"]


def with_plain_c11(arguments, work):
    run(arguments.c_compiler, "-std=c11", "-pedantic-errors", *WARNINGS, f"-I{arguments.prefix}/include/ORVImg-3",
        work / "consumer.c", "-o", work / "consumer_c", f"-L{arguments.prefix}/lib", "-lORVImg",
        f"-Wl,-rpath,{arguments.prefix}/lib")
    return [work / "consumer_c"]


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--way", required=True)
    for name in ("prefix", "sources", "cmake", "c-compiler", "cxx-compiler"):
        parser.add_argument(f"--{name}", required=True)
    arguments = parser.parse_args()
    ways = {"find_package": with_find_package, "pkg_config": with_pkg_config, "plain_c11": with_plain_c11}
    with tempfile.TemporaryDirectory() as folder:
        work = Path(folder) / "consumer"
        shutil.copytree(arguments.sources, work)
        try:
            for program in ways[arguments.way](arguments, work):
                run(program)
        except subprocess.CalledProcessError as failure:
            print(failure, failure.stdout or "", failure.stderr or "")
            return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
