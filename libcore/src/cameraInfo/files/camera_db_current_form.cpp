// SPDX-License-Identifier: Apache-2.0
#include "cameraInfo/files/camera_db_current_form.h"

#include "lumo/core/xml/camera_db_converter.h"
#include "lumo/core/xml/conversion_error.h"

#include <stdexcept>

namespace lumo::cameradb {
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
    } catch (const ConversionError& fault) {
        error = fault.reason();
        return false;
    } catch (const std::runtime_error& fault) {
        error = QString::fromUtf8(fault.what());
        return false;
    }
}

} // namespace lumo::cameradb
