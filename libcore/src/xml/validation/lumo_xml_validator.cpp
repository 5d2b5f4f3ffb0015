// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/xml/lumo_xml_validator.h"

#include "lumo/cameradata/xml_document.h"
#include "lumo/foundation/file.h"
#include "lumo/foundation/log.h"
#include "xml/validation/quick_schema.h"
#include "xml/validation/restricted_network.h"
#include "xml/validation/schema_versions.h"

#include <QAbstractMessageHandler>
#include <QDir>
#include <QRegularExpression>
#include <QSourceLocation>
#include <QUrl>
#include <QXmlSchema>
#include <QXmlSchemaValidator>

#include <vector>

namespace lumo {

QString getCurrentXsdPath()
{
    const std::vector<int> versions = xml::schemaVersions();
    return versions.empty()
               ? QString()
               : QDir(xml::schemasFolder()).absoluteFilePath(QString::number(versions.back()));
}

namespace xml {

namespace {

/// The validator marks its messages up as HTML.
QString withoutMarkup(QString text)
{
    static const QRegularExpression tag(QStringLiteral("<[^>]*>"));
    text.remove(tag);
    text.replace(QLatin1String("&lt;"), QLatin1String("<"));
    text.replace(QLatin1String("&gt;"), QLatin1String(">"));
    text.replace(QLatin1String("&quot;"), QLatin1String("\""));
    text.replace(QLatin1String("&amp;"), QLatin1String("&"));
    return text;
}

} // namespace

/// Passes the validator's messages to the log, at level Debug.
class EmptyMessageHandler : public QAbstractMessageHandler
{
protected:
    void handleMessage(
        QtMsgType type, const QString& description, const QUrl& /*identifier*/,
        const QSourceLocation& location) override
    {
        const QString text = QStringLiteral("XSD Validation - description: ") + description +
                             QStringLiteral("\ntype: ") + QString::number(type) +
                             QStringLiteral("\nlocation: ") + location.uri().toString() +
                             QStringLiteral(" line: ") + QString::number(location.line()) +
                             QStringLiteral(" column: ") + QString::number(location.column());
        log::debug() << text;
    }
};

/// Also keeps the first message, as "line L, column C: text" without markup.
class FirstMessageHandler : public EmptyMessageHandler
{
public:
    QString first;

protected:
    void handleMessage(
        QtMsgType type, const QString& description, const QUrl& identifier,
        const QSourceLocation& location) override
    {
        EmptyMessageHandler::handleMessage(type, description, identifier, location);
        if (!first.isEmpty()) {
            return;
        }
        if (location.line() > 0) {
            first =
                QStringLiteral("line %1, column %2: ").arg(location.line()).arg(location.column());
        }
        first += withoutMarkup(description);
    }
};

class LUMO_CORE_NO_EXPORT XmlValidator::Impl
{
public:
    Impl();

    [[nodiscard]] bool load(const QString& path);
    [[nodiscard]] bool validate(const QByteArray& document, const QUrl& uri);
    /// As `validate`, for what checkXml let pass.
    [[nodiscard]] bool validateChecked(const QByteArray& document, const QUrl& uri);
    /// The content of a file if it is XML that may be looked at further.
    [[nodiscard]] bool read(const QString& path, QByteArray& content);
    void report(const QString& description, const QUrl& uri);
    /// The first fault of the latest attempt that failed; never empty.
    [[nodiscard]] QString firstFault() const;

    RestrictedNetwork schemaAccess{RestrictedNetwork::Access::LocalFiles};
    RestrictedNetwork documentAccess{RestrictedNetwork::Access::None};
    QXmlSchema schema;
    FirstMessageHandler handler;
    std::unique_ptr<QXmlSchemaValidator> validator; ///< null until a schema was loaded
    QuickSchema quick;                              ///< of the same schema
    QString xsdPath;                                ///< of the schema loaded last
};

XmlValidator::Impl::Impl()
{
    schema.setMessageHandler(&handler);
    schema.setNetworkAccessManager(&schemaAccess);
}

void XmlValidator::Impl::report(const QString& description, const QUrl& uri)
{
    handler.message(QtFatalMsg, description, QUrl(), QSourceLocation(uri));
}

QString XmlValidator::Impl::firstFault() const
{
    if (!handler.first.isEmpty()) {
        return handler.first;
    }
    return validator ? QStringLiteral("does not satisfy the schema")
                     : QStringLiteral("no schema is loaded");
}

bool XmlValidator::Impl::read(const QString& path, QByteArray& content)
{
    const QUrl uri = QUrl::fromLocalFile(path);
    QString reason;
    if (!file::read(path, kMaxFileBytes, content, reason) || !checkXml(content, reason)) {
        report(reason, uri);
        return false;
    }
    return true;
}

bool XmlValidator::Impl::load(const QString& path)
{
    QByteArray content;
    if (!read(path, content)) {
        schema.load(QByteArray()); // so that isValid() reflects this attempt
        log::important() << "Failed loading the schema";
        return false;
    }
    if (!schema.load(content, QUrl::fromLocalFile(path)) || !schema.isValid()) {
        log::important() << "No valid schema";
        return false;
    }
    xsdPath = path;
    validator = std::make_unique<QXmlSchemaValidator>(schema);
    validator->setMessageHandler(&handler);
    validator->setNetworkAccessManager(&documentAccess);
    quick = QuickSchema(content);
    return true;
}

bool XmlValidator::Impl::validate(const QByteArray& document, const QUrl& uri)
{
    QString reason;
    if (!checkXml(document, reason)) {
        report(reason, uri);
        return false;
    }
    return validateChecked(document, uri);
}

bool XmlValidator::Impl::validateChecked(const QByteArray& document, const QUrl& uri)
{
    // The quick schema accepts most valid documents; the slow validator finds the fault of
    // the others.
    return quick.accepts(document) || validator->validate(document, uri);
}

XmlValidator::XmlValidator()
    : m_impl(std::make_unique<Impl>())
{}

XmlValidator::~XmlValidator() = default;

bool XmlValidator::loadXsd(const QString& xsdFile)
{
    return m_impl->load(xsdFile);
}

bool XmlValidator::loadXsd(const QString& xsdFile, QString& error)
{
    m_impl->handler.first.clear();
    if (!loadXsd(xsdFile)) {
        error = m_impl->firstFault();
        return false;
    }
    return true;
}

bool XmlValidator::isXsdLoaded() const
{
    return m_impl->schema.isValid();
}

bool XmlValidator::validateXml(QIODevice& device)
{
    if (!m_impl->validator) {
        return false;
    }
    if (!m_impl->validate(device.readAll(), QUrl())) {
        log::debug() << "XML buffer validation failed with current XSD";
        return false;
    }
    return true;
}

bool XmlValidator::validateXml(const QString& xmlFile)
{
    QByteArray document;
    // read() runs checkXml(), so validateChecked() need not repeat it.
    return m_impl->validator && m_impl->read(xmlFile, document) &&
           m_impl->validateChecked(document, QUrl::fromLocalFile(xmlFile));
}

bool XmlValidator::validateXml(const QString& xmlFile, QString& error)
{
    m_impl->handler.first.clear();
    if (!validateXml(xmlFile)) {
        error = m_impl->firstFault();
        return false;
    }
    return true;
}

bool XmlValidator::validateXml(QIODevice& device, QString& error)
{
    m_impl->handler.first.clear();
    if (!validateXml(device)) {
        error = m_impl->firstFault();
        return false;
    }
    return true;
}

} // namespace xml
} // namespace lumo
