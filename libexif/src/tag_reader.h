// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "raw_metadata.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace lumo::exif {

/// Checked access to the tags of one file. It notes what is dropped. Refers to the
/// metadata it is made of; used by one thread.
class TagReader
{
public:
    explicit TagReader(const RawMetadata& raw);

    /// A tag's text, cleaned; empty if there is none.
    [[nodiscard]] QString text(const char* key) const;

    /// A tag's first number, unchecked; nothing if there is none.
    [[nodiscard]] std::optional<double> number(const char* key) const;

    /// The first number if it is finite, above 0 and at most `max`; else 0.
    [[nodiscard]] double positive(const char* key, double max) const;

    /// The tag as it stands; null if there is none.
    [[nodiscard]] const TagValue* find(const char* key) const;

    /// Notes that a field is dropped, once for each reason.
    void warn(const QString& field, const QString& reason) const;

    /// What was noted: "<field>: <reason>".
    [[nodiscard]] const QStringList& notes() const { return m_notes; }

private:
    const RawMetadata& m_raw;
    mutable QStringList m_notes;
};

} // namespace lumo::exif
