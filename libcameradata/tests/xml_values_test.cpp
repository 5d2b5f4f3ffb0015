// SPDX-License-Identifier: Apache-2.0
#include "lumo/cameradata/bands.h"
#include "lumo/cameradata/xml_document.h"
#include "lumo/cameradata/xml_values.h"
#include "lumo/foundation/log.h"

#include <QDomDocument>
#include <QXmlStreamWriter>
#include <gtest/gtest.h>

#include <limits>

namespace lumo::xml {
namespace {

/// The element "e" that `write` filled.
template <typename Write>
QDomElement written(Write write)
{
    QString text;
    QXmlStreamWriter writer(&text);
    writer.writeStartElement(QStringLiteral("e"));
    write(writer);
    writer.writeEndElement();
    QDomDocument document;
    QString error;
    EXPECT_TRUE(domFromString(text, document, error)) << qPrintable(error);
    return document.documentElement();
}

QDomElement element(const char* xml)
{
    QDomDocument document;
    QString error;
    EXPECT_TRUE(domFromBytes(xml, document, error)) << qPrintable(error);
    return document.documentElement();
}

TEST(XmlValues, EveryTextAndNumberComesBack)
{
    const QString text =
        QStringLiteral(" <a b='c'>\t&\r\n\"\u5EA6") + QString::fromUtf8("\U0001F4F7");
    const std::size_t large = std::numeric_limits<std::size_t>::max();
    const QDomElement e = written([&](QXmlStreamWriter& writer) {
        writeValue(writer, "text", text);
        writeValue(writer, "int", -7);
        writeValue(writer, "size", large);
        writeValue(writer, "double", -1234567.891, 10);
        writeValue(writer, "bool", true);
        writeTag(writer, "text", text);
        writeTag(writer, "unsigned", 4000000000u);
        writeTag(writer, "double", 0.000012345678, 6);
        writeTag(writer, "bool", false);
        writeTag(writer, "empty", QString());
    });
    EXPECT_EQ(readValue(e, "text", QString()), text);
    EXPECT_EQ(readValue(e, "int", 0), -7);
    EXPECT_EQ(readValue(e, "size", std::size_t{0}), large);
    EXPECT_EQ(e.attribute(QStringLiteral("double")), QStringLiteral("-1234567.891"));
    EXPECT_EQ(readValue(e, "bool", false), true);
    EXPECT_EQ(readTag(e, "text", QString()), text);
    EXPECT_EQ(readTag(e, "unsigned", 0u), 4000000000u);
    EXPECT_EQ(readTag(e, "double", QString()), QStringLiteral("1.23457e-05"));
    EXPECT_EQ(readTag(e, "bool", true), false);
    EXPECT_EQ(readTag(e, "empty", QStringLiteral("default")), QString());
}

TEST(XmlValues, APathLeadsThroughFirstChildren)
{
    const QDomElement e = element("<e v='0'><a v='1'><b v='2'/></a><a v='3' w='4'/></e>");
    EXPECT_EQ(readValue(e, "v", 9), 0);
    EXPECT_EQ(readValue(e, "a.v", 9), 1);
    EXPECT_EQ(readValue(e, "a.b.v", 9), 2);
    EXPECT_TRUE(hasValue(e, "a.b.v"));
    for (const char* missing : {"w", "a.w", "b.v", "a.b.v.v", "", ".", "a."}) {
        EXPECT_EQ(readValue(e, missing, 9), 9) << missing;
        EXPECT_FALSE(hasValue(e, missing)) << missing;
    }
    QString text = QStringLiteral("kept");
    EXPECT_FALSE(readTagText(e, "c", text));
    EXPECT_EQ(text, QStringLiteral("kept"));
    EXPECT_TRUE(readTagText(e, "a", text));
    EXPECT_EQ(text, QString());
}

TEST(XmlValues, WhatDoesNotParseIsTheDefaultWithAWarning)
{
    for (const char* bad :
         {"", "x", "1 2", "1,5", "0x10", "nan", "inf", "99999999999999999999", "1e999"}) {
        SCOPED_TRACE(bad);
        const QByteArray xml = QByteArray("<e>\n<a v='") + bad + "'>" + bad + "</a></e>";
        const QDomElement e = element(xml);
        const log::Capture log;
        EXPECT_EQ(readTag(e, "a", 7), 7);
        EXPECT_TRUE(log.contains(
            log::Level::Warning,
            QStringLiteral("line 2: element a: \"%1\" is not a number in range, 7 is used")
                .arg(QLatin1String(bad))));
        EXPECT_EQ(readValue(e, "a.v", std::size_t{7}), 7u);
        EXPECT_EQ(readTag(e, "a", true), true);
        EXPECT_EQ(log.records().size(), 3u);
    }
    const log::Capture log;
    const QDomElement e = element("<e v='-1'><a>1.5</a></e>");
    EXPECT_EQ(readValue(e, "v", std::size_t{2}), 2u);
    EXPECT_EQ(readTag(e, "a", 3), 3);
    EXPECT_EQ(readTag(e, "missing", 4), 4);
    EXPECT_EQ(log.records().size(), 2u);
}

TEST(XmlValues, ForbiddenCharactersAreFound)
{
    const auto code = [](char16_t unit) { return QString(QStringLiteral("ab")) + QChar(unit); };
    for (const char16_t allowed :
         {u'\x9', u'\xA', u'\xD', u'\x20', u'\x7F', u'\x85', u'\xD7FF', u'\xE000', u'\xFFFD'}) {
        EXPECT_EQ(findInvalidCharacter(code(allowed)), -1) << int{allowed};
    }
    for (const char16_t refused :
         {u'\x0', u'\x1', u'\x8', u'\xB', u'\xC', u'\xE', u'\x1F', u'\xD800', u'\xDFFF', u'\xFFFE',
          u'\xFFFF'}) {
        EXPECT_EQ(findInvalidCharacter(code(refused)), 2) << int{refused};
    }
    EXPECT_EQ(findInvalidCharacter(QString::fromUtf8("\U0001F4F7")), -1);
    EXPECT_EQ(findInvalidCharacter(QString(QChar(0xDC00)) + QChar(0xD800)), 0);
    EXPECT_EQ(invalidCharacter(code(0x1B)), QStringLiteral("U+001B"));
    EXPECT_EQ(invalidCharacter(QStringLiteral("a")), QString());
}

TEST(BandsXml, BandsComeBackInOrderAndReplaceThoseBefore)
{
    const bands_t bands{
        {"Red edge", 717.25, 10.5, 0.3333333333}, {"", 0, 0, 0}, {"NIR", 840, 40, 1}};
    const QDomElement e = written([&](QXmlStreamWriter& writer) { bands.saveXML(writer); });
    bands_t back = band::makeRGBBands();
    back.readXML(e);
    EXPECT_EQ(back, bands);
    back.readXML(element("<e><other name='x'/><band name='a'/></e>"));
    EXPECT_EQ(back, (bands_t{{"a", 0, 0, 1}}));
    back.readXML(element("<e/>"));
    EXPECT_TRUE(back.empty());
}

} // namespace
} // namespace lumo::xml
