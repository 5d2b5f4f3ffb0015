// SPDX-License-Identifier: Apache-2.0
#include "fuzz_target.h"
#include "lumo/cameradata/xml_document.h"
#include "lumo/core/cameraInfo/camera_db_data.h"
#include "lumo/core/cameraInfo/lumo_camera_db_xml.h"

#include <QDomDocument>

namespace {

using namespace lumo;
using fuzz::require;

/// Reads a text that documentText wrote.
cameradb::CameraDBData readBack(const QString& text)
{
    QDomDocument document;
    QString error;
    require(xml::domFromString(text, document, error), "what is written is XML", error);
    cameradb::CameraDBData data;
    bool modified = false;
    require(
        cameradb::getXML(document, true, false, true, data, modified), "what is written is read");
    return data;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    QDomDocument document;
    QString error;
    if (!xml::domFromBytes(fuzz::toBytes(data, size), document, error)) {
        require(!error.isEmpty(), "a refused input has a reason");
        return 0;
    }
    cameradb::CameraDBData tables;
    bool modified = false;
    if (!cameradb::getXML(document, true, false, true, tables, modified)) {
        return 0;
    }
    QString written;
    if (!cameradb::documentText({}, tables, written, error)) {
        require(!error.isEmpty(), "a refused database has a reason");
        return 0;
    }
    const cameradb::CameraDBData back = readBack(written);
    require(back.cameras.size() == tables.cameras.size(), "no camera is lost", written);
    require(back.rigs.size() == tables.rigs.size(), "no rig is lost", written);
    require(back.mappings == tables.mappings, "no mapping is lost", written);
    return 0;
}
