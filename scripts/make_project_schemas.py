#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Makes the schemas of projects and processing templates, for all format versions.

Usage: make_project_schemas.py OUTPUT_DIR, mostly resources/xsd. The two schemas of a
version share most types, and each version changes a few of the one before; a schema
must not load another, so that the common parts are common here only.

The validators that read them have limits: xs:all of many elements takes exponential
time in one of them, xs:key quadratic time. In version 0 the name is the first
attribute of every declaration and the only one of the types of images, cameras and
options: a reader of these schemas depends on it.
"""

import pathlib
import sys

VERSIONS = (0, 1, 2, 3)
INDENT = "  "

# What stands in the attribute "value" of a simple option.
BOOLEAN, COUNT, NUMBER, TEXT = "booleanOption", "countOption", "numberOption", "textOption"

INITIAL = [
    ("matchStrategy", "matchStrategyOption"),
    ("imageScale", NUMBER),
    ("keypointsImageScale", TEXT),
    ("keypointSelector", TEXT),
    ("keypointsToSelect", COUNT),
    ("threshHom", NUMBER),
    ("geometricallyVerifiedMatching", BOOLEAN),
    ("matchTimeNbNeighbours", COUNT),
    ("matchTimeMultiCamera", BOOLEAN),
    ("matchUseTriangulation", BOOLEAN),
    ("matchRelativeDistanceImages", NUMBER),
    ("matchImageSimilarityMaxPairs", COUNT),
    ("matchMtpMaxImagePair", COUNT),
    ("calibrationMethod", TEXT),
    ("internalParamOptimization", "internalsOption"),
    ("externalParamOptimization", TEXT),
    ("rematch", TEXT),
    ("exportCameraParamsAATBBA", BOOLEAN),
    ("exportUndistortedImages", BOOLEAN),
    ("generateOrthoInReport", BOOLEAN),
]
CLOUD = [
    ("pclImageScale", NUMBER),
    ("pclImageMultiscale", BOOLEAN),
    ("pclDensity", TEXT),
    ("pclMinNoMatches", COUNT),
    ("pclWindowSize", COUNT),
    ("pclUseProcessingArea", BOOLEAN),
    ("pclUseAnnotations", BOOLEAN),
    ("pclLimitDepthAutomatically", BOOLEAN),
    ("pclTerrainClassf", BOOLEAN),
    ("pclTerrainClassfMinLength", NUMBER),
    ("pclTerrainClassfMaxLength", NUMBER),
    ("pclTerrainClassfMinHeight", NUMBER),
    ("pclImageGroups", "groupsType"),
    ("pclExportLAS", BOOLEAN),
    ("pclExportLAZ", BOOLEAN),
    ("pclExportPLY", BOOLEAN),
    ("pclExportXYZ", BOOLEAN),
    ("pclExportXYZDelim", TEXT),
    ("pclExportMergeTiles", BOOLEAN),
    ("addOnUseSGM", BOOLEAN),
    ("addOnSGMOptimizeForDSM", BOOLEAN),
]
MESH = [
    ("meshGenerate3dTexturedMesh", BOOLEAN),
    ("meshResolution", TEXT),
    ("meshTextureSize", COUNT),
    ("meshTextureColorBalancing", BOOLEAN),
    ("meshGeometryImageGroups", "groupsType"),
    ("meshTextureImageGroups", "groupsType"),
    ("meshExportPLY", BOOLEAN),
    ("meshExportFBX", BOOLEAN),
    ("meshExportDXF", BOOLEAN),
    ("meshExportOBJ", BOOLEAN),
    ("meshExportTiledOBJ", BOOLEAN),
    ("meshExportZippedOBJ", BOOLEAN),
    ("meshExportPDF3D", BOOLEAN),
    ("meshExportPDF3DLogoPath", TEXT),
]
ORTHO = [
    ("processingArea", "areaType"),
    ("dsmMethod", TEXT),
    ("dsmFilterUseNoiseFilter", BOOLEAN),
    ("dsmFilterUseSmoothing", BOOLEAN),
    ("dsmFilterSmoothingType", TEXT),
    ("dsmTIFF", BOOLEAN),
    ("dsmTIFFMergeTiles", BOOLEAN),
    ("gridDsmXYZ", BOOLEAN),
    ("gridDsmXYZDelim", TEXT),
    ("gridDsmLAS", BOOLEAN),
    ("gridDsmLAZ", BOOLEAN),
    ("gridDsmGridSpacing", NUMBER),
    ("contourSHP", BOOLEAN),
    ("contourDXF", BOOLEAN),
    ("contourBase", NUMBER),
    ("contourElevationInterval", NUMBER),
    ("contourMinLineSize", COUNT),
    ("mosaicTIFF", BOOLEAN),
    ("mosaicTIFFMergeTiles", BOOLEAN),
    ("mosaicTIFFNoTransparency", BOOLEAN),
    ("mosaicKML", BOOLEAN),
    ("mosaicMapbox", BOOLEAN),
    ("mosaicGainc", NUMBER),
]
INDEX = [
    ("indexReflectance", BOOLEAN),
    ("indexReflectanceMergeTiles", BOOLEAN),
    ("indexDownsamplingMethod", TEXT),
    ("indexRangeResolution", NUMBER),
    ("indexRegions", "regionsType"),
    ("indexClasses", "classesType"),
    ("indexExportPointSHP", BOOLEAN),
    ("indexExportPointSHPGridSize", NUMBER),
    ("indexExportPolygonSHP", BOOLEAN),
    ("indexExportPolygonSHPGridSize", NUMBER),
]
# As cameras are written everywhere; the others may be missing.
REQUIRED_OF_CAMERA = ("imageWidth", "imageHeight", "pixelSize")
MANY = (0, "unbounded")
OPTIONAL = (0, 1)
REQUIRED = (1, 1)


def option_types(version):
    """Type -> its options, in the order of the sections."""
    return {
        "initialOptionsType": INITIAL,
        "denseOptionsType": CLOUD if version >= 2 else CLOUD + MESH,
        **({"meshOptionsType": MESH} if version >= 2 else {}),
        "orthoOptionsType": ORTHO,
        "indexOptionsType": INDEX,
    }


def element(name, kind, occurs=REQUIRED):
    least, most = occurs
    text = f'<xs:element name="{name}" type="{kind}"'
    text += "" if least == 1 else f' minOccurs="{least}"'
    text += "" if most == 1 else f' maxOccurs="{most}"'
    return [text + "/>"]


def attribute(name, kind, required=False):
    return [f'<xs:attribute name="{name}" type="{kind}"' + (' use="required"/>' if required else "/>")]


def tag(start, lines):
    return [f"<{start}>", *(INDENT + line for line in lines), f"</{start.split()[0]}>"]


def sequence(*parts):
    return tag("xs:sequence", [line for part in parts for line in part])


# Other programs may keep marks of their own with what they know.
OTHERS = ['<xs:anyAttribute namespace="##local" processContents="skip"/>']


def complex_type(name, *parts):
    lines = [line for part in parts for line in part]
    return tag(f'xs:complexType name="{name}"', lines) if lines else [
        f'<xs:complexType name="{name}"/>']


def enumeration(name, values, base="xs:string"):
    lines = [f'<xs:enumeration value="{value}"/>' for value in values]
    return tag(f'xs:simpleType name="{name}"', tag(f'xs:restriction base="{base}"', lines))


def pattern(name, base, value):
    lines = [f'<xs:pattern value="{value}"/>']
    return tag(f'xs:simpleType name="{name}"', tag(f'xs:restriction base="{base}"', lines))


def option_type(name, kind):
    """An option with its value; it may have further attributes and a text."""
    content = tag('xs:extension base="xs:string"', attribute("value", kind, True) + OTHERS)
    return tag(f'xs:complexType name="{name}"', tag("xs:simpleContent", content))


def simple_types(version):
    return [
        enumeration("formatVersion", [version], "xs:int"),
        # xs:double would let INF and NaN pass.
        pattern("number", "xs:double", r"[+\-]?([0-9]+(\.[0-9]*)?|\.[0-9]+)([eE][+\-]?[0-9]+)?"),
        tag('xs:simpleType name="nonEmptyText"', tag('xs:restriction base="xs:string"',
                                                     ['<xs:minLength value="1"/>'])),
        enumeration("matchStrategyName", ["AutoAerial", "AutoOblique", "Custom", "Fixed"]),
        enumeration("internalsName", ["None", "Leading", "All", "AllPrior"]),
    ]


def group_attribute(version):
    return attribute("name" if version >= 1 else "value", "nonEmptyText", True)


def common_types(version):
    types = simple_types(version)
    types += [
        option_type(BOOLEAN, "xs:boolean"),
        option_type(COUNT, "xs:int"),
        option_type(NUMBER, "number"),
        option_type(TEXT, "xs:string"),
        option_type("matchStrategyOption", "matchStrategyName"),
        option_type("internalsOption", "internalsName"),
        complex_type("groupType", group_attribute(version), OTHERS),
        complex_type("groupsType", sequence(element("group", "groupType", MANY)), OTHERS),
        complex_type("cornerType", attribute("x", "number", True), attribute("y", "number", True),
                     attribute("z", "number"), OTHERS),
        complex_type("areaType", sequence(element("vertex", "cornerType", MANY)), OTHERS),
        complex_type("regionType", sequence(element("vertex", "cornerType", MANY)),
                     attribute("name", "xs:string", True), OTHERS),
        complex_type("regionsType", sequence(element("region", "regionType", MANY)), OTHERS),
        complex_type("classType", attribute("name", "xs:string", True),
                     attribute("min", "number", True), attribute("max", "number", True), OTHERS),
        complex_type("classesType", sequence(element("class", "classType", MANY))),
    ]
    sections = option_types(version)
    for name, options in sections.items():
        types.append(complex_type(
            name, sequence(*(element(option, kind, OPTIONAL) for option, kind in options))))
    types.append(complex_type("optionsType", sequence(*(
        element(name.removesuffix("OptionsType"), name, OPTIONAL) for name in sections))))
    return types


def camera_type(version):
    kinds = {
        "shutterModel": "shutterModelType", "imageWidth": "xs:unsignedInt",
        "imageHeight": "xs:unsignedInt", "pixelSize": "number", "principalPointXmm": "number",
        "principalPointYmm": "number", "lensType": "lensTypeName", "focalLengthmm": "number",
        "distortion": "xs:int", "radialK1": "number", "radialK2": "number", "radialK3": "number",
        "tangentialT1": "number", "tangentialT2": "number", "npoly": "xs:int",
        **{f"poly{i}": "number" for i in range(5)}, "p0zero": "xs:boolean",
        "symmetricAffine": "xs:boolean", "c": "number", "d": "number", "e": "number",
        "f": "number",
    }
    parts = [element(name, kind, REQUIRED if name in REQUIRED_OF_CAMERA else OPTIONAL)
             for name, kind in kinds.items()]
    parts += [element("pixelValue", "pixelValueType", MANY),
              element("vignettingPoly", "vignettingType", MANY),
              element("cameraModelSource", "xs:string", OPTIONAL)]
    if version >= 1:
        parts += [element("exifID", "xs:string", OPTIONAL),
                  element("bandConfig", "bandConfigType", MANY)]
    else:
        parts += [element("band", "bandType", MANY)]
    parts += [element("serialNumber", "xs:string", OPTIONAL),
              element("fixedBands", "xs:boolean", OPTIONAL), element("id", "xs:int", OPTIONAL),
              element("leverarm", "vectorType", OPTIONAL),
              element("leverarmPrecision", "vectorType", OPTIONAL)]
    names = attribute("name", "nonEmptyText", True) + attribute("serialNumber", "xs:string")
    if version < 1:
        names += attribute("aliasName", "xs:string")
    return complex_type("cameraType", sequence(*parts), names, OTHERS)


def vector(names, required=True):
    return [line for name in names for line in attribute(name, "number", required)]


def camera_types(version):
    types = [
        enumeration("lensTypeName", ["perspective", "fisheye", "spherical"]),
        enumeration("pixelTypeName", ["uint8", "uint16", "int16", "uint32", "int32", "float32",
                                      "float64"]),
        enumeration("processingModeName", ["calibrate", "independCalRel", "optRels", "optRotRel",
                                           "optAllRel"]),
        # Empty text stands for cameraOrder.
        enumeration("cameraDetectionName", ["", "detectionString", "cameraOrder"]),
        tag('xs:complexType name="shutterModelType"', tag("xs:simpleContent", tag(
            'xs:extension base="xs:int"', vector(["lineReadoutTime", "velocityNumber"], False)))),
        complex_type("pixelValueType", attribute("pixelType", "pixelTypeName", True),
                     vector(["min", "max"])),
        complex_type("vignettingType", attribute("fNumber", "number", True),
                     attribute("sizeY", "xs:unsignedInt", True),
                     attribute("value", "xs:string", True)),
        complex_type("vectorType", vector("xyz")),
        complex_type("bandType", attribute("name", "xs:string", True),
                     vector(["wavelength", "width", "weight"], False)),
    ]
    if version >= 1:
        types.append(complex_type("bandConfigType", sequence(element("band", "bandType", MANY))))
        detection = element("cameraDetection", "cameraDetectionName", OPTIONAL)
    else:
        types.append(complex_type("cameraDetectionType",
                                  attribute("value", "cameraDetectionName", True)))
        detection = element("cameraDetection", "cameraDetectionType", OPTIONAL)
    types.append(camera_type(version))
    pose = vector([kind + axis for kind in ("rot", "transl", "tolRot", "tolTransl")
                   for axis in "XYZ"], False)
    types += [
        complex_type("rigCameraType", sequence(element("band", "bandType", MANY)),
                     attribute("name", "xs:string"), attribute("index", "xs:unsignedInt"),
                     attribute("exifString", "xs:string"), attribute("serialNumber", "xs:string"),
                     attribute("detectionString", "xs:string"), pose, OTHERS),
        complex_type("rigProcessingType", attribute("mode", "processingModeName"),
                     attribute("adjustRefCamera", "xs:boolean"), OTHERS),
        complex_type("rigType", sequence(
            element("processing", "rigProcessingType", OPTIONAL), detection,
            element("referenceCamera", "rigCameraType", OPTIONAL),
            element("camera", "rigCameraType", MANY)),
            attribute("name", "nonEmptyText", True), attribute("exifString", "xs:string"),
            attribute("serialNumber", "xs:string"), OTHERS),
        tag('xs:complexType name="camerasType"',
            tag('xs:choice minOccurs="0" maxOccurs="unbounded"',
                element("camera", "cameraType") + element("rig", "rigType"))),
    ]
    return types


def image_types(version):
    if version >= 3:
        time = pattern("timeStamp", "xs:dateTime", r"\d{4}-\d{2}-\d{2}T\d{2}:\d{2}:\d{2}")
    else:
        time = pattern("timeStamp", "xs:string", r"\d{4}:\d{2}:\d{2} \d{2}:\d{2}:\d{2}")
    return [
        time,
        complex_type("imageCameraType", attribute("name", "nonEmptyText", True), OTHERS),
        complex_type("positionType", vector("xyz"), vector(["accuracyXY", "accuracyZ"], False),
                     OTHERS),
        complex_type("orientationType", vector(["omega", "phi", "kappa"]),
                     vector(["accuracy"], False), OTHERS),
        complex_type("imageType", sequence(
            element("camera", "imageCameraType", OPTIONAL),
            element("position", "positionType", OPTIONAL),
            element("orientation", "orientationType", OPTIONAL),
            element("time", "timeStamp", OPTIONAL), element("group", "groupType", MANY),
            element("exifID", "imageExifType", OPTIONAL)),
            attribute("path", "nonEmptyText", True), attribute("enabled", "xs:boolean"), OTHERS),
        tag('xs:complexType name="imageExifType"', tag("xs:simpleContent", tag(
            'xs:extension base="xs:string"', attribute("value", "xs:string")))),
        complex_type("imagesType", sequence(element("image", "imageType", MANY))),
    ]


def system_types(version):
    if version >= 3:
        vertical = complex_type("verticalType", sequence(
            element("model", "nonEmptyText"), element("geoidHeight", "number", OPTIONAL)), OTHERS)
    else:
        vertical = complex_type("verticalType", attribute("model", "nonEmptyText", True),
                                attribute("geoidHeight", "number"), OTHERS)
    name = "vertical" if version >= 3 else "verticalDef"
    return [
        vertical,
        complex_type("systemType", sequence(
            element("wkt", "nonEmptyText", OPTIONAL), element(name, "verticalType", OPTIONAL)),
            OTHERS),
        complex_type("systemsType", sequence(
            *(element(which, "systemType", OPTIONAL) for which in ("image", "gcp", "output")))),
    ]


def project_types(version):
    kind = attribute("type", "gcpTypeName", True) if version >= 2 else []
    types = camera_types(version) + image_types(version) + system_types(version)
    if version >= 2:
        types.append(enumeration("gcpTypeName", ["3D", "2D", "checkPoint"]))
    types += [
        enumeration("objectTypeName", ["marker", "scale", "polyline", "surface", "volume"]),
        complex_type("inputsType", sequence(
            element("images", "imagesType"), element("cameras", "camerasType", OPTIONAL),
            element("coordinateSystems", "systemsType", OPTIONAL))),
        complex_type("outputType", sequence(*(element(name, TEXT, OPTIONAL) for name in (
            "name", "resultFolder", "reportLanguage", "reportLogo")))),
        complex_type("markType", attribute("image", "nonEmptyText", True), vector("xy"), OTHERS),
        complex_type("gcpType", sequence(element("mark", "markType", MANY)),
                     attribute("name", "nonEmptyText", True), kind, vector("xy"),
                     vector(["z", "accuracyXY", "accuracyZ"], False), OTHERS),
        complex_type("gcpsType", sequence(element("gcp", "gcpType", MANY))),
        complex_type("vertexType", vector("xyz"), OTHERS),
        complex_type("objectType", sequence(element("vertex", "vertexType", MANY)),
                     attribute("type", "objectTypeName", True), attribute("name", "xs:string"),
                     OTHERS),
        complex_type("objectsType", sequence(element("object", "objectType", MANY))),
    ]
    return types


def versions_of(product_tag, version, before):
    """The element that tells the versions; those of version 0 may not tell it."""
    return sequence(*before, element(product_tag, "nonEmptyText",
                                     REQUIRED if product_tag == "version" else OPTIONAL),
                    element("kpxVersion", "formatVersion", REQUIRED if version else OPTIONAL),
                    element("convertedFrom", "xs:string", OPTIONAL))


def root(name, *parts):
    return tag(f'xs:element name="{name}"', tag("xs:complexType", sequence(*parts)))


def project_schema(version):
    return [
        root("lumodesk", element("software", "softwareType", REQUIRED if version else OPTIONAL),
             element("options", "optionsType", OPTIONAL), element("inputs", "inputsType"),
             element("output", "outputType", OPTIONAL), element("gcps", "gcpsType", OPTIONAL),
             element("objects", "objectsType", OPTIONAL)),
        complex_type("softwareType", versions_of(
            "projectVersion", version, [element("product", "xs:string", OPTIONAL)])),
        *common_types(version), *project_types(version)]


def template_schema(version):
    texts = [element(name, "xs:string", OPTIONAL) for name in ("name", "description")]
    return [
        root("lumotmpl", element("information", "informationType"),
             element("options", "optionsType", OPTIONAL)),
        complex_type("informationType", versions_of("version", version, texts)),
        *common_types(version)]


def write(path, title, declarations):
    lines = ['<?xml version="1.0" encoding="UTF-8"?>', "<!-- SPDX-License-Identifier: Apache-2.0 -->",
             f"<!-- {title}. Made by scripts/make_project_schemas.py. -->",
             '<xs:schema xmlns:xs="http://www.w3.org/2001/XMLSchema">']
    for declaration in declarations:
        lines += ["", *(INDENT + line for line in declaration)]
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_text("\n".join([*lines, "", "</xs:schema>", ""]), encoding="utf-8")


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    for version in VERSIONS:
        folder = pathlib.Path(sys.argv[1]) / str(version)
        write(folder / "lumo.xsd", f"Projects of format version {version}",
              project_schema(version))
        write(folder / "template.xsd", f"Processing templates of format version {version}",
              template_schema(version))


if __name__ == "__main__":
    main()
