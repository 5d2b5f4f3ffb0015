#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Makes the sensor-size table that libexif ships, and checks it.

Reads a CSV file with the columns exif_make, exif_model, sensor_width_mm,
sensor_height_mm (may be empty) and name_kind, and writes tab-separated lines
under a comment that says what they are. sensor_size_corrections.tsv replaces or
leaves out what the lists have wrong. Names under which the camera database has
cameras with different sensors are written without a size: none answers for all.
Usage: make_sensor_sizes.py SENSOR_SIZES.csv libexif/resources/sensor_sizes.tsv
       make_sensor_sizes.py --check libexif/resources/sensor_sizes.tsv
"""

import collections
import csv
import pathlib
import re
import sys

SOURCE = pathlib.Path(__file__).resolve().parent.parent
CORRECTIONS = SOURCE / "scripts/sensor_size_corrections.tsv"
DATABASE = "shipped_camera_db.csv"  # below libcore/src/cameraInfo

HEADER = """\
# Image area of camera sensors: make, model, width (mm), height (mm; empty if
# not known), separated by tabs. Where two lines name the same camera the first
# counts: names as cameras write them stand before those derived from the
# names that cameras are sold under. Without width and height: cameras with
# different sensors have this name, and the camera database knows them.
#
# Measurements only, compared and merged from the sensor-size lists of openMVG,
# AliceVision, OpenSfM and COLMAP, the crop factors of lensfun (width within
# 1 to 3 % for compact cameras), the camera list of MicMac, focal plane
# resolutions in image files and makers' specifications.
"""

# How much a spelling is trusted, best first.
NAME_KINDS = ["exif", "derived", "db"]
MAX_SIDE_MM = 70

# Width to height. 8:7 and 6:5 are full sensors of sports and multispectral
# cameras, 36:25 those of Nokia's PureView phones, which crop 4:3 and 16:9 from it.
PROPORTIONS = [1, 8 / 7, 6 / 5, 5 / 4, 4 / 3, 36 / 25, 3 / 2, 8 / 5, 5 / 3, 16 / 9]
PROPORTION_TOLERANCE = 0.02  # sides are rounded: 0.1 mm of 4.55 mm is 2 %
SPELLING_TOLERANCE = 0.03  # lists differ by 1 to 3 % on one camera
VARIANT_TOLERANCE = 0.05  # libexif folds variants that agree as well
SENSOR_TOLERANCE = 0.05
INCH_FRACTIONS_MM = [25.4, 12.7]  # optical formats, taken for widths

# How phones are named by country and carrier, as sensor_size_rows.cpp folds them.
VARIANTS = {
    "samsung": r"((?:sm|sgh|sch|sph|shv|shw)[a-z]\d{3}|gt[a-z]\d{4})[a-z0-9]{0,3}$",
    "huawei": r"^([a-z]{3})(?:[at]?l|lx)\d{1,2}[a-z]?$",
    "lg": r"(?:^|^lm)([a-z]\d{3})[a-z]{0,3}$",
}


def side(text, may_be_empty):
    if may_be_empty and not text:
        return text
    if not 0 < float(text) <= MAX_SIDE_MM:
        raise ValueError(f"{text} mm is no sensor side")
    return text


def table_line(row):
    height = side(row["sensor_height_mm"], may_be_empty=True)
    width = side(row["sensor_width_mm"], may_be_empty=not height)
    if height and float(height) > float(width):
        width, height = height, width
    fields = [row["exif_make"].strip(), row["exif_model"].strip(), width, height]
    if not all(fields[:2]) or any(c in field for field in fields for c in "\t\r\n"):
        raise ValueError("a name is empty or holds a tab or line end")
    return "\t".join(fields)


def folded(text):
    return "".join(c for c in text.lower() if c.isalnum() or c == "+")


def name_key(make, model):
    """Maker and model without case, blanks and a maker's name before the model."""
    maker, name = folded(re.split(r"[ _,]", make.strip())[0]), folded(model)
    return maker, name[len(maker):] if name != maker and name.startswith(maker) else name


def apart(sizes):
    """By what share the largest is above the smallest."""
    return max(sizes) / min(sizes) - 1


def tab_rows(path, fields):
    for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), start=1):
        if line and not line.startswith("#"):
            row = line.split("\t")
            if len(row) != fields:
                sys.exit(f"{path}: line {number}: {len(row)} fields instead of {fields}")
            yield row


# Checks


def sensors_by_name():
    """The widths (mm) of the sensors behind each name of the camera database, as
    it writes names. Pictures of one focal length come from one sensor: the widest."""
    path = next((SOURCE / "libcore/src/cameraInfo").rglob(DATABASE))
    lines = path.read_text(encoding="utf-8").split("\n")
    cameras = lines[lines.index("[cameras]") + 1:lines.index("[bands]")]
    widest = collections.defaultdict(dict)
    for row in csv.DictReader(cameras):
        model, focal, _ = row["name"].rsplit("_", 2)
        width = int(row["imageWidthPx"]) * float(row["pixelSizeUm"]) / 1000
        focals = widest[model.casefold()]
        focals[focal] = max(width, focals.get(focal, 0))
    return {model: list(focals.values()) for model, focals in widest.items()}


def is_one_of_several(model, width, sensors):
    """Whether the name is that of several cameras, of which the width is one's."""
    name = "".join(c if c.isalnum() or c in "-.+ " else "-" for c in model).casefold()
    widths = sensors.get(name, [])
    return (len(widths) > 1 and apart(widths) > SENSOR_TOLERANCE and
            any(abs(width / other - 1) <= SENSOR_TOLERANCE for other in widths))


def faults_of_sizes(rows):
    """Sides that do not belong together, and optical formats taken for widths."""
    for make, model, width, height in rows:
        if height:
            ratio = float(width) / float(height)
            if min(abs(ratio / p - 1) for p in PROPORTIONS) > PROPORTION_TOLERANCE:
                yield f"{make} {model}: {width} x {height} mm is a picture of {ratio:.3f}:1"
        if float(width) in INCH_FRACTIONS_MM:
            yield f"{make} {model}: {width} mm is a fraction of an inch"


def faults_of_siblings(rows):
    """Spellings of a name, and variants of a phone, that contradict each other."""
    spellings, variants = collections.defaultdict(dict), collections.defaultdict(dict)
    for make, model, width, _ in rows:
        maker, name = name_key(make, model)
        spellings[maker, name][make, model] = float(width)
        if found := re.search(VARIANTS.get(maker, r"(?!)"), name):
            variants[maker, found[1]][make, model] = float(width)
    for groups, tolerance in ((spellings, SPELLING_TOLERANCE), (variants, VARIANT_TOLERANCE)):
        for group in groups.values():
            if apart(group.values()) > tolerance:
                yield ", ".join(f"{' '.join(name)} {mm:g} mm" for name, mm in group.items()) + \
                    ": contradict each other"


def faults_of_several(rows):
    """Names of several cameras of the database, of which the table knows one."""
    sensors = sensors_by_name()
    for make, model, width, _ in rows:
        if is_one_of_several(model, float(width), sensors):
            yield (f"{make} {model}: {width} mm is the sensor of one of its cameras alone: "
                   "leave width and height empty")


def check(path):
    rows = [row for row in tab_rows(pathlib.Path(path), 4) if row[2] or row[3]]
    faults = [*faults_of_sizes(rows), *faults_of_siblings(rows), *faults_of_several(rows)]
    if not rows or faults:
        sys.exit("\n".join(faults or [f"{path}: no camera in it"]))


# Making


def corrected(rows):
    """The rows as the corrections have them; a correction of no row is refused."""
    corrections = {(row[0], row[1]): row for row in tab_rows(CORRECTIONS, 5)}
    unused = set(corrections)
    sensors = sensors_by_name()
    for row in rows:
        name = row["exif_make"].strip(), row["exif_model"].strip()
        if name in corrections:
            unused.discard(name)
            _, _, row["sensor_width_mm"], row["sensor_height_mm"], _ = corrections[name]
            if not row["sensor_width_mm"]:
                continue
        if is_one_of_several(name[1], float(row["sensor_width_mm"]), sensors):
            row["sensor_width_mm"] = row["sensor_height_mm"] = ""
        yield row
    if unused:
        sys.exit(f"{CORRECTIONS}: in no list: {', '.join(' '.join(n) for n in sorted(unused))}")


def make_table(source, target):
    with open(source, encoding="utf-8", newline="") as file:
        rows = list(csv.DictReader(file))
    lines = []
    for row in corrected(rows):
        try:
            lines.append((NAME_KINDS.index(row["name_kind"]), table_line(row)))
        except ValueError as error:
            sys.exit(f"{source}: {row['exif_make']} {row['exif_model']}: {error}")
    with open(target, "w", encoding="utf-8", newline="\n") as file:
        file.write(HEADER)
        file.writelines(line + "\n" for _, line in sorted(lines))


def main(arguments):
    if len(arguments) != 2:
        sys.exit(__doc__)
    if arguments[0] != "--check":
        make_table(*arguments)
    check(arguments[1])


if __name__ == "__main__":
    main(sys.argv[1:])
