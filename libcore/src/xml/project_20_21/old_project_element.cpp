// SPDX-License-Identifier: Apache-2.0
#include "xml/project_20_21/old_project_element.h"

#include "lumo/cameradata/xml_values.h"
#include "xml/project_20_21/old_project_changes.h"

#include <QBuffer>
#include <QDomDocument>
#include <QXmlStreamWriter>

#include <algorithm>
#include <array>
#include <stdexcept>

namespace lumo::kpx {
namespace {

/// Elements of versions before 1.2: current projects cannot express their content.
constexpr std::array<const char*, 6> kVeryOldTags{"sensorHeightmm",       "sensorWidthmm",
                                                  "focalLengthPixel",     "principalPointXPixel",
                                                  "principalPointYPixel", "cameraCalibrationFile"};

void refuseVeryOld(const QString& tag)
{
    if (std::any_of(kVeryOldTags.begin(), kVeryOldTags.end(), [&](const char* old) {
            return tag == QLatin1String(old);
        })) {
        throw std::runtime_error("conversion not supported for very old tag: " + tag.toStdString());
    }
}

[[noreturn]] void refuse(const QXmlStreamReader& reader)
{
    throw std::runtime_error(QStringLiteral("line %1: %2")
                                 .arg(reader.lineNumber())
                                 .arg(reader.errorString())
                                 .toStdString());
}

Element startedElement(const QXmlStreamReader& reader)
{
    Element element{reader.qualifiedName().toString()};
    refuseVeryOld(element.name);
    element.line = lineOf(reader);
    const QXmlStreamAttributes attributes = reader.attributes();
    element.attributes.reserve(static_cast<std::size_t>(attributes.size()));
    for (const QXmlStreamAttribute& attribute : attributes) {
        element.attributes.push_back(
            {attribute.qualifiedName().toString(), attribute.value().toString()});
    }
    return element;
}

void dropText(const QString& parent, int line, Changes& changes)
{
    changes.dropped(parent, QStringLiteral("text beside elements is not kept"), line);
}

/// Removes text that the result cannot contain: text beside child elements, which is
/// reported, and white space.
void settleText(Element& element, Changes& changes)
{
    const bool blank = element.text.trimmed().isEmpty();
    if (!blank && !element.children.empty()) {
        dropText(element.name, element.line, changes);
    }
    if (blank || !element.children.empty()) {
        element.text.clear();
    }
}

} // namespace

const QString* Element::attribute(const QString& attributeName) const
{
    const auto found = std::find_if(attributes.begin(), attributes.end(), [&](const auto& one) {
        return one.name == attributeName;
    });
    return found == attributes.end() ? nullptr : &found->value;
}

QString Element::value() const
{
    const QString* const value = attribute(QStringLiteral("value"));
    return value != nullptr ? *value : text;
}

void Element::setAttribute(const QString& attributeName, const QString& value)
{
    for (Attribute& one : attributes) {
        if (one.name == attributeName) {
            one.value = value;
            return;
        }
    }
    attributes.push_back({attributeName, value});
}

std::optional<QString> Element::takeAttribute(const QString& attributeName)
{
    const auto found = std::find_if(attributes.begin(), attributes.end(), [&](const auto& one) {
        return one.name == attributeName;
    });
    if (found == attributes.end()) {
        return {};
    }
    QString value = std::move(found->value);
    attributes.erase(found);
    return value;
}

int lineOf(const QXmlStreamReader& reader)
{
    return static_cast<int>(reader.lineNumber());
}

void dropComment(const QXmlStreamReader& reader, Changes& changes)
{
    const bool isComment = reader.isComment();
    changes.dropped(
        isComment ? QStringLiteral("comment") : QStringLiteral("processing instruction"),
        QStringLiteral("it has no place in the result"), lineOf(reader));
}

Element readElement(QXmlStreamReader& reader, Changes& changes)
{
    Element element = startedElement(reader);
    while (true) {
        switch (reader.readNext()) {
        case QXmlStreamReader::StartElement:
            element.children.push_back(readElement(reader, changes));
            break;
        case QXmlStreamReader::EndElement:
            settleText(element, changes);
            return element;
        case QXmlStreamReader::Characters:
            element.text += reader.text();
            break;
        case QXmlStreamReader::Comment:
        case QXmlStreamReader::ProcessingInstruction:
            dropComment(reader, changes);
            break;
        default:
            refuse(reader);
        }
    }
}

Element rootOf(const QByteArray& bytes)
{
    QBuffer device;
    device.setData(bytes);
    device.open(QIODevice::ReadOnly);
    QXmlStreamReader reader(&device);
    reader.setNamespaceProcessing(false);
    reader.readNextStartElement();
    return startedElement(reader);
}

void walkElements(
    const QByteArray& bytes, Changes* changes, const std::function<bool(QXmlStreamReader&)>& each)
{
    QBuffer device; // from a device the reader decodes block by block
    device.setData(bytes);
    device.open(QIODevice::ReadOnly);
    QXmlStreamReader reader(&device);
    reader.setNamespaceProcessing(false); // names stay as written, with their prefixes
    QString root;
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.isStartElement() && root.isEmpty()) {
            root = reader.qualifiedName().toString();
        } else if (reader.isStartElement() && !each(reader)) {
            return;
        } else if (changes != nullptr && (reader.isComment() || reader.isProcessingInstruction())) {
            dropComment(reader, *changes);
        } else if (changes != nullptr && reader.isCharacters() && !reader.isWhitespace()) {
            dropText(root, lineOf(reader), *changes);
        }
    }
    if (reader.hasError()) {
        refuse(reader);
    }
}

void writeElement(QXmlStreamWriter& writer, const Element& element)
{
    const bool empty = element.text.isEmpty() && element.children.empty();
    empty ? writer.writeEmptyElement(element.name) : writer.writeStartElement(element.name);
    for (const Attribute& attribute : element.attributes) {
        writer.writeAttribute(attribute.name, attribute.value);
    }
    if (empty) {
        return;
    }
    if (!element.text.isEmpty()) {
        xml::writeText(writer, element.text);
    }
    for (const Element& child : element.children) {
        writeElement(writer, child);
    }
    writer.writeEndElement();
}

QDomElement toDom(QDomDocument& document, const Element& element)
{
    QDomElement dom = document.createElement(element.name);
    for (const Attribute& attribute : element.attributes) {
        dom.setAttribute(attribute.name, attribute.value);
    }
    if (!element.text.isEmpty()) {
        dom.appendChild(document.createTextNode(element.text));
    }
    for (const Element& child : element.children) {
        dom.appendChild(toDom(document, child));
    }
    return dom;
}

} // namespace lumo::kpx
