"""A process that loads and unloads the library is clean under valgrind: no errors, no lost blocks."""
import argparse
import shutil
import subprocess
import sys

SKIPPED = 77


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--program", required=True)
    parser.add_argument("--library", dest="binary", required=True)
    parser.add_argument("--mode", required=True, choices=["load", "report"])
    arguments = parser.parse_args()
    valgrind = shutil.which("valgrind")
    if not valgrind:
        print("valgrind is not installed")
        return SKIPPED
    return subprocess.run([valgrind, "--leak-check=full", "--show-leak-kinds=all", "--num-callers=30",
                           "--errors-for-leak-kinds=definite,indirect,possible", "--error-exitcode=1",
                           arguments.program, arguments.binary, arguments.mode]).returncode


if __name__ == "__main__":
    sys.exit(main())
