// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/export.h"

#include <QString>

#include <memory>

class QIODevice;

namespace lumo {

/// The absolute path of the folder with the newest project schema: the folder with
/// the largest number as its name, directly below "resources/xsd" of the application
/// directory. A name that is not a number counts as 0. Empty if there is no folder.
[[nodiscard]] LUMO_CORE_EXPORT QString getCurrentXsdPath();

namespace xml {

/// Validates XML against a schema file.
///
/// Faults of a schema or a document are logged at level Debug, with their places.
/// Loading never reaches the network. A document cannot load other files: schemas
/// that it names itself are ignored. One thread at a time; no call throws.
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
    /// As loadXsd(xsdFile), and reports why it failed.
    /// \param[out] error  on failure the reason, with the line if known; else untouched
    [[nodiscard]] bool loadXsd(const QString& xsdFile, QString& error);

    /// Whether the latest loadXsd succeeded.
    [[nodiscard]] bool isXsdLoaded() const;

    /// Validates the document that an open device contains from its current position
    /// to its end. Documents that xml::domFromString refuses are not valid. If no
    /// schema was ever loaded, returns false without a log record.
    [[nodiscard]] bool validateXml(QIODevice& device);

    /// Validates a local file, as validateXml(device) validates a device.
    [[nodiscard]] bool validateXml(const QString& xmlFile);

    /// As validateXml(xmlFile), and reports the first fault.
    /// \param[out] error  if the file is not valid the first fault, as "line L,
    ///     column C: reason" if the place is known; else untouched
    [[nodiscard]] bool validateXml(const QString& xmlFile, QString& error);
    /// As validateXml(device), and reports the first fault in the same form.
    [[nodiscard]] bool validateXml(QIODevice& device, QString& error);

private:
    class Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace xml
} // namespace lumo
