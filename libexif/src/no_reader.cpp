// SPDX-License-Identifier: Apache-2.0
#include "exiv2_reader.h"

namespace lumo::exif {

bool readRawMetadata(QFile&, RawMetadata&, QString& error)
{
    error = QStringLiteral("built without a metadata reader");
    return false;
}

} // namespace lumo::exif
