#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Tests scripts/add_camera on copies of the shipped database, and that database itself.

Usage: add_camera_test.py SOURCE_DIR [PROGRAM]; with the program, which validates
the outcome and reads an image.
"""

import csv
import pathlib
import subprocess
import sys
import tempfile
import unittest

SOURCE = pathlib.Path(sys.argv[1])
PROGRAM = sys.argv[2] if len(sys.argv) > 2 else None

FACTS = {"--model": "Test & Co (T)", "--focal": "4.25", "--size": "3000x4000",
         "--sensor": "6.2x4.65", "--source": 'a page, "quoted"'}


class AddCamera(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.database = pathlib.Path(folder.name) / "db.csv"
        shipped = SOURCE / "libcore/src/cameraInfo/textdb/shipped_camera_db.csv"
        self.database.write_bytes(shipped.read_bytes())
        self.before = shipped.read_text(encoding="utf-8").split("\n")

    def add(self, facts=None, more=(), **changes):
        """Runs the script with FACTS; a change to None leaves the fact out."""
        merged = dict(FACTS if facts is None else facts)
        merged |= {"--" + name: value for name, value in changes.items()}
        options = [text for pair in merged.items() if pair[1] is not None for text in pair]
        return subprocess.run(
            [sys.executable, SOURCE / "scripts/add_camera", "--database", self.database,
             *options, *more],
            capture_output=True, text=True, check=False)

    def added_lines(self):
        """The new lines; all others are the old ones, and the cameras sorted."""
        after = self.database.read_text(encoding="utf-8").split("\n")
        added = [line for line in after if line not in self.before]
        self.assertEqual([line for line in after if line in self.before], self.before)
        cameras = after[after.index("[cameras]") + 2:after.index("[bands]")]
        names = [line.split(",")[0] for line in cameras]
        self.assertEqual(names, sorted(names))
        return added

    def test_a_camera_is_added_at_its_place_with_what_follows_from_its_facts(self):
        run = self.add(
            shutter="rolling", readout="30",
            more=["--bands", "Red;NIR:850:40", "--bands", "LWIR:11000:6000"])
        self.assertEqual(run.returncode, 0, run.stderr)
        name = "Test - Co -T-_4.3_4000x3000"
        self.assertEqual(self.added_lines(), [
            f"{name},4000,3000,1.55,3.1,2.325,2,0.01,internal,,4.25,,,,,,,,"
            '"a page, ""quoted"""',
            f"{name},0,Red,,", f"{name},0,NIR,850,40", f"{name},1,LWIR,11000,6000"])
        self.assertIn("camdb selftest", run.stdout)
        if PROGRAM:
            check = subprocess.run(
                [PROGRAM, "camdb", "validate", self.database], capture_output=True, check=False)
            self.assertEqual(check.returncode, 0, check.stderr)

    def test_a_shipped_row_is_made_anew_from_its_facts(self):
        rows = {line.split(",")[0]: line for line in self.before}
        for name, options in {
            "FC2103_4.5_4056x3040": ["--shutter", "rolling", "--readout", "32"],
            "HERO6 Black_3.0_4000x3000": ["--shutter", "rolling", "--fisheye"],
            "LEICA Q -Typ 116-_28.0_6000x4000": [],
        }.items():
            with self.subTest(name):
                lines = [line for line in self.before if not line.startswith(name)]
                self.database.write_text("\n".join(lines), encoding="utf-8")
                fields = rows[name].split(",")
                model = name.rsplit("_", 2)[0].replace("-Typ 116-", "(Typ 116)")
                focal = "3" if "--fisheye" in options else fields[10]
                run = self.add(
                    {"--model": model, "--focal": focal, "--size": name.rsplit("_")[-1],
                     "--pixel": fields[3], "--quality": "Q", "--source": "S"}, options)
                self.assertEqual(run.returncode, 0, run.stderr)
                made = next(
                    line for line in self.database.read_text(encoding="utf-8").split("\n")
                    if line.startswith(name))
                self.assertEqual(made, ",".join([*fields[:17], "Q", "S"]))

    def test_what_contradicts_is_refused_and_the_database_left_alone(self):
        cases = [
            ({"sensor": "6.2x3.5"}, "has pixels of 1.550 um along and 1.167 um across"),
            ({"pixel": "1.7"}, "pixels of 1.7 um contradict the sensor"),
            ({"sensor": None}, "neither pixel size nor sensor size"),
            ({"sensor": "6200x4650"}, "make a side of the sensor 6200 mm long"),
            ({"model": "FC6310", "focal": "8.8", "size": "5472x3648", "sensor": "13.2x8.8"},
             "'FC6310_8.8_5472x3648' is in the database already"),
            ({"model": "fc6310", "focal": "9", "size": "5472x3648", "sensor": "6.2x4.13"},
             "contradict 'FC6310_8.8_5472x3648', which has 2.4 um"),
            ({"model": "2", "focal": "4.7", "size": "4056x3040", "sensor": None, "pixel": "1.55"},
             "stands for the camera '2_3.7_4056x3040'"),
            ({"source": " "}, "the source is empty"),
            ({"source": "one\ntwo"}, "the source has a line break"),
            ({"focal": "wide"}, "the focal length 'wide' is not a positive number"),
            ({"focal": "0"}, "the focal length '0' is not a positive number"),
            ({"size": "4000"}, "has not the form WIDTHxHEIGHT"),
            ({"size": "4000.5x3000"}, "not in whole pixels"),
            ({"readout": "30"}, "that of a rolling shutter"),
            ({"readout": "30000", "shutter": "rolling"}, "milliseconds are asked for"),
            ({"bands": "LWIR:11:6"}, "the band LWIR lies at 11 nm"),
            ({"bands": "NIR:850"}, "has not the form NAME or NAME:CENTRE:WIDTH"),
            ({"model": None}, "--model is missing"),
        ]
        for changes, reason in cases:
            with self.subTest(changes):
                run = self.add(**changes)
                self.assertEqual(run.returncode, 1)
                self.assertIn(reason, run.stderr)
                self.assertEqual(self.added_lines(), [])
        self.assertEqual(self.add(source=None).returncode, 2)

    @unittest.skipUnless(PROGRAM, "needs the program")
    def test_an_image_gives_the_name_that_the_program_gives_it(self):
        image = SOURCE / "samples/images/no_sensor_known.jpg"
        run = self.add(
            {"--image": str(image), "--program": PROGRAM, "--pixel": "1.2", "--source": "S"})
        self.assertEqual(run.returncode, 0, run.stderr)
        self.assertEqual(
            self.added_lines(),
            ["Model One_4.0_4000x3000,4000,3000,1.2,2.4,1.8,,,internal,,4,,,,,,,,S"])
        run = self.add({"--image": str(SOURCE / "README.md"), "--program": PROGRAM,
                        "--pixel": "1.2", "--source": "S"})
        self.assertEqual(run.returncode, 1)
        self.assertIn("README.md", run.stderr)


class ShippedDatabase(unittest.TestCase):
    def setUp(self):
        path = next((SOURCE / "libcore/src/cameraInfo").rglob("shipped_camera_db.csv"))
        self.lines = path.read_text(encoding="utf-8").split("\n")

    def section(self, name):
        start = self.lines.index(f"[{name}]") + 1
        end = next(i for i, line in enumerate(self.lines) if i > start and line.startswith("["))
        return list(csv.DictReader(self.lines[start:end]))

    def test_every_camera_and_rig_names_its_source(self):
        rows = self.section("cameras") + self.section("rigs")
        self.assertEqual([row["name"] for row in rows if not row["facts"].strip()], [])

    def test_rigs_name_only_cameras_that_exist(self):
        cameras = {row["name"] for row in self.section("cameras")}
        named = {row["exifString"] for row in self.section("rigCameras")}
        self.assertEqual(named - cameras, set())


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
