// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/xml/xslt_converter.h"

#include "lumo/cameradata/xml_document.h"
#include "lumo/core/xml/conversion_error.h"
#include "lumo/foundation/log.h"
#include "xml/xslt/stylesheet_changes.h"
#include "xml/xslt/xslt_engines.h"

#include <QIODevice>
#include <QXmlStreamReader>

namespace lumo {
namespace {

bool readStylesheet(const QString& path, xml::Stylesheet& stylesheet, QString& error)
{
    QByteArray text;
    if (!xml::readFile(path, text, error)) {
        return false;
    }
    QString reason;
    if (!xml::checkXml(text, reason)) {
        error = path + QStringLiteral(": ") + reason;
        return false;
    }
    stylesheet = {text, path};
    return true;
}

bool isXslt1(const QByteArray& stylesheet)
{
    QXmlStreamReader reader(stylesheet);
    return reader.readNextStartElement() &&
           reader.attributes().value(QLatin1String("version")) == QLatin1String("1.0");
}

/// libxml2 has limits of its own, which do for most documents, so that the pass through
/// xml::checkXml can be spared. They are lower than those of checkXml, and what they
/// refuse may still be good: a failure is no answer.
bool transformUnchecked(
    const xml::Stylesheet& stylesheet, const QByteArray& document, QByteArray& result)
{
    QString reason;
    return xml::isHarmless(document) &&
           xml::transformWithLibxslt(stylesheet, document, xml::Guard::ByParser, result, reason);
}

bool transform(const QString& xslFile, QIODevice* input, QByteArray& result, QString& error)
{
    if (input == nullptr || !input->isReadable()) {
        error = QStringLiteral("the input cannot be read");
        return false;
    }
    xml::Stylesheet stylesheet;
    const QByteArray document = input->readAll();
    if (!readStylesheet(xslFile, stylesheet, error)) {
        return false;
    }
    const bool forLibxslt = isXslt1(stylesheet.text);
    if (forLibxslt && transformUnchecked(stylesheet, document, result)) {
        return true;
    }
    if (!xml::checkXml(document, error)) {
        return false;
    }
    return forLibxslt
               ? xml::transformWithLibxslt(stylesheet, document, xml::Guard::Checked, result, error)
               : xml::transformWithXmlQuery(stylesheet, document, result, error);
}

} // namespace

XsltConverter::XsltConverter() = default;
XsltConverter::~XsltConverter() = default;

void XsltConverter::setXsdFile(const QString& xsdFile)
{
    m_xsdFile = xsdFile;
}

void XsltConverter::setXslFile(const QString& xslFile)
{
    m_xslFile = xslFile;
}

QByteArray XsltConverter::convert(QIODevice* input)
{
    QByteArray result;
    QString error;
    if (!transform(m_xslFile, input, result, error)) {
        log::warning() << error;
        throw ConversionError("Cannot transform XML using XSLT", error);
    }
    return QByteArrayLiteral("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n") + result;
}

std::vector<ConversionChange> XsltConverter::changesOf(const QByteArray& input) const
{
    QByteArray stylesheet;
    QString unused;
    return xml::readFile(m_xslFile, stylesheet, unused) ? xml::stylesheetChanges(stylesheet, input)
                                                        : std::vector<ConversionChange>();
}

} // namespace lumo
