// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/cameraInfo/camera_db_import.h"

#include "lumo/core/cameraInfo/camera_model_db.h"
#include "lumo/core/cameraInfo/lumo_camera_db_io.h"
#include "lumo/core/cameraInfo/lumo_camera_db_xml.h"
#include "lumo/core/cameraInfo/text_db.h"
#include "lumo/core/xml/camera_db_converter.h"
#include "lumo/foundation/file.h"

#include <QTemporaryDir>

#include <stdexcept>

namespace lumo {
namespace {

/// Writes a text database as a document of the current version.
bool textToDocument(const QString& file, const QString& target, QString& error)
{
    cameradb::CameraDBData data;
    QString text;
    return cameradb::loadTextDB(file, data, error) &&
           cameradb::documentText({}, data, text, error) &&
           file::replaceAtomically(target, text.toUtf8(), error);
}

/// The document of the current version that holds what `file` does: `file`
/// itself, or `target`, which is made.
bool currentDocument(const QString& file, const QString& target, QString& document, QString& error)
{
    if (file.endsWith(QLatin1String(".csv"), Qt::CaseInsensitive)) {
        document = target;
        return textToDocument(file, target, error);
    }
    try {
        CameraDbConverter converter(file);
        document = converter.needsConvertion() ? target : file;
        if (document == target && !converter.convert(target)) {
            error = QStringLiteral("cannot be brought to the current version");
            return false;
        }
    } catch (const std::runtime_error& fault) {
        error = QString::fromUtf8(fault.what());
        return false;
    }
    return true;
}

} // namespace

bool importUserDatabase(
    CameraModelDb& database, const QString& file, bool overwrite, QString& error)
{
    const QTemporaryDir folder;
    QString document;
    if (!currentDocument(file, folder.filePath(QStringLiteral("import.xml")), document, error)) {
        return false;
    }
    if (!hasDbLastestFormat(document)) {
        error = QStringLiteral("is not valid");
        return false;
    }
    if (!CameraDbIo(database).addUserXML(document, overwrite)) {
        error = QStringLiteral("cannot be read as a camera database");
        return false;
    }
    return true;
}

} // namespace lumo
