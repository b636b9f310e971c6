#!/usr/bin/env python3
"""analyze.py COMPILE_COMMANDS FOLDER: runs clang's static analyser over the files of a folder.

Fails if it reports anything: reference counts of CoreFoundation objects above all.
"""

import json
import shlex
import subprocess
import sys


def command_for(entry):
    arguments = shlex.split(entry["command"])
    output = arguments.index("-o")
    del arguments[output:output + 2]
    arguments.remove("-c")
    return arguments + ["--analyze", "--analyzer-output", "text", "-Wno-unused-command-line-argument",
                        "-Xclang", "-analyzer-checker=osx.cocoa.RetainCount"]


def main():
    if len(sys.argv) != 3:
        sys.exit("usage: analyze.py COMPILE_COMMANDS FOLDER")
    with open(sys.argv[1], encoding="utf-8") as file:
        entries = [e for e in json.load(file) if e["file"].startswith(sys.argv[2])]
    if not entries:
        sys.exit("analyze.py: no file to analyse")
    failed = 0
    for entry in entries:
        result = subprocess.run(command_for(entry), cwd=entry["directory"], text=True,
                                capture_output=True, check=False)
        if result.returncode != 0 or "warning:" in result.stderr:
            failed += 1
            print(result.stderr)
    print(f"analysed {len(entries)} files, {failed} with findings")
    sys.exit(1 if failed else 0)


main()
