#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Fails on an #include that runs against the direction of the house.

A library includes the public headers of libraries below it only, third-party
headers stand where they are allowed only, and the folders inside libcore are
used from left to right. Usage: check_layers.py SOURCE_DIR | --selftest
"""

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

# Folder of libcore -> the folders of libcore it may use.
CORE_FOLDERS = {
    "common": [],
    "specificSensor": [],
    "xml": ["common", "specificSensor"],
    "cameraInfo": ["xml", "common", "specificSensor"],
    "services": ["cameraInfo", "xml", "common", "specificSensor"],
    "init": ["services", "cameraInfo", "xml", "common", "specificSensor"],
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


def house_of(path):
    """The library ("core", "apps") that a file relative to the root is part of."""
    top = path.parts[0]
    if top == "apps":
        return "apps"
    return top[3:] if top.startswith("lib") and top[3:] in LIBRARIES else None


def core_folder(path):
    """The folder of libcore that a file or an include path lies in, if any."""
    return next((part for part in path.parts if part in CORE_FOLDERS), None)


def fault(path, included):
    """Why `path` may not include `included`; None if it may."""
    house = house_of(path)
    is_test = "tests" in path.parts
    parts = pathlib.PurePosixPath(included).parts
    if included.startswith("lumo/") and len(parts) > 2:
        other = parts[1]
        if other not in LIBRARIES:
            return f"no library '{other}'"
        if house == "apps":
            return None if other in ("core", *LIBRARIES["core"]) else f"the program uses '{other}'"
        if other != house and other not in LIBRARIES[house]:
            return f"'{house}' may not use '{other}'"
        if house == "core" and other == "core":
            return core_fault(path, pathlib.PurePosixPath(included))
        return None
    if house == "core" and "/" in included and parts[0] in CORE_FOLDERS:
        return core_fault(path, pathlib.PurePosixPath(included))
    for prefix, allowed in THIRD_PARTY.items():
        if included.startswith(prefix) and house not in allowed and not is_test:
            return f"'{prefix}' belongs to {', '.join(allowed)} only"
    for prefix, only in ONE_FILE.items():
        if included.startswith(prefix) and path.as_posix() != only and not is_test:
            return f"'{prefix}' belongs to {only} only"
    return None


def core_fault(path, included):
    user, used = core_folder(path), core_folder(included)
    if "tests" in path.parts or None in (user, used) or user == used:
        return None
    return None if used in CORE_FOLDERS[user] else f"'core/{user}' may not use 'core/{used}'"


def check(root):
    faults = []
    for path in sorted(root.glob("lib*/**/*")) + sorted(root.glob("apps/**/*")):
        relative = path.relative_to(root)
        if path.suffix not in (".h", ".cpp") or house_of(relative) is None:
            continue
        for included in INCLUDE.findall(path.read_text(encoding="utf-8")):
            reason = fault(relative, included)
            if reason:
                faults.append(f"{relative}: #include {included}: {reason}")
    return faults


def selftest():
    cases = {
        "libmathematics/src/a.cpp": ('#include "lumo/cameradata/bands.h"', True),
        "libexif/src/a.cpp": ('#include "lumo/cameradata/bands.h"', False),
        "libexif/src/b.cpp": ("#include <exiv2/exiv2.hpp>", True),
        "libexif/src/exiv2_reader.cpp": ("#include <exiv2/exiv2.hpp>", False),
        "libcore/src/cameraInfo/a.cpp": ('#include "lumo/core/services/s.h"', True),
        "libcore/src/services/a.cpp": ('#include "lumo/core/cameraInfo/s.h"', False),
        "libcore/src/xml/a.cpp": ('#include "cameraInfo/private.h"', True),
        "libfoundation/include/lumo/foundation/a.h": ("#include <Eigen/Core>", True),
        "apps/lumo/src/a.cpp": ("#include <exiv2/exiv2.hpp>", True),
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
    return wrong


def main():
    if sys.argv[1:] == ["--selftest"]:
        sys.exit(selftest())
    faults = check(pathlib.Path(sys.argv[1]))
    print("\n".join(faults) or "all includes follow the layers")
    sys.exit(bool(faults))


if __name__ == "__main__":
    main()
