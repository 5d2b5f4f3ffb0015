// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/cameraInfo/lumo_camera_db_xml.h"

#include "cameraInfo/document/document_fault.h"
#include "cameraInfo/document/rig_model_xml.h"
#include "cameraInfo/record/record_fault.h"
#include "cameraInfo/tables/camera_table.h"
#include "lumo/cameradata/xml_document.h"
#include "lumo/cameradata/xml_values.h"
#include "lumo/foundation/log.h"
#include "xml/camera/camera_db_version.h"

#include <QDomDocument>
#include <QXmlStreamWriter>

#include <optional>
#include <utility>

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

/// Notes that a record of the document is not in the tables.
void skip(
    const QDomElement& element, const QString& name, const QString& reason, CameraDBData& data)
{
    // Documents that were not parsed know no lines.
    const QString place = element.lineNumber() > 0
                              ? QStringLiteral("line %1: ").arg(element.lineNumber())
                              : QString();
    const QString text =
        QStringLiteral("%1%2 \"%3\": %4").arg(place, element.tagName(), name, reason);
    log::warning() << text;
    data.skipped.append(text);
}

/// Why a rig that was read is not valid.
QString faultOf(const RigModel& rig)
{
    if (rig.name.isEmpty()) {
        return QStringLiteral("The rig has no name");
    }
    return rig.secondaries.empty()
               ? QStringLiteral("The rig has one camera only")
               : QStringLiteral("The index of the reference camera is that of none");
}

void readRigs(const QDomElement& rigs, std::size_t version, CameraDBData& data)
{
    forEachFrom(rigs, QStringLiteral("rig"), [&](const QDomElement& element) {
        RigModel rig = readRig(element, version);
        const QString name = rig.name;
        if (!rig.valid()) {
            skip(element, name, faultOf(rig), data);
        } else if (!data.rigs.insert_or_assign(name, std::move(rig)).second) {
            skip(
                element, name, QStringLiteral("takes the place of an earlier one of this name"),
                data);
        }
    });
}

/// Stores the camera, in place of one of the same name and serial number.
/// \returns whether there was one
bool putBody(CameraModelFromDB&& camera, CameraDBData& data)
{
    const auto held = cameratable::findExact(data.cameras, camera.params.name, camera.serialNumber);
    const bool replaces = held != data.cameras.end();
    if (replaces) {
        data.cameras.erase(held);
    }
    const QString name = camera.params.name;
    data.cameras.emplace(name, std::move(camera));
    return replaces;
}

void readCameras(
    const QDomElement& cameras, std::size_t version, bool userDatabase, CameraDBData& data)
{
    forEachFrom(cameras, QStringLiteral("camera"), [&](const QDomElement& element) {
        CameraModelFromDB camera;
        camera.readXML(element, version);
        camera.params.source = sourceInDatabase(camera.params.source, userDatabase);
        const QString name = camera.params.name;
        QString reason;
        if (!usable(camera, reason)) {
            skip(element, name, reason, data);
        } else if (putBody(std::move(camera), data)) {
            skip(
                element, name,
                QStringLiteral("takes the place of an earlier one of this name and serial number"),
                data);
        }
    });
}

void readMappings(const QDomElement& mappings, CameraDBData& data)
{
    forEachFrom(mappings, QStringLiteral("mapping"), [&](const QDomElement& element) {
        const QString exifId = xml::readValue(element, "exif", QString());
        const QString camera = xml::readValue(element, "camera", QString());
        const auto [held, isNew] = data.mappings.emplace(exifId, camera);
        if (!isNew && held->second != camera) {
            held->second = camera;
            skip(
                element, exifId,
                QStringLiteral("takes the place of an earlier one of this identifier"), data);
        }
    });
}

/// Reads into empty tables.
bool read(const QDomDocument& document, bool userDatabase, CameraDBData& data, QString& error)
{
    const std::size_t version = documentVersion(document);
    const QDomElement root = rootOf(document);
    if (root.isNull()) {
        log::important() << "cameraModelDB tag was not found in the XML";
        error =
            QStringLiteral("is not a camera database: the root element is '%1', not cameraModelDB")
                .arg(document.documentElement().tagName());
        return false;
    }
    const QDomElement cameras = root.firstChildElement(QStringLiteral("cameras"));
    if (cameras.isNull()) {
        log::important() << "camera database does not contain cameras.";
        error = QStringLiteral("the camera database has no element 'cameras'");
        return false;
    }
    readRigs(root.firstChildElement(QStringLiteral("rigs")), version, data);
    readCameras(cameras, version, userDatabase, data);
    readMappings(root.firstChildElement(QStringLiteral("mappings")), data);
    return true;
}

bool mergeCameras(cameratable::Table&& added, bool overwrite, CameraDBData& data)
{
    // Names are looked up in what was there before: the bodies of a new model
    // share theirs, and come all or none.
    if (!overwrite) {
        std::erase_if(
            added, [&data](const auto& entry) { return data.cameras.contains(entry.first); });
    }
    for (auto& [name, camera] : added) {
        putBody(std::move(camera), data);
    }
    return !added.empty();
}

template <typename Table>
bool mergeTable(Table&& added, bool overwrite, Table& table)
{
    bool modified = false;
    for (auto& [key, value] : added) {
        if (overwrite || !table.contains(key)) {
            table.insert_or_assign(key, std::move(value));
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
    QString unused;
    return getXML(document, userDatabase, merge, overwrite, data, modified, unused);
}

bool getXML(
    const QDomDocument& document, bool userDatabase, bool merge, bool overwrite, CameraDBData& data,
    bool& modified, QString& error)
{
    modified = false;
    if (!userDatabase || !merge) {
        modified = !data.empty();
        data = {};
        if (!read(document, userDatabase, data, error)) {
            return false;
        }
        modified = !data.empty();
        return true;
    }
    CameraDBData added;
    if (!read(document, userDatabase, added, error)) {
        return false;
    }
    const bool cameras = mergeCameras(std::move(added.cameras), overwrite, data);
    const bool rigs = mergeTable(std::move(added.rigs), overwrite, data.rigs);
    const bool mappings = mergeTable(std::move(added.mappings), overwrite, data.mappings);
    modified = cameras || rigs || mappings;
    return true;
}

bool loadDocument(const QString& file, CameraDBData& data, QString& error)
{
    QDomDocument document;
    CameraDBData tables;
    if (!xml::domFromFile(file, document, error)) {
        return false;
    }
    QString fault;
    if (!read(document, true, tables, fault)) {
        error = file + QStringLiteral(": ") + fault;
        return false;
    }
    data = std::move(tables);
    return true;
}

std::size_t documentVersion(const QDomDocument& document)
{
    return cameraDbVersion(rootOf(document));
}

bool versionSupported(std::size_t version, bool userDatabase, bool allowHigher)
{
    QString unused;
    return versionSupported(version, userDatabase, allowHigher, unused);
}

bool versionSupported(std::size_t version, bool userDatabase, bool allowHigher, QString& error)
{
    QString remark;
    bool supported = false;
    if (version == 0 || version == npos) {
        remark = QStringLiteral("Camera database version is unknown");
    } else if (userDatabase && version > kCurrentVersion) {
        remark = QStringLiteral("User camera database version %1 is higher than the current one %2")
                     .arg(version)
                     .arg(kCurrentVersion);
        supported = allowHigher;
    } else if (!userDatabase && version != kCurrentVersion) {
        remark = QStringLiteral("Internal camera database version %1 is not the current one %2.")
                     .arg(version)
                     .arg(kCurrentVersion);
    } else {
        return true;
    }
    log::warning() << remark;
    if (!supported) {
        error = remark;
    }
    return supported;
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
    if (const std::optional<QString> fault = documentFault(headerPairs, data)) {
        error = *fault;
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
