// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/cameradata/export.h"

#include <QString>

class QByteArray;
class QDomDocument;

/// Reading XML that may come from anywhere.
///
/// Refused, before a document is built, are inputs that would exhaust the stack,
/// the memory or the time of those who work on them: elements nested deeper than
/// kMaxDepth, a text or attribute of more than kMaxTextLength characters, an
/// element with more than kMaxAttributes attributes, and document type
/// declarations that say more than a name (so that there are no entities, and
/// nothing outside of the input is asked for). Also refused is all that is not
/// well-formed, and encodings other than UTF-8, US-ASCII, ISO-8859-1 and
/// windows-1252.
///
/// Errors read "line L: reason", with lines counted from 1. Documents know the
/// lines of their nodes. White space between elements is left out, and a text of
/// nothing but white space too. Names are not split at colons.
///
/// A QDomDocument is large: some 200 bytes for each element, attribute and text,
/// which is 25 times the size of the input where elements hold short texts and
/// 60 times for empty elements of one letter. Reading adds less than twice the
/// input's size to that while it lasts.
namespace lumo::xml {

inline constexpr int kMaxDepth = 256;                    ///< elements in elements
inline constexpr int kMaxTextLength = 16 * 1024 * 1024;  ///< UTF-16 units
inline constexpr int kMaxAttributes = 1000;              ///< of one element
inline constexpr qint64 kMaxFileBytes = qint64{1} << 30; ///< of a file

/// The bytes of a regular file or Qt resource of at most kMaxFileBytes, not looked at yet.
/// \param[out] content  replaced on success, untouched on failure
/// \param[out] error    on failure "PATH: reason", else untouched
[[nodiscard]] LUMO_CAMERADATA_EXPORT bool readFile(
    const QString& path, QByteArray& content, QString& error);

/// Whether the functions below would take these bytes, for readers that build
/// something else than a QDomDocument of them.
/// \param[out] error  on failure why, else untouched
[[nodiscard]] LUMO_CAMERADATA_EXPORT bool checkXml(const QByteArray& bytes, QString& error);

/// \param[out] document  replaced on success, untouched on failure
/// \param[out] error     on failure why, else untouched
[[nodiscard]] LUMO_CAMERADATA_EXPORT bool domFromBytes(
    const QByteArray& bytes, QDomDocument& document, QString& error);

/// Likewise for a text. An encoding that it declares does not count, but must exist.
[[nodiscard]] LUMO_CAMERADATA_EXPORT bool domFromString(
    const QString& text, QDomDocument& document, QString& error);

/// Likewise for a file that readFile takes.
/// \param[out] error  on failure "PATH: line L: reason" or "PATH: reason"
[[nodiscard]] LUMO_CAMERADATA_EXPORT bool domFromFile(
    const QString& path, QDomDocument& document, QString& error);

} // namespace lumo::xml
