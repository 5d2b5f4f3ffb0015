// SPDX-License-Identifier: Apache-2.0
// CameraModelFromDB: its XML form.
#include "lumo/cameradata/xml_values.h"
#include "lumo/core/cameraInfo/camera_model_from_db.h"
#include "lumo/core/xml/camera_params_xml.h"

#include <QDomElement>
#include <QXmlStreamWriter>

#include <utility>

namespace lumo {
namespace {

const QString& bandConfigTag()
{
    static const QString tag = QStringLiteral("bandConfig");
    return tag;
}

void writeBandConfig(QXmlStreamWriter& writer, const bands_t& bands)
{
    writer.writeStartElement(bandConfigTag());
    bands.saveXML(writer);
    writer.writeEndElement();
}

std::vector<bands_t> readBandConfigs(const QDomElement& element)
{
    std::vector<bands_t> configs;
    for (QDomElement child = element.firstChildElement(bandConfigTag()); !child.isNull();
         child = child.nextSiblingElement(bandConfigTag())) {
        bands_t bands;
        bands.readXML(child);
        if (!bands.empty()) {
            configs.push_back(std::move(bands));
        }
    }
    if (configs.empty()) {
        configs.push_back(band::makeRGBBands());
    }
    return configs;
}

} // namespace

void CameraModelFromDB::saveXML(QXmlStreamWriter& writer) const
{
    writer.writeStartElement(QStringLiteral("camera"));
    xml::writeValue(writer, "name", params.name);
    if (!serialNumber.isEmpty()) {
        xml::writeValue(writer, "serialNumber", serialNumber);
    }
    io::writeCameraParams(writer, params, io::XmlOutputType::Full);
    if (!exifId.isEmpty() && exifId != params.name) {
        xml::writeTag(writer, "exifID", exifId);
    }
    const bands_t& first = defaultBands();
    writeBandConfig(writer, first);
    for (const bands_t& bands : bandConfigs) {
        if (&bands != &first) {
            writeBandConfig(writer, bands);
        }
    }
    writer.writeEndElement();
}

void CameraModelFromDB::readXML(const QDomElement& element, std::size_t /*version*/)
{
    serialNumber = xml::readValue(element, "serialNumber", QString());
    io::readCameraParams(element, params);
    params.name = xml::readValue(element, "name", QString());
    if (xml::readTagText(element, "exifID", exifId) && exifId == params.name) {
        exifId.clear();
    }
    bandConfigs = readBandConfigs(element);
    defaultBandConfig = 0;
}

} // namespace lumo
