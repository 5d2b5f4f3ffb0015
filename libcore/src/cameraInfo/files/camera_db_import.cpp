// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/cameraInfo/camera_db_import.h"

#include "cameraInfo/files/camera_db_current_form.h"
#include "lumo/core/cameraInfo/camera_model_db.h"
#include "lumo/core/cameraInfo/lumo_camera_db_io.h"
#include "lumo/core/cameraInfo/lumo_camera_db_xml.h"
#include "lumo/core/cameraInfo/text_db.h"
#include "lumo/foundation/file.h"
#include "lumo/foundation/text.h"

#include <QTemporaryDir>

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

/// As cameradb::currentForm, of a text database too.
bool currentDocument(const QString& file, const QString& target, QString& document, QString& error)
{
    if (file.endsWith(QLatin1String(".csv"), Qt::CaseInsensitive)) {
        document = target;
        return textToDocument(file, target, error);
    }
    return cameradb::currentForm(file, target, document, error);
}

} // namespace

bool importUserDatabase(
    CameraModelDb& database, const QString& file, bool overwrite, QString& error)
{
    if (!database.editingAllowed()) {
        error = QStringLiteral("your own cameras and rigs cannot be changed");
        return false;
    }
    const QTemporaryDir folder;
    QString document;
    if (!currentDocument(file, folder.filePath(QStringLiteral("import.xml")), document, error)) {
        return false;
    }
    QString fault;
    if (!hasDbLastestFormat(document, fault)) {
        error = document == file ? fault : QStringLiteral("after conversion: ") + fault;
        return false;
    }
    if (!CameraDbIo(database).addUserXML(document, overwrite, fault)) {
        error = text::withoutPrefix(fault, document + QStringLiteral(": "));
        return false;
    }
    return true;
}

} // namespace lumo
