// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QFileInfo>
#include <QString>

#include <algorithm>

namespace lumo {

/// An image's file name without folder and extension, in two parts: the stem that the
/// images of one capture share, and the end that identifies the camera.
struct ImageName
{
    QString stem; ///< up to the last "_" or "-"; all of it if there is none
    QString end;  ///< from there on
};

inline ImageName splitImageName(const QString& path)
{
    const QString name = QFileInfo(path).completeBaseName();
    const int separator =
        std::max(name.lastIndexOf(QLatin1Char('_')), name.lastIndexOf(QLatin1Char('-')));
    return separator > 0 ? ImageName{name.left(separator), name.mid(separator)}
                         : ImageName{name, QString()};
}

} // namespace lumo
