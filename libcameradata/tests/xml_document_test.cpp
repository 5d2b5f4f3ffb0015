// SPDX-License-Identifier: Apache-2.0
#include "lumo/cameradata/xml_document.h"

#include <QByteArray>
#include <QDomDocument>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <functional>
#include <ostream>

namespace lumo::xml {
namespace {

QByteArray nested(int depth)
{
    return QByteArray("<a>").repeated(depth) + QByteArray("</a>").repeated(depth);
}

QByteArray withAttributes(int count)
{
    QByteArray bytes = "<a";
    for (int i = 0; i < count; ++i) {
        bytes += " n" + QByteArray::number(i) + (i % 2 == 0 ? "='>\"'" : "=\"'>\"");
    }
    return bytes + "/>";
}

QByteArray withText(int length)
{
    return "<a>" + QByteArray(length / 2, 'x') + "<![CDATA[" +
           QByteArray(length - length / 2, 'x') + "]]></a>";
}

QByteArray withAttribute(int length)
{
    return "<a b='" + QByteArray(length, 'x') + "'/>";
}

/// Each entity is ten of the one before.
QByteArray entityBomb()
{
    QByteArray bytes = "<!DOCTYPE a [<!ENTITY a 'xxxxxxxxxx'>\n";
    for (char name = 'b'; name < 'k'; ++name) {
        const QByteArray before = QByteArray("&") + static_cast<char>(name - 1) + ';';
        bytes += QByteArray("<!ENTITY ") + name + " '" + before.repeated(10) + "'>\n";
    }
    return bytes + "]><a>&j;</a>";
}

struct Input
{
    const char* name;
    std::function<QByteArray()> bytes;
    const char* error; ///< the part of it that is ours; empty if the input is read
};

void PrintTo(const Input& input, std::ostream* out) // NOLINT(readability-identifier-naming)
{
    *out << input.name;
}

std::function<QByteArray()> literal(const QByteArray& bytes)
{
    return [bytes] { return bytes; };
}

const Input kInputs[] = {
    {"empty", literal(""), "line 1: "},
    {"not closed", literal("<a>\n<b></a>"), "line 2: "},
    {"two roots", literal("<a/>\n<b/>"), "line 2: "},
    {"deep as allowed", [] { return nested(kMaxDepth); }, ""},
    {"too deep", [] { return nested(kMaxDepth + 1); }, "line 1: elements are nested deeper"},
    {"far too deep", [] { return nested(200'000); }, "line 1: elements are nested deeper"},
    {"attributes as allowed", [] { return withAttributes(kMaxAttributes); }, ""},
    {"too many attributes", [] { return withAttributes(kMaxAttributes + 1); },
     "line 1: an element with more than 1000 attributes"},
    {"hidden by a comment",
     [] { return "<r><!-- it's -->\n" + withAttributes(kMaxAttributes + 1) + "</r>"; },
     "line 2: an element with more than 1000 attributes"},
    {"far too many attributes", [] { return withAttributes(1'000'000); },
     "line 1: an element with more than 1000 attributes"},
    {"no attributes", [] { return "<a><!--" + QByteArray(5000, '=') + "-->a=b</a>"; }, ""},
    {"text as allowed", [] { return withText(kMaxTextLength); }, ""},
    {"text too long", [] { return withText(kMaxTextLength + 1); }, "line 1: a text is longer"},
    {"attribute too long", [] { return withAttribute(kMaxTextLength + 1); },
     "line 1: an attribute is longer"},
    {"attribute of 100 MB", [] { return withAttribute(100'000'000); },
     "line 1: an attribute is longer"},
    {"plain document type", literal("<?xml version='1.0'?><!-- <! --><!DOCTYPE kpx >\n<kpx/>"), ""},
    {"entity bomb", entityBomb, "line 1: a document type declaration"},
    {"parameter entity", literal("<!-- -->\n<!DOCTYPE a [<!ENTITY % x '<!---->'>%x;]><a/>"),
     "line 2: a document type declaration"},
    {"external entity", literal("<!DOCTYPE a [<!ENTITY x SYSTEM 'file:///etc/passwd'>]><a>&x;</a>"),
     "line 1: a document type declaration"},
    {"external definition", literal("<!DOCTYPE a SYSTEM 'file:///etc/passwd'><a>&x;</a>"),
     "line 1: a document type declaration"},
    {"undeclared entity", literal("<a>\n&x;</a>"), "line 2: "},
    {"invalid UTF-8", literal("<a>\n\xC3(</a>"), "line "},
    {"half a surrogate pair", literal("<a>\xED\xA0\x80</a>"), "line 1: "},
    {"NUL", literal(QByteArray("<a>\n\0</a>", 9)), "line 2: a NUL character"},
    {"NUL at the end", literal(QByteArray("<a/>\0", 5)), "line 1: a NUL character"},
    {"UTF-16", literal(QByteArray("\xFF\xFE<\0a\0/\0>\0", 10)), "line 1: a NUL character"},
    {"control character", literal("<a>\n&#1;</a>"), "line 2: "},
    {"encoding with other markup", literal("<?xml version='1.0' encoding='UTF-7'?><a/>"),
     "line 1: encoding UTF-7 is not supported: save the file as UTF-8"},
    {"ISO-8859-1", literal("<?xml version='1.0' encoding='iso-8859-1'?><a>\xFC</a>"), ""},
    {"byte order mark", literal("\xEF\xBB\xBF<a/>"), ""},
};

class XmlInput : public testing::TestWithParam<Input>
{};

TEST_P(XmlInput, IsReadOrRefusedWithTheLineAndTheDocumentLeftAlone)
{
    const QByteArray bytes = GetParam().bytes();
    const QString expected = QString::fromLatin1(GetParam().error);
    QDomDocument document;
    document.appendChild(document.createElement(QStringLiteral("before")));
    QString error = QStringLiteral("untouched");
    const bool read = domFromBytes(bytes, document, error);
    EXPECT_EQ(read, expected.isEmpty()) << qPrintable(error);
    EXPECT_EQ(document.documentElement().tagName() == QLatin1String("before"), !read);
    EXPECT_TRUE(read ? error == QLatin1String("untouched") : error.startsWith(expected))
        << qPrintable(error);
    QString checkError = QStringLiteral("untouched");
    EXPECT_EQ(checkXml(bytes, checkError), read);
    EXPECT_EQ(checkError, error);
}

INSTANTIATE_TEST_SUITE_P(Inputs, XmlInput, testing::ValuesIn(kInputs));

TEST(XmlDocument, AStringIsReadWhateverEncodingItDeclares)
{
    QDomDocument document;
    QString error;
    for (const char* encoding : {"UTF-16", "ISO-8859-1"}) {
        const QString text =
            QStringLiteral("<?xml version='1.0' encoding='%1'?>\n<a><b>\u5EA6</b></a>")
                .arg(QLatin1String(encoding));
        ASSERT_TRUE(domFromString(text, document, error)) << encoding << qPrintable(error);
        EXPECT_EQ(document.documentElement().text(), QStringLiteral("\u5EA6"));
        EXPECT_EQ(document.documentElement().firstChildElement().lineNumber(), 2);
    }
    EXPECT_FALSE(domFromString(
        QStringLiteral("<a>\n") + QChar(0xD800) + QStringLiteral("</a>"), document, error));
    EXPECT_EQ(error, QStringLiteral("line 2: character U+D800 is not allowed"));
    EXPECT_FALSE(domFromString(QString::fromLatin1(nested(kMaxDepth + 1)), document, error));
    EXPECT_FALSE(domFromString(QString::fromLatin1(entityBomb()), document, error));
}

TEST(XmlDocument, AFileThatCannotBeReadIsNamed)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("a.xml"));
    QDomDocument document;
    QString error;
    EXPECT_FALSE(domFromFile(path, document, error));
    EXPECT_TRUE(error.startsWith(path + QStringLiteral(": "))) << qPrintable(error);
    EXPECT_FALSE(domFromFile(folder.path(), document, error));
    EXPECT_EQ(error, folder.path() + QStringLiteral(": not a regular file"));
    EXPECT_FALSE(domFromFile(QStringLiteral("/dev/zero"), document, error));

    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("<a>\n<b>");
    file.close();
    EXPECT_FALSE(domFromFile(path, document, error));
    EXPECT_TRUE(error.startsWith(path + QStringLiteral(": line 2: "))) << qPrintable(error);
    ASSERT_TRUE(file.open(QIODevice::Append));
    file.write("</b></a>");
    file.close();
    EXPECT_TRUE(domFromFile(path, document, error)) << qPrintable(error);

    ASSERT_TRUE(file.resize((qint64{1} << 30) + 1)); // on disk it takes no more
    EXPECT_FALSE(domFromFile(path, document, error));
    EXPECT_EQ(error, path + QStringLiteral(": larger than 1024 MiB"));
}

} // namespace
} // namespace lumo::xml
