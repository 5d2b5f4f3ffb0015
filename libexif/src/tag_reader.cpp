// SPDX-License-Identifier: Apache-2.0
#include "tag_reader.h"

#include "exif_text.h"

#include <cmath>

namespace lumo::exif {

TagReader::TagReader(const RawMetadata& raw)
    : m_raw(raw)
{}

const TagValue* TagReader::find(const char* key) const
{
    const auto found = m_raw.tags.find(key);
    return found == m_raw.tags.end() ? nullptr : &found->second;
}

QString TagReader::text(const char* key) const
{
    const TagValue* value = find(key);
    if (value == nullptr) {
        return {};
    }
    bool hadControls = false;
    const QString result = cleanedText(decodedText(value->bytes), &hadControls);
    if (hadControls) {
        warn(QLatin1String(key), QStringLiteral("control characters were dropped"));
    }
    return result;
}

std::optional<double> TagReader::number(const char* key) const
{
    const TagValue* value = find(key);
    return value == nullptr || value->numbers.empty()
               ? std::nullopt
               : std::optional<double>(value->numbers.front());
}

double TagReader::positive(const char* key, double max) const
{
    const std::optional<double> value = number(key);
    if (!value) {
        return 0.0;
    }
    if (!(*value > 0.0 && *value <= max)) {
        warn(QLatin1String(key), QStringLiteral("%1 is not plausible").arg(*value));
        return 0.0;
    }
    return *value;
}

void TagReader::warn(const QString& field, const QString& reason) const
{
    const QString note = field + QStringLiteral(": ") + reason;
    if (!m_notes.contains(note)) {
        m_notes.append(note);
    }
}

} // namespace lumo::exif
