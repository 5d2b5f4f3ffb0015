// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/foundation/export.h"

#include <QString>

namespace lumo::text {

/// Whether the texts are equal ignoring case (Unicode case folding, no locale).
[[nodiscard]] LUMO_FOUNDATION_EXPORT bool iequals(const QString& a, const QString& b);

/// Order for lists that a person reads: compares digits as numbers ("17" after "9"),
/// puts letters after digits, and otherwise follows the user's locale (in the C
/// locale, character codes). A thread keeps the default locale of its first call.
/// \returns negative if a comes before b, positive if after; 0 for identical texts
///          only, so that a list has exactly one order
[[nodiscard]] LUMO_FOUNDATION_EXPORT int localeAwareCompare(const QString& a, const QString& b);

/// Compares dotted versions number by number. Missing numbers count as 0, so "2.1"
/// equals "2.1.0". Ignores text after a number's digits.
/// \returns negative, 0 or positive if a is smaller than, equal to or greater than b
[[nodiscard]] LUMO_FOUNDATION_EXPORT int compareVersions(const QString& a, const QString& b);
[[nodiscard]] LUMO_FOUNDATION_EXPORT bool versionSmallerThan(const QString& a, const QString& b);
[[nodiscard]] LUMO_FOUNDATION_EXPORT bool versionGreaterThan(const QString& a, const QString& b);

/// Parses the whole text as a value of T, in the C locale, ignoring white space around
/// it. Provided for int, unsigned, size_t, long long, float, double ("nan" and "inf"
/// are refused) and bool ("true", "false", "1", "0"); other libraries add
/// specialisations for their enumerations.
/// \param[out] ok  if given, whether the text is a value in T's range
/// \returns T{} if it is not
template <typename T>
[[nodiscard]] T fromString(const QString& text, bool* ok = nullptr);

template <>
LUMO_FOUNDATION_EXPORT int fromString<int>(const QString& text, bool* ok);
template <>
LUMO_FOUNDATION_EXPORT unsigned fromString<unsigned>(const QString& text, bool* ok);
template <>
LUMO_FOUNDATION_EXPORT unsigned long fromString<unsigned long>(const QString& text, bool* ok);
template <>
LUMO_FOUNDATION_EXPORT long long fromString<long long>(const QString& text, bool* ok);
template <>
LUMO_FOUNDATION_EXPORT float fromString<float>(const QString& text, bool* ok);
template <>
LUMO_FOUNDATION_EXPORT double fromString<double>(const QString& text, bool* ok);
template <>
LUMO_FOUNDATION_EXPORT bool fromString<bool>(const QString& text, bool* ok);

/// `text` without `prefix`, if it starts with that; else as it is. For reasons that name
/// a file which the reader knows already.
[[nodiscard]] LUMO_FOUNDATION_EXPORT QString
withoutPrefix(const QString& text, const QString& prefix);

} // namespace lumo::text
