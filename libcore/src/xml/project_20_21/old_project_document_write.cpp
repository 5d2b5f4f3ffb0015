// SPDX-License-Identifier: Apache-2.0
// OldDocument: writing the document of the new format.
#include "lumo/cameradata/xml_values.h"
#include "xml/project_20_21/old_project_document.h"

#include <QBuffer>
#include <QXmlStreamWriter>

#include <stdexcept>

namespace lumo::kpx {
namespace {

/// The first version of the product that every later one takes for its own.
const QString kProjectVersion = QStringLiteral("2.1.43");

void writeSection(QXmlStreamWriter& writer, const char* name, const std::vector<Element>& elements)
{
    writer.writeStartElement(QLatin1String(name));
    for (const Element& element : elements) {
        writeElement(writer, element);
    }
    writer.writeEndElement();
}

void writeInOrder(
    QXmlStreamWriter& writer, std::initializer_list<const char*> names,
    const std::map<QString, Element>& elements)
{
    for (const char* name : names) {
        const auto element = elements.find(QLatin1String(name));
        if (element != elements.end()) {
            writeElement(writer, element->second);
        }
    }
}

} // namespace

QByteArray OldDocument::write()
{
    QByteArray result("<?xml version=\"1.0\" encoding=\"utf-8\"?>"); // the writer begins a line
    result.reserve(m_bytes.size() + m_bytes.size() / 4);
    QBuffer device(&result);
    device.open(QIODevice::WriteOnly | QIODevice::Append);
    QXmlStreamWriter writer(&device);
    writer.setAutoFormatting(true);
    writer.setAutoFormattingIndent(2);
    m_mode == Mode::Project ? writeProject(writer) : writeTemplate(writer);
    if (writer.hasError()) {
        throw std::runtime_error("the result cannot be written");
    }
    device.close();
    result.append('\n');
    return result;
}

void OldDocument::writeRoot(QXmlStreamWriter& writer, const char* name) const
{
    writer.writeStartElement(QLatin1String(name));
    for (const Attribute& declaration : m_namespaces) {
        writer.writeAttribute(declaration.name, declaration.value);
    }
}

void OldDocument::writeProject(QXmlStreamWriter& writer)
{
    writeRoot(writer, "lumodesk");
    writer.writeStartElement(QStringLiteral("software"));
    xml::writeTag(writer, QStringLiteral("product"), m_origin.product);
    xml::writeTag(writer, QStringLiteral("projectVersion"), kProjectVersion);
    xml::writeTag(writer, QStringLiteral("kpxVersion"), 0);
    xml::writeTag(writer, QStringLiteral("convertedFrom"), m_origin.version);
    writer.writeEndElement();
    m_options.write(writer);
    writeInputs(writer);
    writer.writeStartElement(QStringLiteral("output"));
    writeInOrder(writer, {"name", "resultFolder", "reportLanguage", "reportLogo"}, m_output);
    writer.writeEndElement();
    writeSection(writer, "gcps", m_gcps);
    writeSection(writer, "objects", m_objects);
    writer.writeEndElement();
}

void OldDocument::writeTemplate(QXmlStreamWriter& writer) const
{
    writeRoot(writer, "lumotmpl");
    writer.writeStartElement(QStringLiteral("information"));
    writeInOrder(writer, {"name", "description"}, m_information);
    xml::writeTag(writer, QStringLiteral("version"), kProjectVersion);
    xml::writeTag(writer, QStringLiteral("kpxVersion"), 0);
    xml::writeTag(writer, QStringLiteral("convertedFrom"), m_origin.version);
    writer.writeEndElement();
    m_options.write(writer);
    writer.writeEndElement();
}

void OldDocument::writeInputs(QXmlStreamWriter& writer)
{
    writer.writeStartElement(QStringLiteral("inputs"));
    writeImages(writer);
    writeSection(writer, "cameras", m_cameras);
    writer.writeStartElement(QStringLiteral("coordinateSystems"));
    writeInOrder(writer, {"image", "gcp", "output"}, m_systems);
    writer.writeEndElement();
    writer.writeEndElement();
}

void OldDocument::writeImages(QXmlStreamWriter& writer)
{
    writer.writeStartElement(QStringLiteral("images"));
    walkElements(m_bytes, nullptr, [&](QXmlStreamReader& reader) {
        if (reader.qualifiedName() != QLatin1String("image")) {
            reader.skipCurrentElement();
            return true;
        }
        Element image = readElement(reader, m_changes);
        convertImage(image, m_index.imageElements(), m_changes);
        m_changes.moved(image.name, QStringLiteral("inputs/images/image"), image.line);
        writeElement(writer, image);
        return true;
    });
    writer.writeEndElement();
}

} // namespace lumo::kpx
