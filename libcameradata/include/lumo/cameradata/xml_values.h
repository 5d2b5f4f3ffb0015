// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/cameradata/export.h"

#include <QString>

#include <concepts>
#include <cstddef>
#include <type_traits>

class QDomElement;
class QXmlStreamWriter;

/// Single values in XML: as "value", which is an attribute of the element that
/// is open, or as "tag", which is a child element with a text.
///
/// Numbers are in the C locale, with 'g' notation and the given number of
/// significant digits; booleans are "true" and "false", and on reading also "1"
/// and "0". Values stand before all tags of an element.
///
/// Reading: what is missing is the default, in silence. A text that is not a
/// value of the type asked for is the default too, with a warning in the log
/// that names element and line.
namespace lumo::xml {

/// \param value  without characters that XML forbids, see invalidCharacter
LUMO_CAMERADATA_EXPORT void writeValue(
    QXmlStreamWriter& writer, const QString& name, const QString& value);
/// \param digits  significant ones
LUMO_CAMERADATA_EXPORT void writeValue(
    QXmlStreamWriter& writer, const QString& name, double value, int digits);

/// Likewise as a tag. White space at the ends of the text is kept, but a text of
/// white space only reads back as empty.
LUMO_CAMERADATA_EXPORT void writeTag(
    QXmlStreamWriter& writer, const QString& name, const QString& value);
/// \param digits  significant ones
LUMO_CAMERADATA_EXPORT void writeTag(
    QXmlStreamWriter& writer, const QString& name, double value, int digits);

/// Text in the element that is open, every character as it stands: a carriage
/// return goes out as a reference, since a parser would make it a line feed.
LUMO_CAMERADATA_EXPORT void writeText(QXmlStreamWriter& writer, const QString& text);

/// "true" or "false", or the decimal digits.
template <std::integral T>
[[nodiscard]] QString integralText(T value)
{
    if constexpr (std::is_same_v<T, bool>) {
        return value ? QStringLiteral("true") : QStringLiteral("false");
    } else {
        return QString::number(value);
    }
}

/// A whole number or a boolean.
template <std::integral T>
void writeValue(QXmlStreamWriter& writer, const QString& name, T value)
{
    writeValue(writer, name, integralText(value));
}

/// Likewise as a tag.
template <std::integral T>
void writeTag(QXmlStreamWriter& writer, const QString& name, T value)
{
    writeTag(writer, name, integralText(value));
}

/// Whether there is such an attribute; for `path` see readValue.
[[nodiscard]] LUMO_CAMERADATA_EXPORT bool hasValue(const QDomElement& element, const QString& path);

/// The attribute `name` of the element, or for a path "child.name" that of its
/// first child element of that name. T is one of the types below.
template <typename T>
[[nodiscard]] T readValue(const QDomElement& element, const QString& path, const T& defaultValue);

/// The text of the first child element of this name. For a QString an element
/// without text is an empty text, not the default.
template <typename T>
[[nodiscard]] T readTag(const QDomElement& element, const QString& name, const T& defaultValue);

/// The text of the first child element of this name.
/// \param[out] value  untouched if there is none
/// \returns whether there is one
bool LUMO_CAMERADATA_EXPORT
readTagText(const QDomElement& element, const QString& name, QString& value);

/// Logs "line L: element NAME: text"; without the line if it is not known.
LUMO_CAMERADATA_EXPORT void warnAt(const QDomElement& element, const QString& text);

/// The place of the first character that XML 1.0 (section 2.2) forbids even as a
/// reference: most control characters, halves of surrogate pairs, U+FFFE and
/// U+FFFF; -1 if there is none. QXmlStreamWriter would write it.
[[nodiscard]] LUMO_CAMERADATA_EXPORT int findInvalidCharacter(const QString& text);

/// That character as "U+0001"; empty if there is none.
[[nodiscard]] LUMO_CAMERADATA_EXPORT QString invalidCharacter(const QString& text);

#define LUMO_XML_VALUE_TYPE(T)                                                                     \
    extern template LUMO_CAMERADATA_EXPORT T readValue<T>(                                         \
        const QDomElement&, const QString&, const T&);                                             \
    extern template LUMO_CAMERADATA_EXPORT T readTag<T>(                                           \
        const QDomElement&, const QString&, const T&);
LUMO_XML_VALUE_TYPE(QString)
LUMO_XML_VALUE_TYPE(int)
LUMO_XML_VALUE_TYPE(unsigned)
LUMO_XML_VALUE_TYPE(std::size_t)
LUMO_XML_VALUE_TYPE(double)
LUMO_XML_VALUE_TYPE(bool)
#undef LUMO_XML_VALUE_TYPE

} // namespace lumo::xml
