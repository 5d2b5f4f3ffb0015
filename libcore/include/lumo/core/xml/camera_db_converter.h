// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/export.h"

#include <QString>

#include <memory>

namespace lumo {

/// Converts a camera database file of an older format version to the current one,
/// in the steps 16 -> 17 (for all older versions), 17 -> 18 and 18 -> 19.
/// Needs registerXmlConverters(), and the stylesheets in "resources/xsl" below the
/// application directory. One thread at a time.
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

    /// Whether a step remains. (The spelling is part of the interface.)
    [[nodiscard]] bool needsConvertion() const;

    /// Runs the steps in memory and replaces `outputFile`, which may be the input
    /// file, by the result. After success no step remains.
    /// \returns false, with no file touched, if no step remained or a step failed;
    ///     a failure is logged, and the call may be repeated
    [[nodiscard]] bool convert(const QString& outputFile);
    /// As convert(outputFile), and reports why it failed instead of logging it.
    /// \param[out] error  on failure the reason, else untouched
    [[nodiscard]] bool convert(const QString& outputFile, QString& error);

private:
    class Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace lumo
