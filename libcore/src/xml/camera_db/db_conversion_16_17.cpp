// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/xml/db_conversion_16_17.h"

#include "lumo/cameradata/xml_document.h"
#include "lumo/core/xml/lumo_xml_validator.h"
#include "xml/camera/old_camera_names.h"
#include "xml/camera/old_rig_values.h"

#include <QBuffer>
#include <QDomDocument>
#include <QStringList>
#include <QXmlStreamReader>

#include <algorithm>
#include <stdexcept>
#include <vector>

namespace lumo {
namespace {

/// Reads the old document token by token and builds the new one.
class Rewriter
{
public:
    explicit Rewriter(const QByteArray& bytes)
        : m_reader(bytes)
    {}

    QByteArray run();

private:
    using Open = std::vector<QDomElement>; ///< the elements being built, outermost first

    void topLevelElement();
    void version();
    void bringRigsUpToDate();
    void entry(QDomElement& section);
    [[nodiscard]] static bool inside(const Open& open, const QString& name);
    [[nodiscard]] bool dropped(const Open& open) const;
    [[nodiscard]] QDomElement renamedElement(const Open& open);
    void copyAttributes(QDomElement& element) const;
    void copyText(QDomElement& parent);
    void requireWellFormed() const;

    QXmlStreamReader m_reader;
    std::size_t m_version = 0; ///< of the old document; 0 if it is not known
    QDomDocument m_output;
    QDomElement m_root = m_output.createElement(QStringLiteral("cameraModelDB"));
    QDomElement m_rigs = m_output.createElement(QStringLiteral("rigs"));
    QDomElement m_cameras = m_output.createElement(QStringLiteral("cameras"));
    QDomElement m_mappings = m_output.createElement(QStringLiteral("mappings"));
};

QByteArray Rewriter::run()
{
    if (m_reader.readNext() != QXmlStreamReader::StartDocument) {
        throw std::runtime_error("Start of document not found");
    }
    if (!m_reader.readNextStartElement() || m_reader.name() != m_root.tagName()) {
        throw std::runtime_error("Initial tag not expected");
    }
    while (m_reader.readNextStartElement()) {
        topLevelElement();
    }
    requireWellFormed();
    bringRigsUpToDate();
    for (const QDomElement& section : {m_rigs, m_cameras, m_mappings}) {
        m_root.appendChild(section);
    }
    m_output.appendChild(m_root);
    return m_output.toByteArray(4);
}

void Rewriter::topLevelElement()
{
    const QString name = m_reader.name().toString();
    if (name == QLatin1String("version")) {
        version();
    } else if (name == QLatin1String("rig")) {
        entry(m_rigs);
    } else if (name == QLatin1String("camera")) {
        entry(m_cameras);
    } else if (name == QLatin1String("mapping")) {
        entry(m_mappings);
    } else if (name == QLatin1String("vendorId") || name == QLatin1String("productId")) {
        m_reader.skipCurrentElement();
    } else {
        throw std::runtime_error(
            "Unexpected tag during cameraDB XML conversion: " + name.toStdString());
    }
}

void Rewriter::version()
{
    const QXmlStreamAttributes attributes = m_reader.attributes();
    const QString attribute = QStringLiteral("value");
    const QString text = m_reader.readElementText(QXmlStreamReader::SkipChildElements);
    m_version = (attributes.hasAttribute(attribute) ? attributes.value(attribute).toString() : text)
                    .trimmed()
                    .toUInt();
    QDomElement element = m_output.createElement(QStringLiteral("version"));
    element.appendChild(m_output.createTextNode(QStringLiteral("17")));
    m_root.appendChild(element);
}

/// Translates values of rigs whose meaning changed. The later steps and the reader expect
/// the meaning of version 17.
void Rewriter::bringRigsUpToDate()
{
    if (m_version == 0) { // unknown: the meaning of the values cannot be determined
        return;
    }
    const QString exifString = QStringLiteral("exifString");
    const QString index = QStringLiteral("index");
    for (QDomElement rig = m_rigs.firstChildElement(); !rig.isNull();
         rig = rig.nextSiblingElement()) {
        if (rig.hasAttribute(exifString)) {
            rig.setAttribute(exifString, xml::rigExifString(rig.attribute(exifString), m_version));
        }
        QDomElement reference = rig.firstChildElement(QStringLiteral("referenceCamera"));
        const QDomNodeList others = rig.elementsByTagName(QStringLiteral("camera"));
        const std::size_t stored = reference.attribute(index).toUInt();
        const std::size_t meant =
            xml::referenceCameraIndex(stored, rig.attribute(QStringLiteral("name")), m_version);
        // A number outside the rig stays as stored, for the reader to report.
        if (meant != stored && meant <= static_cast<std::size_t>(others.count())) {
            reference.setAttribute(index, static_cast<qulonglong>(meant));
        }
    }
}

void Rewriter::entry(QDomElement& section)
{
    Open open;
    open.push_back(renamedElement(open));
    while (!open.empty()) {
        switch (m_reader.readNext()) {
        case QXmlStreamReader::StartElement:
            if (dropped(open)) {
                m_reader.skipCurrentElement();
            } else {
                open.push_back(renamedElement(open));
            }
            break;
        case QXmlStreamReader::EndElement: {
            const QDomElement closed = open.back();
            open.pop_back();
            (open.empty() ? section : open.back()).appendChild(closed);
            break;
        }
        case QXmlStreamReader::Characters:
            copyText(open.back());
            break;
        default:
            requireWellFormed();
        }
    }
}

bool Rewriter::inside(const Open& open, const QString& name)
{
    return std::any_of(open.begin(), open.end(), [&](const QDomElement& element) {
        return element.tagName() == name;
    });
}

bool Rewriter::dropped(const Open& open) const
{
    const auto name = m_reader.name();
    return name == QLatin1String("calibReliability") || name == QLatin1String("serialNumber") ||
           (name == QLatin1String("poly5") && inside(open, QStringLiteral("camera")));
}

QDomElement Rewriter::renamedElement(const Open& open)
{
    const bool inRig = inside(open, QStringLiteral("rig"));
    QString name = m_reader.name().toString();
    if (inside(open, QStringLiteral("camera"))) {
        name = xml::renamedInCamera(name);
    }
    if (inRig) {
        name = xml::renamedInRig(name);
    }
    QDomElement element = m_output.createElement(name);
    const QXmlStreamAttributes attributes = m_reader.attributes();
    if (inRig && name == QLatin1String("cameraDetection") && !attributes.isEmpty()) {
        element.setAttribute(QStringLiteral("value"), attributes.front().value().toString());
    } else {
        copyAttributes(element);
    }
    return element;
}

void Rewriter::copyAttributes(QDomElement& element) const
{
    const bool isCamera = element.tagName() == QLatin1String("camera");
    const bool isProcessing = element.tagName() == QLatin1String("processing");
    for (const QXmlStreamAttribute& attribute : m_reader.attributes()) {
        QString name = attribute.name().toString();
        QString value = attribute.value().toString();
        if (isCamera && name == QLatin1String("id")) {
            continue;
        }
        if (isCamera) {
            name = xml::renamedOfCamera(name);
        }
        if (isProcessing && name == QLatin1String("mode") &&
            value == QLatin1String("optRotRelStatic")) {
            value = QStringLiteral("optRotRel");
        }
        element.setAttribute(name, value);
    }
}

void Rewriter::copyText(QDomElement& parent)
{
    // White space between elements goes: the output has an indentation of its own.
    if (!m_reader.isWhitespace() || m_reader.isCDATA()) {
        parent.appendChild(m_output.createTextNode(m_reader.text().toString()));
    }
}

void Rewriter::requireWellFormed() const
{
    if (m_reader.hasError()) {
        throw std::runtime_error(QStringLiteral("line %1: %2")
                                     .arg(m_reader.lineNumber())
                                     .arg(m_reader.errorString())
                                     .toStdString());
    }
}

void validate(const QByteArray& bytes, const QString& xsdFile)
{
    xml::XmlValidator validator;
    QBuffer device;
    device.setData(bytes);
    if (!device.open(QIODevice::ReadOnly) || !validator.loadXsd(xsdFile) ||
        !validator.validateXml(device)) {
        throw std::runtime_error("XSD validation failed" + xsdFile.toStdString());
    }
}

QByteArray rewrite(const QByteArray& bytes)
{
    QString error;
    if (!xml::checkXml(bytes, error)) {
        throw std::runtime_error(error.toStdString());
    }
    return Rewriter(bytes).run();
}

} // namespace

DbConversion16_17::DbConversion16_17() = default;
DbConversion16_17::~DbConversion16_17() = default;

void DbConversion16_17::setXsdFile(const QString& xsdFile)
{
    m_xsdFile = xsdFile;
}

void DbConversion16_17::setXslFile(const QString& /*xslFile*/) {}

QByteArray DbConversion16_17::convert(QIODevice* input)
{
    const QByteArray bytes = input != nullptr ? input->readAll() : QByteArray();
    if (!m_xsdFile.isEmpty()) {
        validate(bytes, m_xsdFile);
    }
    try {
        return rewrite(bytes);
    } catch (const std::exception& fault) {
        throw std::runtime_error(
            std::string("Error converting user camera database file (16->17): ") + fault.what());
    }
}

} // namespace lumo
