// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QString>

namespace lumo::kpx {

/// What a project file or template says of its age.
struct FileVersion
{
    QString project; ///< of the product that wrote it
    int format = 0;  ///< 0 where it says none, as up to 2.1
    bool isTemplate = false;
};

/// What a project up to 2.0 says of the program that wrote it.
struct Origin
{
    QString product = QStringLiteral("lumo");
    QString version = QStringLiteral("2.0");
};

/// The values of the first elements `id` and `projectVersion` below the root, or what
/// holds where they are missing. Versions of "gaiprain" were counted otherwise: all
/// its projects are of 2.0.
/// \param bytes  must have passed xml::checkXml
[[nodiscard]] Origin originOfOldProject(const QByteArray& bytes);

/// \param bytes  must have passed xml::checkXml
/// \throws std::runtime_error as ParamConverter's constructor
[[nodiscard]] FileVersion readVersion(const QByteArray& bytes);

} // namespace lumo::kpx
