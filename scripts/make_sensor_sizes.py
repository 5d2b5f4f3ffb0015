#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Makes the sensor-size table that libexif ships.

Reads a CSV file with the columns exif_make, exif_model, sensor_width_mm,
sensor_height_mm (may be empty) and name_kind, and writes tab-separated lines
under a comment that says what they are.
Usage: make_sensor_sizes.py SENSOR_SIZES.csv libexif/resources/sensor_sizes.tsv
"""

import csv
import sys

HEADER = """\
# Image area of camera sensors: make, model, width (mm), height (mm; empty if
# not known), separated by tabs. Where two lines name the same camera the first
# counts: names as cameras write them stand before those derived from the
# names that cameras are sold under.
#
# Measurements only, compared and merged from the sensor-size lists of openMVG,
# AliceVision, OpenSfM and COLMAP, the crop factors of lensfun (width within
# 1 to 3 % for compact cameras), the camera list of MicMac, focal plane
# resolutions in image files and makers' specifications.
"""

# How much a spelling is trusted, best first.
NAME_KINDS = ["exif", "derived", "db"]
MAX_SIDE_MM = 70


def side(text, may_be_empty):
    if may_be_empty and not text:
        return text
    if not 0 < float(text) <= MAX_SIDE_MM:
        raise ValueError(f"{text} mm is no sensor side")
    return text


def table_line(row):
    width = side(row["sensor_width_mm"], may_be_empty=False)
    height = side(row["sensor_height_mm"], may_be_empty=True)
    if height and float(height) > float(width):
        width, height = height, width
    fields = [row["exif_make"].strip(), row["exif_model"].strip(), width, height]
    if not all(fields[:2]) or any(c in field for field in fields for c in "\t\r\n"):
        raise ValueError("a name is empty or holds a tab or line end")
    return "\t".join(fields)


def main(source, target):
    with open(source, encoding="utf-8", newline="") as file:
        rows = list(csv.DictReader(file))
    lines = []
    for number, row in enumerate(rows, start=2):
        try:
            lines.append((NAME_KINDS.index(row["name_kind"]), table_line(row)))
        except ValueError as error:
            sys.exit(f"{source}: row {number}: {error}")
    with open(target, "w", encoding="utf-8", newline="\n") as file:
        file.write(HEADER)
        file.writelines(line + "\n" for _, line in sorted(lines))


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    main(*sys.argv[1:])
