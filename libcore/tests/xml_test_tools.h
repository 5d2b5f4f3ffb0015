// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/cameradata/xml_document.h"

#include <QByteArray>
#include <QDomDocument>
#include <QFile>
#include <QString>
#include <gtest/gtest.h>

namespace lumo::test {

inline QByteArray readFile(const QString& path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(path);
    return file.readAll();
}

inline QString writeFile(const QString& path, const QByteArray& content)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly)) << qPrintable(path);
    file.write(content);
    return path;
}

inline void appendElement(const QDomElement& element, const QString& indent, QString& text)
{
    QStringList attributes;
    for (int i = 0; i < element.attributes().count(); ++i) {
        const QDomNode attribute = element.attributes().item(i);
        attributes << QStringLiteral(" %1=[%2]").arg(attribute.nodeName(), attribute.nodeValue());
    }
    attributes.sort();
    text += indent + element.tagName() + attributes.join(QString());
    for (QDomNode node = element.firstChild(); !node.isNull(); node = node.nextSibling()) {
        text += node.isText() ? QStringLiteral(" \"%1\"").arg(node.nodeValue()) : QString();
    }
    text += QLatin1Char('\n');
    for (QDomElement child = element.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement()) {
        appendElement(child, indent + QLatin1Char(' '), text);
    }
}

/// Elements, attributes and texts, a line an element: equal for documents that
/// differ in white space and in the order of attributes only.
inline std::string outline(const QByteArray& xml)
{
    QDomDocument document;
    QString error;
    EXPECT_TRUE(xml::domFromBytes(xml, document, error)) << qPrintable(error);
    QString text;
    appendElement(document.documentElement(), QString(), text);
    return text.toStdString();
}

/// What no way in for XML may take.
inline std::vector<std::pair<const char*, QByteArray>> hostileDocuments()
{
    constexpr int depth = 200000;
    return {
        {"nesting", QByteArray("<a>").repeated(depth) + QByteArray("</a>").repeated(depth)},
        {"entity", "<!DOCTYPE a [<!ENTITY b \"bbbbbbbb\"><!ENTITY c \"&b;&b;&b;\">]><a>&c;</a>"},
        {"external entity", "<!DOCTYPE a [<!ENTITY b SYSTEM \"file:///etc/passwd\">]><a>&b;</a>"},
        {"long text", "<a>" + QByteArray(17 * 1024 * 1024, 'x') + "</a>"},
        {"not UTF-8", "<a>\xff\xfe</a>"},
        {"cut off", "<a><b>"},
        {"nothing", ""},
        {"a zero", QByteArray("<a>\0</a>", 8)}};
}

} // namespace lumo::test
