// SPDX-License-Identifier: Apache-2.0
#include "database.h"

#include "lumo/core/cameraInfo/text_db.h"
#include "output.h"

#include <utility>

namespace lumo::program {

bool loadDatabase(CameraModelDb& database)
{
    cameradb::CameraDBData shipped;
    QString error;
    if (!cameradb::loadTextDB(cameradb::shippedTextDBPath(), shipped, error)) {
        sayFailure(QStringLiteral("camera database"), error);
        return false;
    }
    database.setInternalData(std::move(shipped));
    return true;
}

} // namespace lumo::program
