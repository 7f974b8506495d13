"""Each public header compiles alone, twice in one file, in C11 and C++17 to C++23, with every warning an error."""
import argparse
import re
import shutil
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor
from os import cpu_count
from pathlib import Path

WARNINGS = ["-Wall", "-Wextra", "-Wpedantic", "-Wconversion", "-Wsign-conversion", "-Wshadow", "-Werror"]
LANGUAGES = [("c", "c11"), ("c++", "c++17"), ("c++", "c++20"), ("c++", "c++2b")]
OWN_HEADERS_OF_THE_LANGUAGE = {"stddef.h", "stdint.h", "stdbool.h", "cstddef", "cstdint"}
# Headers of classes, which are empty in C, stand in a folder of their own.
CLASS_FOLDER = "Objects/"
OWN_HEADERS_OF_CLASSES = {"atomic", "cstdio", "string_view"}


def compilers_for(language, arguments):
    given = arguments.c_compiler if language == "c" else arguments.cxx_compiler
    found = {Path(given).resolve(): given}
    for other in ("gcc", "clang") if language == "c" else ("g++", "clang++"):
        path = shutil.which(other)
        if path:
            found.setdefault(Path(path).resolve(), path)
    return list(found.values())


def compile_alone(job):
    compiler, language, standard, folder, header = job
    source = f'#include "{header}"\n#include "{header}"\nint main(void) {{ return 0; }}\n'
    run = subprocess.run([compiler, f"-std={standard}", *WARNINGS, "-I", str(folder), "-x", language, "-fsyntax-only",
                          "-"], input=source, capture_output=True, text=True)
    return "" if run.returncode == 0 else f"{header} with {compiler} -std={standard}:\n{run.stderr}"


def foreign_includes(folder, headers):
    own = OWN_HEADERS_OF_THE_LANGUAGE | set(headers)
    for header in headers:
        for name in re.findall(r'^\s*#\s*include\s*[<"]([^>"]+)', (folder / header).read_text(), flags=re.M):
            if name not in own and not (header.startswith(CLASS_FOLDER) and name in OWN_HEADERS_OF_CLASSES):
                yield f"{header} includes {name}: public headers need nothing but each other\n"


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--headers", required=True, type=Path)
    parser.add_argument("--c-compiler", default="gcc")
    parser.add_argument("--cxx-compiler", default="g++")
    arguments = parser.parse_args()
    folder = arguments.headers
    headers = sorted(str(path.relative_to(folder)) for path in folder.rglob("*.h"))
    jobs = [(compiler, language, standard, folder, header) for language, standard in LANGUAGES
            for compiler in compilers_for(language, arguments) for header in headers]
    with ThreadPoolExecutor(cpu_count()) as pool:
        found = [text for text in pool.map(compile_alone, jobs) if text]
    found += foreign_includes(folder, headers)
    print("\n".join(found) or f"{len(headers)} headers, {len(jobs)} compilations")
    return 1 if found or not headers else 0


if __name__ == "__main__":
    sys.exit(main())
