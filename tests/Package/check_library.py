"""The built library: its name for the loader, the libraries that it needs, no search path built in."""
import argparse
import os
import re
import subprocess
import sys

SONAME = "libORVImg.so.3"
# The language's own libraries, and Boost for the per-thread error slot.
ALLOWED = r"(libstdc\+\+|libm|libgcc_s|libc|libpthread|libdl|ld-linux-x86-64|libboost_thread)\.so\..*"
# Run-time of the sanitizers, whose builds also keep what Boost's thread library needs for itself.
INSTRUMENTED = r"(lib(a|ub|t)san|libboost_atomic)\.so\..*"


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--library", dest="binary", required=True)
    parser.add_argument("--readelf", default="readelf")
    parser.add_argument("--sanitized", action="store_true")
    arguments = parser.parse_args()
    text = subprocess.run([arguments.readelf, "-dW", arguments.binary], check=True, capture_output=True,
                          text=True).stdout
    found = []
    if re.findall(r"\(SONAME\).*\[(.*)\]", text) != [SONAME]:
        found.append(f"the soname is not {SONAME}")
    if os.path.basename(arguments.binary) != SONAME:
        found.append(f"the file is not called {SONAME}")
    link = os.path.join(os.path.dirname(arguments.binary), "libORVImg.so")
    if not os.path.islink(link) or os.readlink(link) != SONAME:
        found.append(f"libORVImg.so is no link to {SONAME}")
    needed = re.findall(r"\(NEEDED\).*\[(.*)\]", text)
    allowed = f"{ALLOWED}|{INSTRUMENTED}" if arguments.sanitized else ALLOWED
    found += [f"needs {name}" for name in needed if not re.fullmatch(allowed, name)]
    if "(TEXTREL)" in text:
        found.append("has text relocations")
    print("\n".join(found) or f"{SONAME}, needs {' '.join(needed)}")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
