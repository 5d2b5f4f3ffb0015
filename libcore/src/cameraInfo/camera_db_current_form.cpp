// SPDX-License-Identifier: Apache-2.0
#include "cameraInfo/camera_db_current_form.h"

#include "lumo/cameradata/xml_document.h"
#include "lumo/core/xml/camera_db_converter.h"

#include <QDomDocument>

#include <stdexcept>

namespace lumo::cameradb {
namespace {

/// The converter's exception says that the file cannot be read, not why.
QString whyUnreadable(const QString& file, const std::runtime_error& fault)
{
    QDomDocument document;
    QString reason;
    if (xml::domFromFile(file, document, reason)) {
        return QString::fromUtf8(fault.what());
    }
    const QString path = file + QStringLiteral(": ");
    return reason.startsWith(path) ? reason.mid(path.size()) : reason;
}

} // namespace

bool currentForm(const QString& file, const QString& target, QString& document, QString& error)
{
    try {
        CameraDbConverter converter(file);
        const bool older = converter.needsConvertion();
        if (older && !converter.convert(target, error)) {
            return false;
        }
        document = older ? target : file;
        return true;
    } catch (const std::runtime_error& fault) {
        error = whyUnreadable(file, fault);
        return false;
    }
}

} // namespace lumo::cameradb
