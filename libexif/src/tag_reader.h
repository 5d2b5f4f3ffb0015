// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "raw_metadata.h"

#include <QString>

#include <optional>

namespace lumo::exif {

/// Checked access to the tags of one file. What is dropped is logged as a
/// warning with the file's path and the field. Refers to the metadata it is
/// made of.
class TagReader
{
public:
    TagReader(const RawMetadata& raw, QString path);

    /// A tag's text, cleaned; empty if there is none.
    [[nodiscard]] QString text(const char* key) const;

    /// A tag's first number, unchecked; nothing if there is none.
    [[nodiscard]] std::optional<double> number(const char* key) const;

    /// The first number if it is finite, above 0 and at most `max`; else 0.
    [[nodiscard]] double positive(const char* key, double max) const;

    /// The tag as it stands; null if there is none.
    [[nodiscard]] const TagValue* find(const char* key) const;

    void warn(const QString& field, const QString& reason) const;

private:
    const RawMetadata& m_raw;
    QString m_path;
};

} // namespace lumo::exif
