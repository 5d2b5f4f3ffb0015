// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QString>

namespace lumo::kpx {

/// The versions recorded in a project file or template.
struct FileVersion
{
    QString project; ///< version of the product that wrote the file
    int format = 0;  ///< format version; 0 for files without one, as up to product 2.1
    bool isTemplate = false;
};

/// The program that wrote a project up to 2.0, as recorded in the project.
struct Origin
{
    QString product = QStringLiteral("lumo");
    QString version = QStringLiteral("2.0");
};

/// The values of the first elements `id` and `projectVersion` below the root; the
/// defaults of Origin for missing ones. Projects of the product "gaiprain" always get
/// version 2.0, because that product had its own version numbers.
/// \param bytes  must have passed xml::checkXml
[[nodiscard]] Origin originOfOldProject(const QByteArray& bytes);

/// \param bytes  must have passed xml::checkXml
/// \throws std::runtime_error as ParamConverter's constructor
[[nodiscard]] FileVersion readVersion(const QByteArray& bytes);

} // namespace lumo::kpx
