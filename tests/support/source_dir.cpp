// SPDX-License-Identifier: Apache-2.0
#include "source_dir.h"

QString sourcePath(const char* name)
{
    const QString root = QStringLiteral(LUMO_SOURCE_DIR);
    return name == nullptr ? root : root + QLatin1Char('/') + QLatin1String(name);
}
