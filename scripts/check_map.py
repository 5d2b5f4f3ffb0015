#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Fails if the map in docs/architecture.md names what is not there.

A row is: names | header, as it is included | sources, below src/ of the header's library |
for what. Usage: check_map.py SOURCE_DIR | --selftest
"""

import pathlib
import re
import sys
import tempfile

MAP = "docs/architecture.md"
HEADING = "| class or function |"


def rows(text):
    """(line number, cells) of the tables of the map, without their headings."""
    in_map = False
    for number, line in enumerate(text.splitlines(), 1):
        in_map = line.startswith(HEADING) or (in_map and line.startswith("|"))
        if in_map and line.startswith("| `"):
            yield number, [cell.strip() for cell in line.strip().strip("|").split("|")]


def in_code(cell):
    return re.findall(r"`([^`]+)`", cell)


def row_faults(root, cells):
    if len(cells) != 4 or not all(cells) or len(in_code(cells[1])) != 1:
        yield "is not: names | one header | sources | for what"
        return
    header = in_code(cells[1])[0]
    library = root / f"lib{pathlib.PurePosixPath(header).parts[1]}"
    path = library / "include" / header
    if not path.is_file():
        yield f"no header {header}"
        return
    text = path.read_text(encoding="utf-8")
    for name in in_code(cells[0]):
        if not re.search(rf"\b{re.escape(name)}\b", text):
            yield f"{header} has no {name}"
    for pattern in in_code(cells[2]):
        if not any((library / "src").glob(pattern)):
            yield f"no source {library.name}/src/{pattern}"


def check(root):
    found = list(rows((root / MAP).read_text(encoding="utf-8")))
    faults = [f"{MAP}:{number}: {fault}"
              for number, cells in found for fault in row_faults(root, cells)]
    return faults if found else [f"{MAP}: has no map"]


def selftest():
    """Each row of a made-up map has the number of faults that stands before it."""
    cases = [
        (0, "| `Tide`, `levelAt` | `lumo/tides/tide.h` | `tide*` | levels |"),
        (1, "| `Ebb` | `lumo/tides/tide.h` | `tide.cpp` | levels |"),
        (1, "| `Tid` | `lumo/tides/tide.h` | `tide.cpp` | levels |"),
        (1, "| `Tide` | `lumo/tides/ebb.h` | `tide.cpp` | levels |"),
        (1, "| `Tide` | `lumo/tides/tide.h` | `ebb*` | levels |"),
        (1, "| `Tide` | `lumo/tides/tide.h` | `tide.cpp` | |"),
        (1, "no table"),
    ]
    wrong = 0
    for count, row in cases:
        with tempfile.TemporaryDirectory() as folder:
            root = pathlib.Path(folder)
            for name, text in (
                    (MAP, f"{HEADING} header | sources | for what |\n|---|---|---|---|\n{row}\n"),
                    ("libtides/include/lumo/tides/tide.h", "class Tide { double levelAt(); };"),
                    ("libtides/src/tide.cpp", "")):
                (root / name).parent.mkdir(parents=True, exist_ok=True)
                (root / name).write_text(text, encoding="utf-8")
            if len(check(root)) != count:
                print(f"{row}: {check(root)}")
                wrong += 1
    return wrong


def main():
    if sys.argv[1:] == ["--selftest"]:
        sys.exit(selftest())
    faults = check(pathlib.Path(sys.argv[1]))
    print("\n".join(faults) or "the map names what is there")
    sys.exit(bool(faults))


if __name__ == "__main__":
    main()
