// SPDX-License-Identifier: Apache-2.0
#include "xml/camera/lens_xml.h"

#include "lumo/cameradata/written_digits.h"
#include "lumo/cameradata/xml_values.h"

#include <QDomElement>

namespace lumo::io {
namespace {

struct DistortionTag
{
    const char* name;
    double PerspectiveParams::*value;
};
constexpr DistortionTag kDistortionTags[] = {
    {"radialK1", &PerspectiveParams::radialK1},
    {"radialK2", &PerspectiveParams::radialK2},
    {"radialK3", &PerspectiveParams::radialK3},
    {"tangentialT1", &PerspectiveParams::tangentialT1},
    {"tangentialT2", &PerspectiveParams::tangentialT2},
};

constexpr const char* kPolyTags[] = {"poly0", "poly1", "poly2", "poly3", "poly4"};

void writePerspective(QXmlStreamWriter& writer, const PerspectiveParams& lens, bool full)
{
    xml::writeTag(
        writer, "focalLengthmm", lens.focalLengthMm, full ? writtendigits::kFocalLength : 4);
    xml::writeTag(writer, "distortion", lens.distortion);
    for (const DistortionTag& tag : kDistortionTags) {
        xml::writeTag(writer, tag.name, lens.*tag.value, full ? writtendigits::kLens : 6);
    }
}

void readPerspective(const QDomElement& element, PerspectiveParams& lens)
{
    lens.focalLengthMm = xml::readTag(element, "focalLengthmm", 0.0);
    lens.distortion = xml::readTag(element, "distortion", lens.distortion);
    for (const DistortionTag& tag : kDistortionTags) {
        lens.*tag.value = xml::readTag(element, tag.name, 0.0);
    }
}

void writeFisheye(QXmlStreamWriter& writer, const FisheyeParams& lens, bool full)
{
    xml::writeTag(writer, "npoly", lens.npoly);
    for (std::size_t i = 0; i < lens.poly.size(); ++i) {
        xml::writeTag(writer, kPolyTags[i], lens.poly[i], full ? writtendigits::kLens : 6);
    }
    xml::writeTag(writer, "p0zero", lens.p0zero);
    xml::writeTag(writer, "symmetricAffine", lens.symmetricAffine);
    const int affineDigits = full ? writtendigits::kLens : 1;
    xml::writeTag(writer, "c", lens.c, affineDigits);
    xml::writeTag(writer, "d", lens.symmetricAffine ? 0.0 : lens.d, affineDigits);
    xml::writeTag(writer, "e", lens.symmetricAffine ? 0.0 : lens.e, affineDigits);
    xml::writeTag(writer, "f", lens.f, affineDigits);
}

void readFisheye(const QDomElement& element, FisheyeParams& lens)
{
    lens.npoly = xml::readTag(element, "npoly", lens.npoly);
    for (std::size_t i = 0; i < lens.poly.size(); ++i) {
        lens.poly[i] = xml::readTag(element, kPolyTags[i], lens.poly[i]);
    }
    lens.setP0zero(xml::readTag(element, "p0zero", false));
    // Without the flag all four terms count, so that none is lost.
    lens.setAffine(
        xml::readTag(element, "symmetricAffine", false), xml::readTag(element, "c", 0.0),
        xml::readTag(element, "d", 0.0), xml::readTag(element, "e", 0.0),
        xml::readTag(element, "f", 0.0));
}

LensType readLensType(const QDomElement& element)
{
    const QDomElement child = element.firstChildElement(QStringLiteral("lensType"));
    bool known = false;
    const LensType type = text::fromString<LensType>(child.text(), &known);
    if (!known && !child.isNull()) {
        xml::warnAt(child, QStringLiteral("unknown lens type \"%1\"").arg(child.text()));
    }
    return type;
}

} // namespace

void writeLens(QXmlStreamWriter& writer, const CameraParams& params, XmlOutputType type)
{
    const QString lensType = text::toString(params.lensType);
    if (!lensType.isEmpty()) {
        xml::writeTag(writer, "lensType", lensType);
    }
    const bool full = type == XmlOutputType::Full;
    if (params.lensType == LensType::Perspective) {
        writePerspective(writer, params.perspective, full);
    } else if (params.lensType == LensType::Fisheye) {
        writeFisheye(writer, params.fisheye, full);
    }
}

void readLens(const QDomElement& element, CameraParams& params)
{
    params.lensType = readLensType(element);
    params.perspective = PerspectiveParams();
    params.fisheye = FisheyeParams();
    if (params.lensType == LensType::Perspective) {
        readPerspective(element, params.perspective);
    } else if (params.lensType == LensType::Fisheye) {
        readFisheye(element, params.fisheye);
    }
}

} // namespace lumo::io
