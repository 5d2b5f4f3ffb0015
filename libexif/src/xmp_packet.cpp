// SPDX-License-Identifier: Apache-2.0
#include "xmp_packet.h"

#include "exif_text.h"

#include <QXmlStreamReader>

namespace lumo::exif {
namespace {

constexpr int kMaxBytes = 16 * 1024 * 1024;
constexpr int kMaxDepth = 256;

/// Follows the reader from token to token. A property is an attribute or child
/// of a top-level rdf:Description.
class Collector
{
public:
    explicit Collector(const QByteArray& packet)
        : m_xml(packet)
    {
        m_xml.setNamespaceProcessing(false);
    }

    bool run()
    {
        while (!m_done && !m_xml.atEnd()) {
            switch (m_xml.readNext()) {
            case QXmlStreamReader::DTD:
                m_xml.raiseError(QStringLiteral("a document type is not allowed"));
                break;
            case QXmlStreamReader::StartElement:
                start();
                break;
            case QXmlStreamReader::Characters:
                m_text += m_xml.text();
                break;
            case QXmlStreamReader::EndElement:
                end();
                break;
            default:
                break;
            }
        }
        return !m_xml.hasError();
    }

    [[nodiscard]] QString error() const
    {
        return QStringLiteral("line %1: %2").arg(m_xml.lineNumber()).arg(m_xml.errorString());
    }

    XmpProperties properties;

private:
    void start()
    {
        ++m_depth;
        if (m_depth > kMaxDepth) {
            m_xml.raiseError(QStringLiteral("nested deeper than %1").arg(kMaxDepth));
            return;
        }
        const QStringRef name = m_xml.qualifiedName();
        if (m_descriptionDepth == 0) {
            if (name == QLatin1String("rdf:Description")) {
                m_descriptionDepth = m_depth;
                for (const QXmlStreamAttribute& attribute : m_xml.attributes()) {
                    properties.add(
                        attribute.qualifiedName().toString(), {attribute.value().toString()});
                }
            }
        } else if (m_depth == m_descriptionDepth + 1) {
            m_property = name.toString();
            m_items.clear();
            m_simple = true;
        } else {
            m_simple = false;
        }
        m_text.clear();
    }

    void end()
    {
        const QStringRef name = m_xml.qualifiedName();
        if (m_depth == m_descriptionDepth) {
            m_descriptionDepth = 0;
        } else if (m_descriptionDepth != 0 && m_depth == m_descriptionDepth + 1) {
            if (m_simple) {
                m_items.append(m_text);
            }
            properties.add(m_property, m_items);
        } else if (
            m_descriptionDepth != 0 && m_depth == m_descriptionDepth + 3 &&
            name == QLatin1String("rdf:li")) {
            m_items.append(m_text);
        } else if (name == QLatin1String("rdf:RDF")) {
            // Padding and the packet's trailer follow, at times cut off.
            m_done = true;
        }
        m_text.clear();
        --m_depth;
    }

    QXmlStreamReader m_xml;
    int m_depth = 0;
    int m_descriptionDepth = 0; ///< 0 outside
    bool m_simple = true;       ///< the property has no element inside
    bool m_done = false;
    QString m_property;
    QString m_text;
    QStringList m_items;
};

} // namespace

bool XmpProperties::contains(const char* name) const
{
    return m_values.contains(QLatin1String(name));
}

QStringList XmpProperties::values(const char* name) const
{
    return m_values.value(QLatin1String(name));
}

QString XmpProperties::text(const char* name) const
{
    const QStringList all = values(name);
    return all.isEmpty() ? QString() : cleanedText(all.front());
}

QStringList XmpProperties::namesOf(const QString& localName) const
{
    QStringList names;
    for (auto property = m_values.keyBegin(); property != m_values.keyEnd(); ++property) {
        if (property->section(QLatin1Char(':'), -1) == localName) {
            names.append(*property);
        }
    }
    names.sort();
    return names;
}

void XmpProperties::add(const QString& name, const QStringList& values)
{
    const bool structural = name.startsWith(QLatin1String("xmlns")) ||
                            name.startsWith(QLatin1String("rdf:")) ||
                            name.startsWith(QLatin1String("xml:"));
    if (!structural && !values.isEmpty() && !m_values.contains(name)) {
        m_values.insert(name, values);
    }
}

bool parseXmpPacket(const QByteArray& packet, XmpProperties& properties, QString& error)
{
    if (packet.size() > kMaxBytes) {
        error = QStringLiteral("larger than %1 bytes").arg(kMaxBytes);
        return false;
    }
    Collector collector(packet);
    if (!collector.run()) {
        error = collector.error();
        return false;
    }
    properties = collector.properties;
    return true;
}

} // namespace lumo::exif
