// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/xml/camera_params_xml.h"

#include "lumo/cameradata/written_digits.h"
#include "lumo/cameradata/xml_values.h"
#include "xml/camera/camera_tables_xml.h"
#include "xml/camera/lens_xml.h"

#include <QDomElement>
#include <QXmlStreamWriter>

#include <cmath>

namespace lumo::io {
namespace {

constexpr int kLeverArmDigits = 10;

struct SizeTag
{
    const char* name;
    double CameraParams::*value;
};
constexpr SizeTag kSizeTags[] = {
    {"pixelSize", &CameraParams::pixelSize},
    {"principalPointXmm", &CameraParams::principalPointXMm},
    {"principalPointYmm", &CameraParams::principalPointYMm},
};

// The shutter's numbers in files.
constexpr int kGlobalCode = 1;
constexpr int kRollingCode = 2;
constexpr int kVelocityCode = 4;

void writeShutter(QXmlStreamWriter& writer, const CameraParams& params)
{
    constexpr double kMinLineReadoutTime = 0.0001;
    const bool hasTime = std::abs(params.lineReadoutTime) > kMinLineReadoutTime;
    if (params.shutterModel == 0 && !hasTime) {
        return;
    }
    writer.writeStartElement(QStringLiteral("shutterModel"));
    if (hasTime) {
        xml::writeValue(writer, "lineReadoutTime", params.lineReadoutTime, writtendigits::kValue);
    }
    const bool rolling = params.shutterModel >= 1 && params.shutterModel <= 3;
    xml::writeText(writer, xml::integralText(rolling ? kRollingCode : kGlobalCode));
    writer.writeEndElement();
}

void readShutter(const QDomElement& element, CameraParams& params)
{
    // Model 0 has code 1: taken as a model, that would be a rolling shutter.
    const int code = xml::readTag(element, "shutterModel", kGlobalCode);
    params.shutterModel = code == kGlobalCode ? 0 : code;
    params.lineReadoutTime = xml::readValue(element, "shutterModel.lineReadoutTime", 0.0);
    if (code == kVelocityCode) {
        params.velocityNumber = xml::readValue(element, "shutterModel.velocityNumber", 0.0);
    }
}

void writeVector(QXmlStreamWriter& writer, const QString& name, const std::array<double, 3>& vector)
{
    writer.writeStartElement(name);
    xml::writeValue(writer, "x", vector[0], kLeverArmDigits);
    xml::writeValue(writer, "y", vector[1], kLeverArmDigits);
    xml::writeValue(writer, "z", vector[2], kLeverArmDigits);
    writer.writeEndElement();
}

std::array<double, 3> readVector(const QDomElement& element)
{
    return {
        xml::readValue(element, "x", 0.0), xml::readValue(element, "y", 0.0),
        xml::readValue(element, "z", 0.0)};
}

} // namespace

void writeCameraParams(QXmlStreamWriter& writer, const CameraParams& params, XmlOutputType type)
{
    writeShutter(writer, params);
    xml::writeTag(writer, "imageWidth", params.imageWidth);
    xml::writeTag(writer, "imageHeight", params.imageHeight);
    for (const SizeTag& tag : kSizeTags) {
        xml::writeTag(writer, tag.name, params.*tag.value, writtendigits::kSize);
    }
    writeLens(writer, params, type);
    writePixelValues(writer, params.pixelValues);
    writeVignetting(writer, params.vignetting);
    xml::writeTag(writer, "cameraModelSource", text::toString(params.source));
}

void readCameraParams(const QDomElement& element, CameraParams& params)
{
    CameraParams read;
    read.name = params.name;
    readShutter(element, read);
    read.imageWidth = xml::readTag(element, "imageWidth", std::size_t{0});
    read.imageHeight = xml::readTag(element, "imageHeight", std::size_t{0});
    for (const SizeTag& tag : kSizeTags) {
        read.*tag.value = xml::readTag(element, tag.name, 0.0);
    }
    readLens(element, read);
    read.pixelValues = readPixelValues(element);
    read.vignetting = readVignetting(element);
    read.source =
        text::fromString<CameraSource>(xml::readTag(element, "cameraModelSource", QString()));
    params = std::move(read);
}

void writeCamera(QXmlStreamWriter& writer, const CameraData& camera)
{
    writer.writeStartElement(QStringLiteral("camera"));
    xml::writeValue(writer, "name", camera.params.name);
    writeCameraParams(writer, camera.params, XmlOutputType::Full);
    camera.bands.saveXML(writer);
    xml::writeTag(writer, "serialNumber", camera.serialNumber);
    xml::writeTag(writer, "fixedBands", camera.fixedBands);
    xml::writeTag(writer, "id", camera.id);
    if (camera.leverArmState == LeverArmState::Known) {
        writeVector(writer, "leverarm", camera.leverArm);
        writeVector(writer, "leverarmPrecision", camera.leverArmPrecision);
    }
    writer.writeEndElement();
}

CameraData readCamera(const QDomElement& element, std::size_t /*version*/)
{
    CameraData camera;
    camera.params.name = xml::readValue(element, "name", QString());
    readCameraParams(element, camera.params);
    bands_t bands;
    bands.readXML(element);
    camera.setBands(bands, xml::readTag(element, "fixedBands", false));
    camera.serialNumber = xml::readTag(element, "serialNumber", QString());
    camera.id = xml::readTag(element, "id", 0);
    const QDomElement leverArm = element.firstChildElement(QStringLiteral("leverarm"));
    if (!leverArm.isNull()) {
        camera.leverArmState = LeverArmState::Known;
        camera.leverArm = readVector(leverArm);
        camera.leverArmPrecision =
            readVector(element.firstChildElement(QStringLiteral("leverarmPrecision")));
    }
    return camera;
}

} // namespace lumo::io
