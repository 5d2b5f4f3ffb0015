#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Makes the sample images: plain pictures with the metadata of survey cameras.

Usage: make_samples.py SAMPLES_DIR, below which the folders images and sequoia are
filled. The same input always gives the same bytes.
Nothing but Python's standard library is used.
"""

import base64
import pathlib
import struct
import sys

ASCII, SHORT, LONG, RATIONAL = 2, 3, 4, 5
SIZES = {ASCII: 1, SHORT: 2, LONG: 4, RATIONAL: 8, 1: 1, 7: 1}


def value_bytes(kind, value):
    if kind == ASCII:
        return value.encode("utf-8") + b"\0"
    if kind in (1, 7):
        return bytes(value)
    values = value if isinstance(value, list) else [value]
    if kind == RATIONAL:
        return b"".join(struct.pack("<II", round(v * 10000), 10000) for v in values)
    return b"".join(struct.pack("<H" if kind == SHORT else "<I", v) for v in values)


def ifd_bytes(tags, offset):
    """One image file directory at `offset`, with its values behind it."""
    entries = b""
    data_offset = offset + 2 + 12 * len(tags) + 4
    data = b""
    for tag, (kind, value) in sorted(tags.items()):
        raw = value_bytes(kind, value)
        count = len(raw) // SIZES[kind]
        if len(raw) <= 4:
            field = raw.ljust(4, b"\0")
        else:
            field = struct.pack("<I", data_offset + len(data))
            data += raw + b"\0" * (len(raw) % 2)
        entries += struct.pack("<HHI", tag, kind, count) + field
    return struct.pack("<H", len(tags)) + entries + b"\0\0\0\0" + data


def tiff_bytes(main_tags, exif_tags, pixels=None):
    """A TIFF structure with an EXIF directory and, if given, one strip of pixels."""
    tags = dict(main_tags)
    tags[0x8769] = (LONG, 0)
    if pixels is not None:
        tags[0x0111] = (LONG, 0)
        tags[0x0117] = (LONG, len(pixels))
    main_size = len(ifd_bytes(tags, 8))
    exif_offset = 8 + main_size
    exif = ifd_bytes(exif_tags, exif_offset)
    tags[0x8769] = (LONG, exif_offset)
    if pixels is not None:
        tags[0x0111] = (LONG, exif_offset + len(exif))
    return b"II*\0\x08\0\0\0" + ifd_bytes(tags, 8) + exif + (pixels or b"")


def segment(marker, payload):
    return struct.pack(">BBH", 0xFF, marker, len(payload) + 2) + payload


def jpeg_bytes(width, height, exif):
    """A baseline JPEG of one grey value, in colour with halved chroma: with these
    two one-symbol Huffman tables each of the six blocks of 16 x 16 pixels takes
    two zero bits."""
    blocks = 6 * ((width + 15) // 16) * ((height + 15) // 16)
    frame = struct.pack(">BHHB", 8, height, width, 3) + bytes([1, 0x22, 0, 2, 0x11, 0, 3, 0x11, 0])
    one_symbol = bytes([1] + [0] * 15 + [0])
    tables = b"".join(segment(0xC4, bytes([table]) + one_symbol) for table in (0x00, 0x10))
    bits = 2 * blocks
    scan = b"\0" * (bits // 8)
    if bits % 8:
        scan += bytes([(1 << (8 - bits % 8)) - 1])
    return (
        b"\xff\xd8"
        + segment(0xE1, b"Exif\0\0" + exif)
        + segment(0xDB, bytes([0] + [1] * 64))
        + segment(0xC0, frame)
        + tables
        + segment(0xDA, bytes([3, 1, 0, 2, 0, 3, 0, 0, 63, 0]))
        + scan
        + b"\xff\xd9"
    )


def packed_zeros(count):
    """PackBits: runs of at most 128 zeros in two bytes each."""
    runs = [128] * (count // 128) + ([count % 128] if count % 128 else [])
    return b"".join(bytes([(1 - run) & 0xFF, 0]) for run in runs)


def camera_tags(make, model, focal, width, height, serial=None, focal35=None, plane=None):
    main = {0x010F: (ASCII, make), 0x0110: (ASCII, model), 0x0132: (ASCII, "2026:05:04 10:11:12")}
    exif = {
        0x9003: (ASCII, "2026:05:04 10:11:12"),
        0x920A: (RATIONAL, focal),
        0xA002: (LONG, width),
        0xA003: (LONG, height),
    }
    if serial:
        exif[0xA431] = (ASCII, serial)
    if focal35:
        exif[0xA405] = (SHORT, focal35)
    if plane:
        exif.update({0xA20E: (RATIONAL, plane), 0xA20F: (RATIONAL, plane), 0xA210: (SHORT, 4)})
    return main, exif


def sample_jpeg(make, model, focal, width, height, file_size=None, **more):
    main, exif = camera_tags(make, model, focal, width, height, **more)
    return jpeg_bytes(*(file_size or (width, height)), tiff_bytes(main, exif))


REFERENCE_BAND = 1


def pose(index):
    """The rotation of a band's camera relative to the reference, as XMP."""
    if index == REFERENCE_BAND:
        return ""
    angles = f"{-0.1 * index - 0.05:.2f}, {0.2 - 0.1 * index:.2f}, {0.05 * index:.2f}"
    return f"<Camera:RigRelatives>{angles}</Camera:RigRelatives>"


def band_tiff(band, index, centre, fwhm):
    """One band of a five-band capture."""
    width, height = 1280, 960
    main, exif = camera_tags("MicaSense", "RedEdge-M", 5.5, width, height, "RM01-0000001", None, 266.6667)
    xmp = f"""<x:xmpmeta xmlns:x="adobe:ns:meta/"><rdf:RDF xmlns:rdf="http://www.w3.org/1999/02/22-rdf-syntax-ns#">
<rdf:Description xmlns:Camera="http://ns.example.org/camera/1.0/" xmlns:MicaSense="http://ns.example.org/capture/1.0/">
<MicaSense:CaptureId>Smp1Capture0001</MicaSense:CaptureId>
<Camera:BandName>{band}</Camera:BandName>
<Camera:CentralWavelength>{centre}</Camera:CentralWavelength>
<Camera:WavelengthFWHM>{fwhm}</Camera:WavelengthFWHM>
<Camera:RigCameraIndex>{index}</Camera:RigCameraIndex>
<Camera:RigRelativesReferenceRigCameraIndex>{REFERENCE_BAND}</Camera:RigRelativesReferenceRigCameraIndex>
{pose(index)}
</rdf:Description></rdf:RDF></x:xmpmeta>"""
    main.update({
        0x0100: (LONG, width), 0x0101: (LONG, height), 0x0102: (SHORT, 16), 0x0103: (SHORT, 32773),
        0x0106: (SHORT, 1), 0x0115: (SHORT, 1), 0x0116: (LONG, height),
        0x02BC: (1, xmp.encode("utf-8")),
    })
    return tiff_bytes(main, exif, packed_zeros(2 * width * height))


SEQUOIA_SERIAL = "PS01-0000001"


def sequoia_tiff(band, rows, irradiance=None):
    """A single-band image, in one uncompressed strip; each pixel has a value of
    its own."""
    width = 8
    main, exif = camera_tags("Parrot", "Sequoia", 3.98, width, rows, SEQUOIA_SERIAL, 30)
    light = ""
    if irradiance is not None:
        reading = struct.pack("<QHHHHfff", 1000, irradiance, 0, 1, 100, 0.0, 0.0, 0.0)
        light = f"<Camera:IrradianceList>{base64.b64encode(reading).decode()}</Camera:IrradianceList>"
    xmp = f"""<x:xmpmeta xmlns:x="adobe:ns:meta/"><rdf:RDF xmlns:rdf="http://www.w3.org/1999/02/22-rdf-syntax-ns#">
<rdf:Description xmlns:Camera="http://ns.example.org/camera/1.0/">
<Camera:BandName>{band}</Camera:BandName>{light}
</rdf:Description></rdf:RDF></x:xmpmeta>"""
    main.update({
        0x0100: (LONG, width), 0x0101: (LONG, rows), 0x0102: (SHORT, 16), 0x0103: (SHORT, 1),
        0x0106: (SHORT, 1), 0x0115: (SHORT, 1), 0x02BC: (1, xmp.encode("utf-8")),
    })
    return tiff_bytes(main, exif, struct.pack(f"<{rows * width}H", *range(rows * width)))


def sequoia_samples():
    """One device: a raw image with debug lines, one without irradiance, a colour
    image, and the calibration file."""
    yield "IMG_260504_101112_0000_GRE.TIF", sequoia_tiff("Green", 970, irradiance=4242)
    yield "IMG_260504_101112_0000_NIR.TIF", sequoia_tiff("NIR", 960)
    yield "IMG_260504_101112_0000_RGB.JPG", sample_jpeg(
        "Parrot", "Sequoia", 4.88, 4608, 3456, (1152, 864), serial=SEQUOIA_SERIAL)
    yield "sequoia_therm.dat", f"serial: {SEQUOIA_SERIAL}\n".encode()


def samples():
    yield "drone_fc6310.jpg", sample_jpeg("DJI", "FC6310", 8.8, 5472, 3648, serial="0K8TDB0000001")
    yield "drone_fc6310_half.jpg", sample_jpeg("DJI", "FC6310", 8.8, 5472, 3648, (2736, 1824))
    yield "compact_portrait.jpg", sample_jpeg("Canon", "Canon PowerShot S110", 5.2, 3000, 4000)
    yield "no_sensor_known.jpg", sample_jpeg("Example", "Model One", 4.0, 4000, 3000, focal35=26)
    bands = [("Blue", 475, 20), ("Green", 560, 20), ("Red", 668, 10), ("NIR", 840, 40), ("Red edge", 717, 10)]
    for index, (band, centre, fwhm) in enumerate(bands):
        yield f"flight_0001_{index + 1}.tif", band_tiff(band, index, centre, fwhm)


def main():
    for folder, files in (("images", samples()), ("sequoia", sequoia_samples())):
        output = pathlib.Path(sys.argv[1]) / folder
        output.mkdir(parents=True, exist_ok=True)
        for name, content in files:
            (output / name).write_bytes(content)


if __name__ == "__main__":
    main()
