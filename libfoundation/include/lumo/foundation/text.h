// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/foundation/export.h"

#include <QString>

namespace lumo::text {

/// Same text, ignoring case. Case is folded as Unicode says, in no locale.
[[nodiscard]] LUMO_FOUNDATION_EXPORT bool iequals(const QString& a, const QString& b);

/// Order for lists that a person reads: digits count as numbers ("17" after
/// "9"), letters come after digits, otherwise as the user's locale says; in
/// the C locale by code. A thread keeps to the default locale of its first call.
/// \returns negative, 0 or positive, as a is before, equal to or after b; 0 for
///          identical texts only, so that lists have one order
[[nodiscard]] LUMO_FOUNDATION_EXPORT int localeAwareCompare(const QString& a, const QString& b);

/// Compares dotted versions number by number; missing numbers count as 0, so
/// "2.1" equals "2.1.0". Text after a number's digits is ignored.
/// \returns negative, 0 or positive
[[nodiscard]] LUMO_FOUNDATION_EXPORT int compareVersions(const QString& a, const QString& b);
[[nodiscard]] LUMO_FOUNDATION_EXPORT bool versionSmallerThan(const QString& a, const QString& b);
[[nodiscard]] LUMO_FOUNDATION_EXPORT bool versionGreaterThan(const QString& a, const QString& b);

/// The value that `text` stands for, in the C locale; white space around it is
/// ignored. T{} when the text is not a value of T, or one too large or too
/// small for it; `ok`, if given, is then false, else true. The whole text must
/// be the number; "nan" and "inf" are none. Provided for int, unsigned, size_t,
/// long long, float, double and bool ("true", "false", "1", "0"); other
/// libraries add specialisations for their enumerations.
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
