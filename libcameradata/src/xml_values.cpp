// SPDX-License-Identifier: Apache-2.0
#include "lumo/cameradata/xml_values.h"

#include "lumo/foundation/log.h"
#include "lumo/foundation/text.h"

#include <QDomElement>
#include <QStringList>
#include <QXmlStreamWriter>

namespace lumo::xml {
namespace {

/// The name of an attribute and its element, which is null if the path leads nowhere.
struct Attribute
{
    QDomElement element;
    QString name;
};

Attribute find(const QDomElement& element, const QString& path)
{
    Attribute attribute{element, path};
    for (int dot = path.indexOf(QLatin1Char('.')); dot >= 0;
         dot = attribute.name.indexOf(QLatin1Char('.'))) {
        attribute.element = attribute.element.firstChildElement(attribute.name.left(dot));
        attribute.name.remove(0, dot + 1);
    }
    return attribute;
}

/// \param what  beginning of the warning: "attribute NAME: ", or empty for an element
template <typename T>
T parse(const QDomElement& element, const QString& what, const QString& text, const T& defaultValue)
{
    if constexpr (std::is_same_v<T, QString>) {
        return text;
    } else {
        bool ok = false;
        const T value = text::fromString<T>(text, &ok);
        if (!ok) {
            const bool truth = std::is_same_v<T, bool>;
            warnAt(
                element,
                what + QLatin1Char('"') + text.left(40) + QLatin1String("\" is not a ") +
                    (truth ? QLatin1String("truth value") : QLatin1String("number in range")) +
                    QStringLiteral(", %1 is used").arg(defaultValue));
        }
        return ok ? value : defaultValue;
    }
}

/// Does not judge surrogates, which are allowed in pairs: the caller does.
bool forbidden(QChar character)
{
    const ushort code = character.unicode();
    const bool control = code < 0x20 && code != '\t' && code != '\n' && code != '\r';
    return control || code == 0xFFFE || code == 0xFFFF;
}

} // namespace

void writeValue(QXmlStreamWriter& writer, const QString& name, const QString& value)
{
    writer.writeAttribute(name, value);
}

void writeValue(QXmlStreamWriter& writer, const QString& name, double value, int digits)
{
    writer.writeAttribute(name, QString::number(value, 'g', digits));
}

void writeTag(QXmlStreamWriter& writer, const QString& name, const QString& value)
{
    writer.writeStartElement(name);
    writeText(writer, value);
    writer.writeEndElement();
}

void writeTag(QXmlStreamWriter& writer, const QString& name, double value, int digits)
{
    writeTag(writer, name, QString::number(value, 'g', digits));
}

void writeText(QXmlStreamWriter& writer, const QString& text)
{
    // writeCharacters writes a carriage return as it is.
    const QStringList parts = text.split(QLatin1Char('\r'));
    for (int i = 0; i < parts.size(); ++i) {
        if (i > 0) {
            writer.writeEntityReference(QStringLiteral("#13"));
        }
        writer.writeCharacters(parts[i]);
    }
}

bool hasValue(const QDomElement& element, const QString& path)
{
    const Attribute attribute = find(element, path);
    return attribute.element.hasAttribute(attribute.name);
}

template <typename T>
T readValue(const QDomElement& element, const QString& path, const T& defaultValue)
{
    const Attribute attribute = find(element, path);
    return attribute.element.hasAttribute(attribute.name)
               ? parse(
                     attribute.element, QStringLiteral("attribute %1: ").arg(attribute.name),
                     attribute.element.attribute(attribute.name), defaultValue)
               : defaultValue;
}

template <typename T>
T readTag(const QDomElement& element, const QString& name, const T& defaultValue)
{
    const QDomElement child = element.firstChildElement(name);
    return child.isNull() ? defaultValue : parse(child, QString(), child.text(), defaultValue);
}

bool readTagText(const QDomElement& element, const QString& name, QString& value)
{
    const QDomElement child = element.firstChildElement(name);
    if (!child.isNull()) {
        value = child.text();
    }
    return !child.isNull();
}

void warnAt(const QDomElement& element, const QString& text)
{
    const QString place = element.lineNumber() > 0
                              ? QStringLiteral("line %1: ").arg(element.lineNumber())
                              : QString();
    log::warning() << QStringLiteral("%1element %2: %3").arg(place, element.tagName(), text);
}

int findInvalidCharacter(const QString& text)
{
    for (int i = 0; i < text.size(); ++i) {
        if (text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate()) {
            ++i; // U+10000 to U+10FFFF, all allowed
        } else if (text[i].isSurrogate() || forbidden(text[i])) {
            return i;
        }
    }
    return -1;
}

QString invalidCharacter(const QString& text)
{
    const int i = findInvalidCharacter(text);
    return i < 0 ? QString()
                 : QStringLiteral("U+%1").arg(text[i].unicode(), 4, 16, QLatin1Char('0')).toUpper();
}

#define LUMO_XML_VALUE_TYPE(T)                                                                     \
    template T readValue<T>(const QDomElement&, const QString&, const T&);                         \
    template T readTag<T>(const QDomElement&, const QString&, const T&);
LUMO_XML_VALUE_TYPE(QString)
LUMO_XML_VALUE_TYPE(int)
LUMO_XML_VALUE_TYPE(unsigned)
LUMO_XML_VALUE_TYPE(std::size_t)
LUMO_XML_VALUE_TYPE(double)
LUMO_XML_VALUE_TYPE(bool)
#undef LUMO_XML_VALUE_TYPE

} // namespace lumo::xml
