// SPDX-License-Identifier: Apache-2.0
// transformWithXmlQuery(): XSLT 2.0.
#include "xml/validation/restricted_network.h"
#include "xml/xslt/xslt_engines.h"

#include <QAbstractMessageHandler>
#include <QBuffer>
#include <QSourceLocation>
#include <QUrl>
#include <QXmlFormatter>
#include <QXmlNamePool>
#include <QXmlQuery>

namespace lumo::xml {
namespace {

/// Keeps the first error; the others mostly follow from it.
class FirstError : public QAbstractMessageHandler
{
public:
    QString text = QStringLiteral("the stylesheet cannot be run");

protected:
    void handleMessage(
        QtMsgType type, const QString& description, const QUrl& /*identifier*/,
        const QSourceLocation& location) override
    {
        if (type == QtFatalMsg && !m_met) {
            m_met = true;
            text = QStringLiteral("line %1: %2").arg(location.line()).arg(description);
        }
    }

private:
    bool m_met = false;
};

} // namespace

bool transformWithXmlQuery(
    const Stylesheet& stylesheet, const QByteArray& document, QByteArray& result, QString& error)
{
    FirstError messages;
    RestrictedNetwork network(RestrictedNetwork::Access::None);
    const QXmlNamePool names;
    QXmlQuery query(QXmlQuery::XSLT20, names);
    query.setMessageHandler(&messages);
    query.setNetworkAccessManager(&network);

    QBuffer input;
    input.setData(document);
    QBuffer sheet;
    sheet.setData(stylesheet.text);
    QByteArray output;
    QBuffer sink(&output);
    const bool open = input.open(QIODevice::ReadOnly) && sheet.open(QIODevice::ReadOnly) &&
                      sink.open(QIODevice::WriteOnly);
    bool done = open && query.setFocus(&input);
    if (done) {
        query.setQuery(&sheet, QUrl::fromLocalFile(stylesheet.path));
        QXmlFormatter formatter(query, &sink);
        done = query.evaluateTo(&formatter);
    }
    if (!done) {
        error = stylesheet.path + QStringLiteral(": ") + messages.text;
        return false;
    }
    result = output;
    return true;
}

} // namespace lumo::xml
