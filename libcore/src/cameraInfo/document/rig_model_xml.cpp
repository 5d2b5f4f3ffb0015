// SPDX-License-Identifier: Apache-2.0
#include "cameraInfo/document/rig_model_xml.h"

#include "lumo/cameradata/xml_values.h"
#include "xml/camera/old_rig_values.h"

#include <QDomElement>
#include <QXmlStreamWriter>

namespace lumo {
namespace {

// The first version of the format that does without the rule of older ones.
constexpr std::size_t kProcessingVersion = 13; ///< texts and place of the processing values

struct RelativeValue
{
    const char* name;
    double& (*get)(rig_relatives_t&);
};
constexpr RelativeValue kRelativeValues[] = {
    {"rotX", [](rig_relatives_t& r) -> double& { return r.rotX; }},
    {"rotY", [](rig_relatives_t& r) -> double& { return r.rotY; }},
    {"rotZ", [](rig_relatives_t& r) -> double& { return r.rotZ; }},
    {"translX", [](rig_relatives_t& r) -> double& { return r.transl.x(); }},
    {"translY", [](rig_relatives_t& r) -> double& { return r.transl.y(); }},
    {"translZ", [](rig_relatives_t& r) -> double& { return r.transl.z(); }},
    {"tolRotX", [](rig_relatives_t& r) -> double& { return r.tolRotX; }},
    {"tolRotY", [](rig_relatives_t& r) -> double& { return r.tolRotY; }},
    {"tolRotZ", [](rig_relatives_t& r) -> double& { return r.tolRotZ; }},
    {"tolTranslX", [](rig_relatives_t& r) -> double& { return r.tolTransl.x(); }},
    {"tolTranslY", [](rig_relatives_t& r) -> double& { return r.tolTransl.y(); }},
    {"tolTranslZ", [](rig_relatives_t& r) -> double& { return r.tolTransl.z(); }},
};

void writeRelatives(QXmlStreamWriter& writer, rig_relatives_t relatives)
{
    constexpr int kDigits = 10;
    for (const RelativeValue& value : kRelativeValues) {
        xml::writeValue(writer, value.name, value.get(relatives), kDigits);
    }
}

rig_relatives_t readRelatives(const QDomElement& element)
{
    rig_relatives_t relatives;
    for (const RelativeValue& value : kRelativeValues) {
        double& number = value.get(relatives);
        number = xml::readValue(element, value.name, number);
    }
    return relatives;
}

/// The values that a rig element has once for all of its cameras.
struct Common
{
    QString exifString;
    QString serialNumber;
    RigCameraDetection detection = RigCameraDetection::ByCameraOrder;

    [[nodiscard]] bool detectionStrings() const
    {
        return detection == RigCameraDetection::ByDetectionString;
    }
};

void writeCamera(QXmlStreamWriter& writer, const RigModelCameraAttr& camera, const Common& common)
{
    const QString& exifString = camera[RigKey::ExifString];
    if (common.exifString.isEmpty() && exifString != rig_camera_filter_t::unknownExifString()) {
        xml::writeValue(writer, "exifString", exifString);
    }
    const QString& serialNumber = camera[RigKey::SerialNumber];
    if (common.serialNumber.isEmpty() && !serialNumber.isEmpty()) {
        xml::writeValue(writer, "serialNumber", serialNumber);
    }
    xml::writeValue(writer, "name", camera.name);
    if (common.detectionStrings()) {
        xml::writeValue(writer, "detectionString", camera[RigKey::DetectionString]);
    }
    camera.bands().saveXML(writer);
}

RigModelCameraAttr readCamera(const QDomElement& element, const Common& common)
{
    const auto orElse = [](const QString& text, const QString& other) {
        return text.isEmpty() ? other : text;
    };
    const auto value = [&element](const char* name) {
        return xml::readValue(element, name, QString());
    };
    RigModelCameraAttr camera;
    camera.name = value("name");
    camera[RigKey::ExifString] = orElse(
        orElse(value("exifString"), common.exifString), rig_camera_filter_t::unknownExifString());
    camera[RigKey::SerialNumber] = orElse(value("serialNumber"), common.serialNumber);
    if (common.detectionStrings()) {
        camera[RigKey::DetectionString] = orElse(value("detectionString"), value("defDir"));
    }
    camera.filter().bands.readXML(element);
    return camera;
}

/// The value of a text, with a warning if it is none of those known.
template <typename Value, typename FromText>
Value parse(const QDomElement& element, const QString& text, FromText fromText)
{
    bool ok = false;
    const Value value = fromText(text, &ok);
    if (!ok) {
        xml::warnAt(
            element, QStringLiteral("unknown value \"%1\", \"%2\" is used")
                         .arg(text.left(40), text::toString(value)));
    }
    return value;
}

RigCameraDetection readDetection(const QDomElement& rig, const QDomElement& referenceCamera)
{
    const QString text = xml::readTag(rig, "cameraDetection", QString());
    if (!text.isEmpty()) {
        return parse<RigCameraDetection>(
            rig.firstChildElement(QStringLiteral("cameraDetection")), text,
            text::fromString<RigCameraDetection>);
    }
    return xml::readValue(referenceCamera, "defDir", QString()).isEmpty()
               ? RigCameraDetection::ByCameraOrder
               : RigCameraDetection::ByDetectionString;
}

void readProcessing(const QDomElement& rig, std::size_t version, RigModel& model)
{
    const QDomElement processing = rig.firstChildElement(QStringLiteral("processing"));
    const bool old = version < kProcessingVersion;
    const QString mode = xml::readValue(processing, "mode", QString());
    if (!mode.isEmpty()) {
        model.processingMode = parse<RigSecondaryProcType>(
            processing, mode, old ? text::fromOldString : text::fromString<RigSecondaryProcType>);
    }
    const QString adjust = QStringLiteral("adjustRefCamera");
    const bool adjusted =
        old ? xml::readTag(processing, adjust, true) : xml::readValue(processing, adjust, true);
    model.adjustRefCamera = adjusted ? 1 : 0;
}

} // namespace

void writeRig(QXmlStreamWriter& writer, const RigModel& rig)
{
    const Common common{
        rig.commonMatchString(RigKey::ExifString), rig.commonMatchString(RigKey::SerialNumber),
        rig.cameraDetection};
    writer.writeStartElement(QStringLiteral("rig"));
    xml::writeValue(writer, "name", rig.name);
    xml::writeValue(writer, "exifString", common.exifString);
    if (!common.serialNumber.isEmpty()) {
        xml::writeValue(writer, "serialNumber", common.serialNumber);
    }
    writer.writeStartElement(QStringLiteral("processing"));
    xml::writeValue(writer, "mode", text::toString(rig.processingMode));
    xml::writeValue(writer, "adjustRefCamera", rig.adjustRefCamera != 0);
    writer.writeEndElement();
    xml::writeTag(writer, "cameraDetection", text::toString(rig.cameraDetection));

    writer.writeStartElement(QStringLiteral("referenceCamera"));
    xml::writeValue(writer, "index", rig.refCameraIndex);
    writeCamera(writer, rig.refCamera, common);
    writer.writeEndElement();
    for (const RigModel::Secondary& secondary : rig.secondaries) {
        writer.writeStartElement(QStringLiteral("camera"));
        writeRelatives(writer, secondary.relatives);
        writeCamera(writer, secondary.attributes, common);
        writer.writeEndElement();
    }
    writer.writeEndElement();
}

RigModel readRig(const QDomElement& element, std::size_t version)
{
    const QDomElement reference = element.firstChildElement(QStringLiteral("referenceCamera"));
    Common common;
    common.detection = readDetection(element, reference);
    common.exifString =
        xml::rigExifString(xml::readValue(element, "exifString", QString()), version);
    common.serialNumber = xml::readValue(element, "serialNumber", QString());

    RigModel rig(xml::readValue(element, "name", QString()), common.detection);
    readProcessing(element, version, rig);
    rig.refCameraIndex = xml::referenceCameraIndex(
        xml::readValue(reference, "index", std::size_t{0}), rig.name, version);
    rig.refCamera = readCamera(reference, common);
    const QString cameraTag = QStringLiteral("camera");
    for (QDomElement camera = element.firstChildElement(cameraTag); !camera.isNull();
         camera = camera.nextSiblingElement(cameraTag)) {
        rig.secondaries.push_back({readCamera(camera, common), readRelatives(camera)});
    }
    return rig;
}

} // namespace lumo
