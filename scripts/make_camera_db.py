#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Makes the shipped camera database from tables of published facts.

Usage: make_camera_db.py FACTS_DIR OUTPUT

FACTS_DIR holds survey_cameras.csv (a row per camera, lens and image size) and
rigs.csv (a row per camera of a rig). Only sound rows are taken, nothing is
guessed: each number rests on a named source, and what rests on recall alone, or
is called weak or not confirmed, is left out. Calibrations of a single unit are
left out too: they say little of the next one.

Fisheye lenses get the equidistant projection at their nominal focal length: the
facts tell the kind of lens, not its polynomial.
"""

import collections
import csv
import decimal
import math
import pathlib
import re
import sys

Decimal = decimal.Decimal

HEADER = """\
# The camera models that the program knows without being told.
# The numbers are facts collected from open sources: each row names its own under
# facts and says under quality what is less certain. Made by
# scripts/make_camera_db.py: change that and not this file.
"""

RECALLED = "maker specification (recalled)"

# Focal lengths that are recalled for most models of the maker; these were read
# from the metadata of a real image.
FOCAL_SEEN_IN_IMAGE = {"HERO6 Black"}

# The facts give the pixel size of another part of the sensor than the image.
OTHER_IMAGE_AREA = {"DMC-LX3"}

# Their thermal cameras also write JPEGs that show temperatures in false colours.
FALSE_COLOUR_MAKERS = {"DJI", "FLIR"}

# What real images write where it differs from the identifier of the facts.
MAPPINGS = {
    # The 640 x 512 camera writes no focal length.
    "MAVIC2-ENTERPRISE-ADVANCED_0.0_640x512": "MAVIC2-ENTERPRISE-ADVANCED_9.0_640x512",
    # It writes 4.7 mm, but its own 35 mm equivalent and published calibrations
    # agree on 3.7 mm.
    "2_4.7_4056x3040": "2_3.7_4056x3040",
}

RGB = [("Red", "", ""), ("Green", "", ""), ("Blue", "", "")]


def identifier(model, focal_mm, width, height):
    """The identifier that an image of this camera has."""
    key = "".join(c if c.isalnum() or c in "-.+ " else "-" for c in model.strip())
    # Ties as the program rounds them, on the binary value.
    focal = Decimal(float(focal_mm)).quantize(Decimal("0.1"), decimal.ROUND_HALF_UP)
    return f"{key}_{focal}_{max(width, height)}x{min(width, height)}"


def read_table(path):
    with open(path, encoding="utf-8", newline="") as file:
        return list(csv.DictReader(file))


# Which rows are sound


def reason_to_leave_out(row):
    """Why a row of the survey is not sound; nothing if it is."""
    note = row["note"]
    if not row["exif_model"]:
        return "no EXIF model"
    if not row["focal_mm"]:
        return "no focal length (lens can be changed, or not known)"
    if not (row["image_width_px"] and row["image_height_px"] and row["pixel_size_um"]):
        return "no image or pixel size"
    if "not confirmed" in note:
        return "EXIF model not confirmed"
    if re.search(r"\bweak\b", note):
        return "a value is weak"
    if row["source"].strip() == RECALLED:
        return "recalled alone"
    if re.search(r"focal from the \d+ mm equivalent", note):
        return "focal length computed from its 35 mm equivalent"
    if re.search(r"\b(focal|pitch)\b[^;]*recalled", note):
        if row["exif_model"] not in FOCAL_SEEN_IN_IMAGE:
            return "focal length or pixel size recalled alone"
    if row["exif_make"] == "GoPro" and "HERO4" not in row["exif_model"]:
        if row["exif_model"] not in FOCAL_SEEN_IN_IMAGE:
            return "focal length or pixel size recalled alone"
    if row["exif_model"] in OTHER_IMAGE_AREA:
        return "pixel size of another image area"
    return None


# What a row says


def calibrated_focal_px(row):
    """The focal length that a row's distortion belongs to; nothing if it is not stated."""
    note = row["note"]
    if not row["K1"] or "one unit" in note:
        return None
    if found := re.search(r"belong to a focal of ([\d.]+) px", note):
        return float(found[1])
    if found := re.search(r"calibrated focal ([\d.]+) x (?:image )?width", note):
        return float(found[1]) * int(row["image_width_px"])
    return None


def lens_numbers(row):
    pixel_mm = float(row["pixel_size_um"]) / 1000
    if row["lens_type"] == "fisheye":
        scale_px = float(row["focal_mm"]) / pixel_mm * math.pi / 2
        return {"lensType": "fisheye", "fisheyeCPx": f"{scale_px:.6g}"}
    focal_px = calibrated_focal_px(row)
    if focal_px is None:
        return {"focalLengthMm": row["focal_mm"]}
    return {
        "focalLengthMm": f"{focal_px * pixel_mm:.6g}",
        "radialK1": row["K1"],
        "radialK2": row["K2"],
        "radialK3": row["K3"],
        "tangentialT1": row["T1"],
        "tangentialT2": row["T2"],
    }


def shutter_numbers(row):
    """Only a rolling shutter exposes line by line: with the others a read-out
    time is that of an electronic mode which the image does not tell."""
    if row["shutter"] != "rolling":
        return {}
    numbers = {"shutterModel": "2"}
    if row["line_readout_ms"]:
        per_line = float(row["line_readout_ms"]) / int(row["image_height_px"])
        numbers["lineReadoutTimeMs"] = f"{per_line:.6g}"
    return numbers


def camera_numbers(row):
    width, height = int(row["image_width_px"]), int(row["image_height_px"])
    pixel_mm = Decimal(row["pixel_size_um"]) / 1000
    return {
        "name": identifier(row["exif_model"], row["focal_mm"], width, height),
        "imageWidthPx": str(width),
        "imageHeightPx": str(height),
        "pixelSizeUm": row["pixel_size_um"],
        "principalPointXMm": f"{pixel_mm * width / 2:f}".rstrip("0"),
        "principalPointYMm": f"{pixel_mm * height / 2:f}".rstrip("0"),
        "source": "internal",
        **lens_numbers(row),
        **shutter_numbers(row),
    }


def facts_of(rows):
    parts = []
    for row in rows:
        for part in row["source"].split(";"):
            part = re.sub(r"width agrees with \S+ \((.*)\)", r"sensor width: \1", part.strip())
            if part not in parts:
                parts.append(part)
    return "; ".join(parts)


def quality_of(rows):
    parts = []
    if any(RECALLED in row["source"] or "recalled" in row["note"] for row in rows):
        parts.append("recalled in part")
    if any("nominal" in row["note"] and "pitch" in row["note"] for row in rows):
        parts.append("pixel size nominal")
    if any(row.get("lens_type") == "fisheye" for row in rows):
        parts.append("lens nominal")
    return "; ".join(parts)


# Bands


def full_width(row, band, centre, rig_rows):
    """The width of a band: that of the rig of this name, else the one that all
    rigs with this camera agree on."""
    fitting = [
        rig for rig in rig_rows
        if rig["exif_model"] == row["exif_model"]
        and rig["image_width_px"] == row["image_width_px"]
        and rig["band_name"] == band
        and rig["band_centre_nm"] == centre
    ]
    own_name = row["exif_make"] + " " + re.split(r", | \(", row["common_name"])[0]
    named = [rig for rig in fitting if rig["rig_name"] == own_name]
    widths = {rig["fwhm_nm"] for rig in named or fitting}
    return widths.pop() if len(widths) == 1 else ""


def camera_per_band(row, rig_rows):
    """Whether the row stands for several cameras with one band each."""
    indices = {
        rig["camera_index"] for rig in rig_rows
        if rig["exif_model"] == row["exif_model"]
        and rig["image_width_px"] == row["image_width_px"]
    }
    return len(indices) > 1


def band_configs(row, rig_rows):
    names = row["band_names"].split(";") if row["band_names"] else []
    centres = row["band_centre_nm"].split(";") if row["band_centre_nm"] else [""] * len(names)
    bands = [
        (name, centre, full_width(row, name, centre, rig_rows))
        for name, centre in zip(names, centres, strict=True)
    ]
    if not bands or names == ["Red", "Green", "Blue"]:
        return [RGB]
    configs = [[band] for band in bands] if camera_per_band(row, rig_rows) else [bands]
    if names == ["LWIR"] and row["exif_make"] in FALSE_COLOUR_MAKERS:
        configs.append(RGB)
    return configs


def band_rows(name, rows, rig_rows):
    configs = []
    for row in rows:
        configs += [c for c in band_configs(row, rig_rows) if c not in configs]
    if configs == [RGB]:
        return []
    return [
        {"camera": name, "config": str(number), "name": band[0], "wavelengthNm": band[1],
         "widthNm": band[2]}
        for number, config in enumerate(configs) for band in config
    ]


# Cameras


def make_cameras(survey, rig_rows):
    """Rows of [cameras] and [bands]; prints what was left out."""
    left_out = collections.Counter()
    groups = collections.defaultdict(list)
    for row in survey:
        if reason := reason_to_leave_out(row):
            left_out[reason] += 1
        else:
            groups[camera_numbers(row)["name"]].append(row)
    cameras, bands, taken = [], [], 0
    for name, rows in sorted(groups.items()):
        if any(camera_numbers(row) != camera_numbers(rows[0]) for row in rows):
            print(f"contradictory, left out: {name}")
            left_out["contradicts another row"] += len(rows)
            continue
        taken += len(rows)
        cameras.append({
            **camera_numbers(rows[0]), "facts": facts_of(rows), "quality": quality_of(rows)})
        bands += band_rows(name, rows, rig_rows)
    print(f"{taken} of {len(survey)} rows taken, {len(cameras)} cameras")
    for reason, count in left_out.most_common():
        print(f"{count:5} left out: {reason}")
    return cameras, bands


# Rigs


def reason_to_leave_out_rig(rows):
    if not all(r["exif_model"] and r["focal_mm"] and r["image_width_px"] for r in rows):
        return "a camera without EXIF model, image size or focal length"
    if len({r["camera_index"] for r in rows}) < 2:
        return "a single camera"
    return None


def rig_quality(rows):
    clauses = [clause.strip() for row in rows for clause in row["note"].split(";")]
    doubts = [c for c in clauses if re.search(r"recalled|weak|not confirmed|assumed", c)]
    recalled = [
        part.strip() == RECALLED or "suffixes recalled" in part
        for row in rows for part in row["source"].split(";")]
    if any(recalled):
        doubts.append("recalled alone" if all(recalled) else "recalled in part")
    return "; ".join(dict.fromkeys(doubts))


def rig_camera(row):
    return {
        "name": row["band_name"],
        "exifString": identifier(
            row["exif_model"], row["focal_mm"], int(row["image_width_px"]),
            int(row["image_height_px"])),
        "detectionString": row["file_suffix"].rsplit(".", 1)[0],
    }


def rig_bands(row):
    if row["band_name"] in ("RGB", "Wide", "Tele", "Zoom"):
        return RGB
    return [(row["band_name"], row["band_centre_nm"], row["fwhm_nm"])]


def matching_key(rows):
    """What rigs are told apart by: identifiers and the names of bands."""
    return tuple(
        (rig_camera(row)["exifString"],
         tuple("".join(band[0].split()).lower() for band in rig_bands(row)))
        for row in rows)


def merge_alike(groups):
    """Makes one rig, with a name for all, of those that cannot be told apart; its
    cameras are those of the first."""
    merged = {}
    for name, rows in sorted(groups.items()):
        merged.setdefault(matching_key(rows), []).append((name, rows))
    for alike in merged.values():
        maker = alike[0][0].split(" ")[0] + " "
        names = [alike[0][0]] + [name.removeprefix(maker) for name, _ in alike[1:]]
        doubt = f"band centres and widths are those of the {alike[0][0]}" if alike[1:] else ""
        yield " / ".join(names), alike[0][1], doubt


def make_rigs(rig_rows):
    """Rows of [rigs], [rigCameras] and [rigBands]; prints what was left out."""
    groups = collections.defaultdict(list)
    for row in rig_rows:
        groups[row["rig_name"]].append(row)
    rigs, cameras, bands = [], [], []
    for name, rows in sorted(groups.items()):
        rows.sort(key=lambda row: int(row["camera_index"]))
        if reason := reason_to_leave_out_rig(rows):
            print(f"rig left out: {name}: {reason}")
            del groups[name]
    for name, rows, doubt in merge_alike(groups):
        marked = [index for index, row in enumerate(rows) if row["is_reference"] == "yes"]
        rigs.append({
            "name": name, "detection": "detectionString",
            "referenceCamera": str(marked[0] if marked else 0),
            "facts": facts_of(rows), "quality": "; ".join(filter(None, [rig_quality(rows), doubt]))})
        for index, row in enumerate(rows):
            cameras.append({"rig": name, **rig_camera(row)})
            bands += [
                {"rig": name, "camera": str(index), "name": band[0], "wavelengthNm": band[1],
                 "widthNm": band[2]}
                for band in rig_bands(row)
            ]
    print(f"{len(rigs)} rigs made")
    return rigs, cameras, bands


# Output


def write_section(file, name, columns, rows):
    file.write(f"[{name}]\n")
    writer = csv.DictWriter(file, columns, restval="", lineterminator="\n")
    writer.writeheader()
    writer.writerows(rows)


CAMERA_COLUMNS = [
    "name", "imageWidthPx", "imageHeightPx", "pixelSizeUm", "principalPointXMm",
    "principalPointYMm", "shutterModel", "lineReadoutTimeMs", "source", "lensType",
    "focalLengthMm", "radialK1", "radialK2", "radialK3", "tangentialT1", "tangentialT2",
    "fisheyeCPx", "quality", "facts",
]


def check_mappings(cameras):
    names = {camera["name"] for camera in cameras}
    for exif_id, name in MAPPINGS.items():
        if name not in names or exif_id in names:
            sys.exit(f"mapping of {exif_id}: no camera {name}, or a camera of its own")


def main(facts_dir, output):
    facts_dir = pathlib.Path(facts_dir)
    rig_rows = read_table(facts_dir / "rigs.csv")
    cameras, bands = make_cameras(read_table(facts_dir / "survey_cameras.csv"), rig_rows)
    check_mappings(cameras)
    rigs, rig_cameras, rig_camera_bands = make_rigs(rig_rows)
    mappings = [{"exifId": exif_id, "camera": name} for exif_id, name in sorted(MAPPINGS.items())]
    with open(output, "w", encoding="utf-8", newline="") as file:
        file.write("lumo camera database,1\n" + HEADER)
        write_section(file, "cameras", CAMERA_COLUMNS, cameras)
        write_section(file, "bands", ["camera", "config", "name", "wavelengthNm", "widthNm"], bands)
        write_section(file, "mappings", ["exifId", "camera"], mappings)
        write_section(
            file, "rigs", ["name", "detection", "referenceCamera", "quality", "facts"], rigs)
        write_section(
            file, "rigCameras", ["rig", "name", "exifString", "detectionString"], rig_cameras)
        write_section(
            file, "rigBands", ["rig", "camera", "name", "wavelengthNm", "widthNm"],
            rig_camera_bands)
        file.write("[end]\n")


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    main(*sys.argv[1:])
