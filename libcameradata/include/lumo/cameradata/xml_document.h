// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/cameradata/export.h"

#include <QString>

class QByteArray;
class QDomDocument;

/// Reading XML from sources that are not trusted.
///
/// Before they build a document, these functions refuse input that would exhaust the
/// stack, the memory or the time of its users: elements nested deeper than kMaxDepth, a
/// text or attribute longer than kMaxTextLength, an element with more than kMaxAttributes
/// attributes, and a document type declaration with more than a name (so there are no
/// entities, and no other file or address is opened). They also refuse input that is not
/// well-formed, and encodings other than UTF-8, US-ASCII, ISO-8859-1 and windows-1252.
///
/// Errors have the form "line L: reason", with lines counted from 1. The nodes of a
/// document have line numbers. Texts of white space only are dropped. Names are not
/// split at colons.
///
/// A QDomDocument is large: some 200 bytes (measured) for each element, attribute and
/// text. That is 25 times the size of the input for elements with short texts, and 60
/// times for empty elements of one letter. Reading takes less than twice the input's size
/// in addition.
namespace lumo::xml {

/// Levels of elements. QDomDocument and QXmlQuery work recursively: 200,000 levels overflow
/// the stack.
inline constexpr int kMaxDepth = 256;
inline constexpr int kMaxTextLength = 16 * 1024 * 1024;  ///< UTF-16 units
inline constexpr int kMaxAttributes = 1000;              ///< of one element
inline constexpr qint64 kMaxFileBytes = qint64{1} << 30; ///< of a file

/// Reads the bytes of a regular file or Qt resource of at most kMaxFileBytes, without
/// checking that they are XML.
/// \param[out] content  replaced on success, untouched on failure
/// \param[out] error    on failure "PATH: reason", else untouched
[[nodiscard]] LUMO_CAMERADATA_EXPORT bool readFile(
    const QString& path, QByteArray& content, QString& error);

/// Whether the functions below would accept these bytes. For readers that do not build
/// a QDomDocument.
/// \param[out] error  on failure "line L: reason", else untouched
[[nodiscard]] LUMO_CAMERADATA_EXPORT bool checkXml(const QByteArray& bytes, QString& error);

/// Builds a document from the bytes of an XML file.
/// \param[out] document  replaced on success, untouched on failure
/// \param[out] error     on failure "line L: reason", else untouched
[[nodiscard]] LUMO_CAMERADATA_EXPORT bool domFromBytes(
    const QByteArray& bytes, QDomDocument& document, QString& error);

/// As domFromBytes, from a text. Ignores the encoding that the text declares, but refuses
/// an unknown one.
[[nodiscard]] LUMO_CAMERADATA_EXPORT bool domFromString(
    const QString& text, QDomDocument& document, QString& error);

/// As domFromBytes, from a file that readFile accepts.
/// \param[out] error  on failure "PATH: line L: reason" or "PATH: reason", else untouched
[[nodiscard]] LUMO_CAMERADATA_EXPORT bool domFromFile(
    const QString& path, QDomDocument& document, QString& error);

} // namespace lumo::xml
