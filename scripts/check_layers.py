#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Fails on an #include that runs against the direction of the house.

A library includes the public headers of libraries below it only, third-party
headers stand where they are allowed only, and the rooms of libcore and of the
program include those that they may use only.

Usage: check_layers.py SOURCE_DIR | --dot SOURCE_DIR | --selftest
--dot writes the rooms of libcore and the arrows that the includes make, for Graphviz.
"""

import graphlib
import pathlib
import re
import sys
import tempfile

# What each library may include of the others.
LIBRARIES = {
    "foundation": [],
    "power": ["foundation"],
    "lumocuda": [],
    "mathematics": ["foundation"],
    "imagemodel": ["foundation"],
    "cameradata": ["foundation", "imagemodel"],
    "camerageometry": ["foundation", "mathematics"],
    "exif": ["foundation", "imagemodel", "cameradata"],
    "optimisation": ["foundation", "mathematics"],
    "pipeline": ["foundation"],
    "processing": ["foundation"],
}
LIBRARIES["core"] = list(LIBRARIES)

# Room of libcore/src -> the rooms that it may use, and with them all that they may use.
# A public header is part of the room whose source file has its name.
CORE_ROOMS = {
    "common": [],
    "specificSensor": [],
    "xml/steps": [],
    "xml/validation": [],
    "xml/camera": ["specificSensor"],
    "xml/xslt": ["xml/steps", "xml/validation"],
    "xml/camera_db": ["xml/steps", "xml/validation", "xml/camera"],
    "xml/project": ["xml/steps", "xml/validation"],
    "xml/project_20_21": ["xml/project", "xml/camera", "xml/steps"],
    "xml": ["xml/project_20_21", "xml/camera_db", "xml/xslt"],
    "cameraInfo/rig": [],
    "cameraInfo/record": [],
    "cameraInfo/tables": ["cameraInfo/record", "cameraInfo/rig"],
    "cameraInfo/textdb": ["cameraInfo/tables", "specificSensor"],
    "cameraInfo/document": ["cameraInfo/tables", "xml/camera", "common"],
    "cameraInfo/store": ["cameraInfo/document"],
    "cameraInfo/files": [
        "cameraInfo/store", "cameraInfo/textdb", "xml/camera_db", "xml/validation", "xml/steps"],
    "cameraInfo/captures": ["cameraInfo/store"],
    "cameraInfo/identify": ["cameraInfo/store", "specificSensor"],
    "services": ["cameraInfo/identify", "cameraInfo/captures", "cameraInfo/files", "xml"],
    "init/points": [],
    "init/similarity": ["init/points"],
    "init": ["services", "init/similarity"],
}
# Public headers that have no source file of their name.
HEADERS_ALONE = {
    "cameraInfo/camera_db_data.h": "cameraInfo/tables",
    "cameraInfo/text_db.h": "cameraInfo/textdb",
    "xml/conversion_change.h": "xml/steps",
    "xml/extensible_factory.h": "xml/steps",
    "xml/kpx_conversion_20_21.h": "xml/project_20_21",
    "xml/param_converter.h": "xml/project",
}
# The rooms of apps/lumo/src, likewise.
PROGRAM_ROOMS = {
    "show": [],
    "input": ["show"],
    "commands": ["show", "input"],
    "cli": ["commands"],
}

# Third-party header (prefix) -> where it may be included.
THIRD_PARTY = {
    "spdlog/": ["foundation"],
    "QtDBus": ["power"],
    "QDBus": ["power"],
    "cuda": ["lumocuda"],
    "boost/geometry": ["imagemodel"],
    "exiv2/": ["exif"],
    "cminpack": ["optimisation"],
    "glog/": ["optimisation"],
    "libxslt/": ["core"],
    "libxml/": ["core"],
    "CLI/": ["apps"],
    "Eigen/": ["mathematics", "cameradata", "camerageometry", "optimisation", "core"],
    "QDom": ["cameradata", "core"],
    "QXmlSchema": ["core"],
    "QXmlQuery": ["core"],
}
# One source file alone.
ONE_FILE = {"exiv2/": "libexif/src/exiv2_reader.cpp"}

INCLUDE = re.compile(r'^\s*#\s*include\s*[<"]([^>"]+)[>"]', re.MULTILINE)
CORE_SOURCES = pathlib.PurePosixPath("libcore/src")
CORE_HEADERS = pathlib.PurePosixPath("libcore/include/lumo/core")
PROGRAM_SOURCES = pathlib.PurePosixPath("apps/lumo/src")


class Rooms:
    """The rooms of libcore and of the program: what lies where, and what may use what."""

    def __init__(self, root):
        self._of_header = dict(HEADERS_ALONE)
        for source in sorted((root / CORE_SOURCES).glob("**/*.cpp")):
            path = source.relative_to(root / CORE_SOURCES)
            self._of_header[f"{path.parts[0]}/{source.stem}.h"] = path.parent.as_posix()

    def of_core_header(self, path):
        """The room of a public header, from its path below lumo/core."""
        room = self._of_header.get(path.as_posix())
        alone = path.parts[0]  # where the folder is one room
        return room if room else alone if alone in CORE_ROOMS and alone != "xml" else None

    def of_file(self, path):
        """The room of a file, and the rooms beside it; the latter None outside of rooms."""
        for base, rooms in ((CORE_SOURCES, CORE_ROOMS), (PROGRAM_SOURCES, PROGRAM_ROOMS)):
            if base in path.parents:
                return path.parent.relative_to(base).as_posix(), rooms
        if CORE_HEADERS in path.parents and len(path.relative_to(CORE_HEADERS).parts) > 1:
            return self.of_core_header(path.relative_to(CORE_HEADERS)), CORE_ROOMS
        return None, None

    def of_include(self, included, rooms):
        """The room that an include path leads to, and whether it leads to a room at all."""
        path = pathlib.PurePosixPath(included)
        if rooms is CORE_ROOMS and included.startswith("lumo/core/") and len(path.parts) > 3:
            return self.of_core_header(path.relative_to("lumo/core")), True
        tops = {room.split("/")[0] for room in rooms}
        return path.parent.as_posix(), "/" in included and path.parts[0] in tops


def reachable(room, rooms):
    """All that a room may use: what it names, and what that may use."""
    found = set()
    open_rooms = [room]
    while open_rooms:
        for used in rooms[open_rooms.pop()]:
            if used not in found:
                found.add(used)
                open_rooms.append(used)
    return found


def house_of(path):
    """The library ("core", "apps") that a file relative to the root is part of."""
    top = path.parts[0]
    if top == "apps":
        return "apps"
    return top[3:] if top.startswith("lib") and top[3:] in LIBRARIES else None


def library_fault(house, included):
    """Why a library may not include `included`, by the libraries; None if it may."""
    parts = pathlib.PurePosixPath(included).parts
    if not included.startswith("lumo/") or len(parts) <= 2:
        return None
    other = parts[1]
    if other not in LIBRARIES:
        return f"no library '{other}'"
    if house == "apps" or other == house or other in LIBRARIES[house]:
        return None
    return f"'{house}' may not use '{other}'"


def third_party_fault(path, house, included):
    for prefix, allowed in THIRD_PARTY.items():
        if included.startswith(prefix) and house not in allowed:
            return f"'{prefix}' belongs to {', '.join(allowed)} only"
    for prefix, only in ONE_FILE.items():
        if included.startswith(prefix) and path.as_posix() != only:
            return f"'{prefix}' belongs to {only} only"
    return None


def room_fault(place, included, known):
    """Why a file of the room `place` may not include `included`; None if it may."""
    room, rooms = place
    used, leads_to_room = known.of_include(included, rooms)
    if not leads_to_room or used == room:
        return None
    if used not in rooms:
        return f"{included} is in no room"
    return None if used in reachable(room, rooms) else f"'{room}' may not use '{used}'"


def sources(root):
    for path in sorted(root.glob("lib*/**/*")) + sorted(root.glob("apps/**/*")):
        relative = path.relative_to(root)
        if path.suffix in (".h", ".cpp") and house_of(relative):
            yield relative, INCLUDE.findall(path.read_text(encoding="utf-8"))


def check(root):
    faults = []
    known = Rooms(root)
    for path, includes in sources(root):
        house = house_of(path)
        is_test = "tests" in path.parts
        place = known.of_file(path)
        in_room = place[1] is not None and not is_test
        if in_room and place[0] not in place[1]:
            faults.append(f"{path}: is in no room")
            continue
        for included in includes:
            reason = library_fault(house, included)
            if not reason and not is_test:
                reason = third_party_fault(path, house, included)
            if not reason and in_room:
                reason = room_fault(place, included, known)
            if reason:
                faults.append(f"{path}: #include {included}: {reason}")
    return faults


def circle(rooms):
    """The rooms of a circle of arrows, or of one between the folders that they lie in."""
    folders = {room.split("/")[0]: set() for room in rooms}
    for room, used in rooms.items():
        folders[room.split("/")[0]] |= {other.split("/")[0] for other in used}
    for folder, used in folders.items():
        used.discard(folder)
    for arrows in (rooms, folders):
        try:
            graphlib.TopologicalSorter(arrows).prepare()
        except graphlib.CycleError as error:
            return " -> ".join(error.args[1])
    return None


def arrows_of_core(root):
    """(room, used room) of libcore, from the includes."""
    known = Rooms(root)
    arrows = set()
    for path, includes in sources(root):
        room, rooms = known.of_file(path)
        if rooms is not CORE_ROOMS or "tests" in path.parts:
            continue
        for included in includes:
            used, leads_to_room = known.of_include(included, rooms)
            if leads_to_room and used != room:
                arrows.add((room, used))
    return sorted(arrows)


def print_dot(root):
    """The rooms, framed by the folder that they share, and the arrows between them."""
    arrows = arrows_of_core(root)
    folders = {}
    for room in sorted({room for arrow in arrows for room in arrow}):
        folders.setdefault(room.split("/")[0], []).append(room)
    for folder, rooms in folders.items():
        if len(rooms) > 1:
            print(f'subgraph "cluster_{folder}" {{ label="{folder}";')
        for room in rooms:
            print(f'"{room}" [label="{room.split("/")[-1]}"];')
        if len(rooms) > 1:
            print("}")
    for room, used in arrows:
        print(f'"{room}" -> "{used}";')


def selftest():
    cases = {
        "libmathematics/src/a.cpp": ('#include "lumo/cameradata/bands.h"', True),
        "libexif/src/a.cpp": ('#include "lumo/cameradata/bands.h"', False),
        "libexif/src/b.cpp": ("#include <exiv2/exiv2.hpp>", True),
        "libexif/src/exiv2_reader.cpp": ("#include <exiv2/exiv2.hpp>", False),
        "libcore/src/cameraInfo/files/a.cpp": ('#include "lumo/core/services/s.h"', True),
        "libcore/src/services/a.cpp": ('#include "lumo/core/cameraInfo/text_db.h"', False),
        "libcore/src/services/b.cpp": ('#include "lumo/core/cameraInfo/of_no_room.h"', True),
        "libcore/src/xml/camera/a.cpp": ('#include "cameraInfo/rig/private.h"', True),
        "libcore/src/cameraInfo/store/a.cpp": ('#include "cameraInfo/files/private.h"', True),
        "libcore/src/cameraInfo/store/b.cpp": ('#include "cameraInfo/rig/private.h"', False),
        "libcore/src/cameraInfo/rig/a.cpp": ('#include "lumo/core/cameraInfo/text_db.h"', True),
        "libcore/src/cameraInfo/a.cpp": ("", True),
        "libcore/src/cameraInfo/cellar/a.cpp": ("", True),
        "libcore/tests/a_test.cpp": ('#include "cameraInfo/files/private.h"', False),
        "libfoundation/include/lumo/foundation/a.h": ("#include <Eigen/Core>", True),
        "apps/lumo/src/cli/a.cpp": ("#include <exiv2/exiv2.hpp>", True),
        "apps/lumo/src/cli/b.cpp": ('#include "show/private.h"', False),
        "apps/lumo/src/show/a.cpp": ('#include "input/private.h"', True),
    }
    wrong = 0
    for name, (line, is_fault) in cases.items():
        with tempfile.TemporaryDirectory() as folder:
            path = pathlib.Path(folder) / name
            path.parent.mkdir(parents=True)
            path.write_text(line + "\n", encoding="utf-8")
            if bool(check(pathlib.Path(folder))) != is_fault:
                print(f"{name}: {line}: expected {'a fault' if is_fault else 'none'}")
                wrong += 1
    for rooms, is_fault in (
            (CORE_ROOMS, False), (PROGRAM_ROOMS, False),
            ({"a": ["b"], "b": ["c"], "c": ["a"]}, True),
            ({"a/x": ["b/x"], "b/x": [], "b/y": ["a/y"], "a/y": []}, True)):
        if bool(circle(rooms)) != is_fault:
            print(f"{rooms}: circle: {circle(rooms)}")
            wrong += 1
    return wrong


def main():
    if sys.argv[1:] == ["--selftest"]:
        sys.exit(selftest())
    root = pathlib.Path(sys.argv[-1])
    if sys.argv[1] == "--dot":
        print_dot(root)
        return
    faults = check(root)
    print("\n".join(faults) or "all includes follow the layers")
    sys.exit(bool(faults))


if __name__ == "__main__":
    main()
