// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/export.h"

#include <QString>

#include <memory>

namespace lumo {

/// Brings a camera database file of an older format version up to the current
/// one, in the steps 16 -> 17 (for all older versions), 17 -> 18 and 18 -> 19.
/// Needs registerXmlConverters(), and below the application directory the
/// stylesheets in "resources/xsl". One thread at a time.
class LUMO_CORE_EXPORT CameraDbConverter
{
public:
    /// Reads the file's version: the attribute `value` of its element, or else
    /// its text. A missing version, or one that is not a number, counts as 0.
    /// \throws ConversionError if the file cannot be read as XML
    /// \throws std::runtime_error if it is not a camera database
    explicit CameraDbConverter(const QString& inputFile);
    CameraDbConverter(const CameraDbConverter&) = delete;
    CameraDbConverter& operator=(const CameraDbConverter&) = delete;
    ~CameraDbConverter();

    /// Whether a step is left to be done. (The name is part of the interface.)
    [[nodiscard]] bool needsConvertion() const;

    /// Runs the steps in memory and replaces `outputFile`, which may be the input
    /// file, by the result. Afterwards nothing is left to be done.
    /// \returns false, with no file touched, if there was nothing to be done or
    ///     something failed, which is logged; the call may then be repeated
    [[nodiscard]] bool convert(const QString& outputFile);
    /// Likewise, but nothing is logged.
    /// \param[out] error  on failure why, else untouched
    [[nodiscard]] bool convert(const QString& outputFile, QString& error);

private:
    class Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace lumo
