// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/cameradata/export.h"

#include <QString>

#include <concepts>
#include <cstddef>
#include <type_traits>

class QDomElement;
class QXmlStreamWriter;

/// Writing and reading single values in XML: a "value" is an attribute of the open
/// element, a "tag" is a child element with a text.
///
/// Numbers are written in the C locale, in 'g' notation with the given number of
/// significant digits, booleans as "true" and "false". Reading also accepts "1" and "0".
/// Write all values of an element before its tags.
///
/// Reading returns the default for a value that is missing. It also returns the default
/// for a text that is not a value of the requested type, and then logs a warning that
/// names element and line.
namespace lumo::xml {

/// \param value  must not contain characters that XML forbids, see findInvalidCharacter
LUMO_CAMERADATA_EXPORT void writeValue(
    QXmlStreamWriter& writer, const QString& name, const QString& value);
/// \param digits  number of significant digits
LUMO_CAMERADATA_EXPORT void writeValue(
    QXmlStreamWriter& writer, const QString& name, double value, int digits);

/// As writeValue, but writes a tag. Keeps white space at the ends of the text, but a
/// text of white space only is empty when read back.
LUMO_CAMERADATA_EXPORT void writeTag(
    QXmlStreamWriter& writer, const QString& name, const QString& value);
/// \param digits  number of significant digits
LUMO_CAMERADATA_EXPORT void writeTag(
    QXmlStreamWriter& writer, const QString& name, double value, int digits);

/// Writes text into the open element so that every character is read back unchanged: a
/// carriage return as a reference, since a parser would make it a line feed.
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

/// Writes a whole number or a boolean as a value.
template <std::integral T>
void writeValue(QXmlStreamWriter& writer, const QString& name, T value)
{
    writeValue(writer, name, integralText(value));
}

/// Writes a whole number or a boolean as a tag.
template <std::integral T>
void writeTag(QXmlStreamWriter& writer, const QString& name, T value)
{
    writeTag(writer, name, integralText(value));
}

/// Whether the attribute that readValue would read exists.
[[nodiscard]] LUMO_CAMERADATA_EXPORT bool hasValue(const QDomElement& element, const QString& path);

/// Reads an attribute. The path "name" means an attribute of the element itself,
/// "child.name" one of its first child element "child". T is one of the types below.
template <typename T>
[[nodiscard]] T readValue(const QDomElement& element, const QString& path, const T& defaultValue);

/// Reads the text of the first child element of this name. If T is QString, an element
/// without text gives an empty text, not the default.
template <typename T>
[[nodiscard]] T readTag(const QDomElement& element, const QString& name, const T& defaultValue);

/// Reads the text of the first child element of this name.
/// \param[out] value  untouched if there is no such element
/// \returns whether there is one
bool LUMO_CAMERADATA_EXPORT
readTagText(const QDomElement& element, const QString& name, QString& value);

/// Logs the warning "line L: element NAME: text", without the line if it is unknown.
LUMO_CAMERADATA_EXPORT void warnAt(const QDomElement& element, const QString& text);

/// Index of the first character that XML 1.0 (section 2.2) forbids even as a reference,
/// or -1: most control characters, halves of surrogate pairs, U+FFFE and U+FFFF.
/// QXmlStreamWriter writes such characters, which makes the whole file unreadable.
[[nodiscard]] LUMO_CAMERADATA_EXPORT int findInvalidCharacter(const QString& text);

/// The character at findInvalidCharacter() in the form "U+0001"; empty if there is none.
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
