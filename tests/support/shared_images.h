// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "source_dir.h"

#include <QDir>
#include <QString>

/// The folder of real images beside the checkout, or in LUMO_SHARED_DIR; it may not
/// exist.
inline QDir sharedImages()
{
    const QString given = QString::fromLocal8Bit(qgetenv("LUMO_SHARED_DIR"));
    const QString shared = given.isEmpty() ? sourcePath("../shared") : given;
    return QDir(shared + QStringLiteral("/images"));
}
