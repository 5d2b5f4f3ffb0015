// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/cameraInfo/lumo_camera_db_xml.h"

#include "cameraInfo/document_fault.h"
#include "cameraInfo/rig_model_xml.h"
#include "lumo/cameradata/xml_values.h"
#include "lumo/foundation/log.h"
#include "xml/camera_db_version.h"

#include <QDomDocument>
#include <QXmlStreamWriter>

#include <algorithm>

namespace lumo::cameradb {
namespace {

QDomElement rootOf(const QDomDocument& document)
{
    return document.firstChildElement(QStringLiteral("cameraModelDB"));
}

/// Calls `read` with the first child of this name and with all elements behind
/// it, whatever their names.
template <typename Read>
void forEachFrom(const QDomElement& parent, const QString& name, Read read)
{
    for (QDomElement element = parent.firstChildElement(name); !element.isNull();
         element = element.nextSiblingElement()) {
        read(element);
    }
}

CameraSource sourceInDatabase(CameraSource source, bool userDatabase)
{
    if (!userDatabase) {
        return CameraSource::InternalDatabase;
    }
    const bool kept = source == CameraSource::EditedDatabase || source == CameraSource::Exif;
    return kept ? source : CameraSource::UserDatabase;
}

void readRigs(const QDomElement& rigs, std::size_t version, CameraDBData& data)
{
    forEachFrom(rigs, QStringLiteral("rig"), [&](const QDomElement& element) {
        const RigModel rig = readRig(element, version);
        if (rig.valid()) {
            data.rigs.insert_or_assign(rig.name, rig);
        }
    });
}

void readCameras(
    const QDomElement& cameras, std::size_t version, bool userDatabase, CameraDBData& data)
{
    forEachFrom(cameras, QStringLiteral("camera"), [&](const QDomElement& element) {
        CameraModelFromDB camera;
        camera.readXML(element, version);
        camera.params.source = sourceInDatabase(camera.params.source, userDatabase);
        if (camera.valid(npos, true)) {
            data.cameras.emplace(camera.params.name, camera);
        }
    });
}

void readMappings(const QDomElement& mappings, CameraDBData& data)
{
    forEachFrom(mappings, QStringLiteral("mapping"), [&](const QDomElement& element) {
        const QString exifId = xml::readValue(element, "exif", QString());
        data.mappings[exifId] = xml::readValue(element, "camera", QString());
    });
}

/// Reads into empty tables.
bool read(const QDomDocument& document, bool userDatabase, CameraDBData& data)
{
    const std::size_t version = documentVersion(document);
    const QDomElement root = rootOf(document);
    if (root.isNull()) {
        log::important() << "cameraModelDB tag was not found in the XML";
        return false;
    }
    const QDomElement cameras = root.firstChildElement(QStringLiteral("cameras"));
    if (cameras.isNull()) {
        log::important() << "camera database does not contain cameras.";
        return false;
    }
    readRigs(root.firstChildElement(QStringLiteral("rigs")), version, data);
    readCameras(cameras, version, userDatabase, data);
    readMappings(root.firstChildElement(QStringLiteral("mappings")), data);
    return true;
}

/// Removes the camera of this name and serial number.
void removeBody(const CameraModelFromDB& camera, CameraDBData& data)
{
    const auto [first, last] = data.cameras.equal_range(camera.params.name);
    const auto body = std::find_if(first, last, [&camera](const auto& entry) {
        return entry.second.serialNumber == camera.serialNumber;
    });
    if (body != last) {
        data.cameras.erase(body);
    }
}

bool mergeCameras(const CameraDBData& added, bool overwrite, CameraDBData& data)
{
    // Names are looked up in what was there before: the bodies of a new model
    // share theirs, and come all or none.
    std::vector<CameraModelFromDB> taken;
    for (const auto& [name, camera] : added.cameras) {
        if (overwrite || data.cameras.count(name) == 0) {
            taken.push_back(camera);
        }
    }
    for (const CameraModelFromDB& camera : taken) {
        removeBody(camera, data);
        data.cameras.emplace(camera.params.name, camera);
    }
    return !taken.empty();
}

template <typename Table>
bool mergeTable(const Table& added, bool overwrite, Table& table)
{
    bool modified = false;
    for (const auto& [key, value] : added) {
        if (overwrite || table.count(key) == 0) {
            table.insert_or_assign(key, value);
            modified = true;
        }
    }
    return modified;
}

} // namespace

bool getXML(
    const QDomDocument& document, bool userDatabase, bool merge, bool overwrite, CameraDBData& data,
    bool& modified)
{
    modified = false;
    if (!userDatabase || !merge) {
        modified = !data.empty();
        data = {};
        if (!read(document, userDatabase, data)) {
            return false;
        }
        modified = !data.empty();
        return true;
    }
    CameraDBData added;
    if (!read(document, userDatabase, added)) {
        return false;
    }
    const bool cameras = mergeCameras(added, overwrite, data);
    const bool rigs = mergeTable(added.rigs, overwrite, data.rigs);
    const bool mappings = mergeTable(added.mappings, overwrite, data.mappings);
    modified = cameras || rigs || mappings;
    return true;
}

std::size_t documentVersion(const QDomDocument& document)
{
    return cameraDbVersion(rootOf(document));
}

bool versionSupported(std::size_t version, bool userDatabase, bool allowHigher)
{
    if (version == 0 || version == npos) {
        log::warning() << "Camera database version is unknown";
        return false;
    }
    if (userDatabase && version > kCurrentVersion) {
        log::warning() << "User camera database version" << version
                       << "is higher than the current one" << kCurrentVersion;
        return allowHigher;
    }
    if (!userDatabase && version != kCurrentVersion) {
        log::warning() << QStringLiteral(
                              "Internal camera database version %1 is not the current one %2.")
                              .arg(version)
                              .arg(kCurrentVersion);
        return false;
    }
    return true;
}

void writeXML(QXmlStreamWriter& writer, const HeaderPairs& headerPairs, const CameraDBData& data)
{
    writer.writeStartElement(QStringLiteral("cameraModelDB"));
    xml::writeTag(writer, "version", kCurrentVersion);
    for (const auto& [name, value] : headerPairs) {
        writer.writeStartElement(name);
        xml::writeValue(writer, "value", value);
        writer.writeEndElement();
    }
    writer.writeStartElement(QStringLiteral("rigs"));
    for (const auto& [name, rig] : data.rigs) {
        writeRig(writer, rig);
    }
    writer.writeEndElement();
    writer.writeStartElement(QStringLiteral("cameras"));
    for (const auto& [name, camera] : data.cameras) {
        if (camera.valid(npos, true)) {
            camera.saveXML(writer);
        }
    }
    writer.writeEndElement();
    writer.writeStartElement(QStringLiteral("mappings"));
    for (const auto& [exifId, camera] : data.mappings) {
        writer.writeStartElement(QStringLiteral("mapping"));
        xml::writeValue(writer, "exif", exifId);
        xml::writeValue(writer, "camera", camera);
        writer.writeEndElement();
    }
    writer.writeEndElement();
    writer.writeEndElement();
}

bool documentText(
    const HeaderPairs& headerPairs, const CameraDBData& data, QString& text, QString& error)
{
    const QString fault = documentFault(headerPairs, data);
    if (!fault.isEmpty()) {
        error = fault;
        return false;
    }
    constexpr int kOneTab = -1;
    // writeStartDocument would leave the encoding out of a text.
    QString written = QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-8\"?>");
    QXmlStreamWriter writer(&written);
    writer.setAutoFormatting(true);
    writer.setAutoFormattingIndent(kOneTab);
    writeXML(writer, headerPairs, data);
    writer.writeEndDocument();
    text = written;
    return true;
}

} // namespace lumo::cameradb
