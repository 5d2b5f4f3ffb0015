// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/export.h"

#include <QString>

#include <memory>

class QIODevice;

namespace lumo {

/// The folder of the newest project schema: the one of the largest number
/// directly below "resources/xsd" of the application directory, as an absolute
/// path. A name that is not a number counts as 0. Empty if there is no folder.
[[nodiscard]] LUMO_CORE_EXPORT QString getCurrentXsdPath();

namespace xml {

/// Validates XML against a schema file.
///
/// What is wrong with a schema or a document, and where, is logged at level
/// Debug. Neither can reach the network, and a document no other file: schemas
/// that it names itself are not loaded. One thread at a time; no call throws.
class LUMO_CORE_EXPORT XmlValidator
{
public:
    XmlValidator(); ///< no schema is loaded
    XmlValidator(const XmlValidator&) = delete;
    XmlValidator& operator=(const XmlValidator&) = delete;
    ~XmlValidator();

    /// Loads a schema from a local file. When that fails, the schema loaded
    /// before stays in use for validateXml.
    [[nodiscard]] bool loadXsd(const QString& xsdFile);
    /// Likewise.
    /// \param[out] error  on failure why, with the line where it is known; else untouched
    [[nodiscard]] bool loadXsd(const QString& xsdFile, QString& error);

    /// Whether the latest loadXsd succeeded.
    [[nodiscard]] bool isXsdLoaded() const;

    /// Validates what an open device holds from its position on. Documents that
    /// xml::domFromString refuses are not valid. False, and nothing is logged,
    /// if no schema was ever loaded.
    [[nodiscard]] bool validateXml(QIODevice& device);

    /// Likewise for a local file.
    [[nodiscard]] bool validateXml(const QString& xmlFile);

    /// Likewise.
    /// \param[out] error  if not valid the first fault, "line L, column C: reason"
    ///     where a place is known; else untouched
    [[nodiscard]] bool validateXml(const QString& xmlFile, QString& error);
    /// Likewise for an open device.
    [[nodiscard]] bool validateXml(QIODevice& device, QString& error);

private:
    class Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace xml
} // namespace lumo
