// SPDX-License-Identifier: Apache-2.0
#include "lumo/cameradata/xml_document.h"

#include "lumo/cameradata/xml_values.h"
#include "lumo/foundation/file.h"

#include <QBuffer>
#include <QDomDocument>
#include <QRegularExpression>
#include <QStringList>
#include <QXmlStreamReader>

#include <algorithm>

namespace lumo::xml {
namespace {

enum class Encoding { Declared, Ignored };

QString atLine(qint64 line, const QString& reason)
{
    return QStringLiteral("line %1: %2").arg(line).arg(reason);
}

QString atPosition(const QByteArray& bytes, int position, const QString& reason)
{
    return atLine(1 + std::count(bytes.begin(), bytes.begin() + position, '\n'), reason);
}

/// Index where an element first exceeds kMaxAttributes; -1 if none does. The parser
/// compares each attribute with all others of the element, which is quadratic, so this
/// check comes before parsing. Counts "=" outside of quotes, and nothing
/// in comments, declarations and processing instructions.
int findAttributeTooMany(const QByteArray& bytes)
{
    enum class State { Outside, TagOpened, InTag, InDouble, InSingle };
    State state = State::Outside;
    int count = 0;
    for (int i = 0; i < bytes.size(); ++i) {
        const char c = bytes[i];
        if (c == '<') { // cannot occur in an attribute value, so this resynchronises
            state = State::TagOpened;
            count = 0;
        } else if (state == State::TagOpened) {
            state = c == '!' || c == '?' ? State::Outside : State::InTag;
        } else if (state == State::InTag) {
            count += c == '=' ? 1 : 0;
            state = c == '>'    ? State::Outside
                    : c == '"'  ? State::InDouble
                    : c == '\'' ? State::InSingle
                                : State::InTag;
        } else if (
            (state == State::InDouble && c == '"') || (state == State::InSingle && c == '\'')) {
            state = State::InTag;
        }
        if (count > kMaxAttributes) {
            return i;
        }
    }
    return -1;
}

/// Index of a document type declaration with more than a name; -1 if there is none. Only
/// comments and processing instructions can precede it.
int findRichDoctype(const QByteArray& bytes)
{
    int i = bytes.indexOf('<');
    while (i >= 0) {
        if (bytes.mid(i, 4) == "<!--") {
            i = bytes.indexOf("-->", i + 4);
        } else if (bytes.mid(i, 2) == "<?") {
            i = bytes.indexOf("?>", i + 2);
        } else {
            break;
        }
        i = i < 0 ? -1 : bytes.indexOf('<', i);
    }
    if (i < 0 || bytes.mid(i, 2) != "<!") {
        return -1;
    }
    static const QRegularExpression plain(
        QStringLiteral("\\A<!DOCTYPE[ \\t\\r\\n]+[^ \\t\\r\\n<>\\[\\]\"'%&;]+[ \\t\\r\\n]*>"));
    constexpr int kLongestDoctype = 1024; // longer names are refused, too: none is real
    return plain.match(QString::fromLatin1(bytes.mid(i, kLongestDoctype))).hasMatch() ? -1 : i;
}

/// Checks that need no parser, or must come before it.
bool checkBytes(const QByteArray& bytes, QString& error)
{
    // Texts in UTF-16 and UTF-32 contain NUL bytes, too; the checks below need ASCII markup.
    const int nul = bytes.indexOf('\0');
    if (nul >= 0) {
        error = atPosition(bytes, nul, QStringLiteral("a NUL character; UTF-8 is expected"));
        return false;
    }
    const int doctype = findRichDoctype(bytes);
    if (doctype >= 0) {
        error = atPosition(
            bytes, doctype,
            QStringLiteral("a document type declaration with more than a name is not allowed"));
        return false;
    }
    const int attribute = findAttributeTooMany(bytes);
    if (attribute >= 0) {
        error = atPosition(
            bytes, attribute,
            QStringLiteral("an element with more than %1 attributes").arg(kMaxAttributes));
        return false;
    }
    return true;
}

/// Only encodings whose markup is ASCII, as checkBytes expects.
bool supportedEncoding(const QStringRef& name)
{
    static const QStringList supported{
        QString(), QStringLiteral("UTF-8"), QStringLiteral("US-ASCII"),
        QStringLiteral("ISO-8859-1"), QStringLiteral("windows-1252")};
    return supported.contains(name.toString(), Qt::CaseInsensitive);
}

bool attributeTooLong(const QXmlStreamReader& reader)
{
    const QXmlStreamAttributes attributes = reader.attributes();
    return std::any_of(attributes.begin(), attributes.end(), [](const auto& attribute) {
        return attribute.value().size() > kMaxTextLength;
    });
}

/// Reads through an input with limits on depth and lengths. A streaming reader needs no
/// stack per level, so the limits hold before QDomDocument, which does, sees the input.
class Walk
{
public:
    explicit Walk(QXmlStreamReader& reader, Encoding encoding)
        : m_reader(reader)
        , m_encoding(encoding)
    {}

    [[nodiscard]] bool run(QString& error)
    {
        while (!m_reader.atEnd()) {
            m_reader.readNext();
            const QString reason = fault();
            if (!reason.isEmpty()) {
                error = atLine(m_reader.lineNumber(), reason);
                return false;
            }
        }
        if (m_reader.hasError()) {
            error = atLine(m_reader.lineNumber(), m_reader.errorString());
            return false;
        }
        return true;
    }

private:
    /// The reason to refuse the current token; empty if there is none.
    [[nodiscard]] QString fault()
    {
        switch (m_reader.tokenType()) {
        case QXmlStreamReader::StartDocument:
            if (m_encoding == Encoding::Declared &&
                !supportedEncoding(m_reader.documentEncoding())) {
                return QStringLiteral("encoding %1 is not supported: save the file as UTF-8")
                    .arg(m_reader.documentEncoding().toString());
            }
            break;
        case QXmlStreamReader::StartElement:
            m_textLength = 0;
            if (++m_depth > kMaxDepth) {
                return QStringLiteral("elements are nested deeper than %1").arg(kMaxDepth);
            }
            if (attributeTooLong(m_reader)) {
                return QStringLiteral("an attribute is longer than %1 characters")
                    .arg(kMaxTextLength);
            }
            break;
        case QXmlStreamReader::EndElement:
            m_textLength = 0;
            --m_depth;
            break;
        default:
            m_textLength += m_reader.text().size(); // a reader may deliver one text in parts
            if (m_textLength > kMaxTextLength) {
                return QStringLiteral("a text is longer than %1 characters").arg(kMaxTextLength);
            }
        }
        return {};
    }

    QXmlStreamReader& m_reader;
    Encoding m_encoding;
    int m_depth = 0;
    qint64 m_textLength = 0;
};

bool check(QXmlStreamReader& reader, Encoding encoding, QString& error)
{
    reader.setNamespaceProcessing(false);
    return Walk(reader, encoding).run(error);
}

bool build(QXmlStreamReader& reader, QDomDocument& document, QString& error)
{
    // A new document: setContent changes its own one on failure, too.
    QDomDocument built;
    QString reason;
    int line = 0;
    if (!built.setContent(&reader, false, &reason, &line)) {
        error = atLine(line, reason);
        return false;
    }
    document = built;
    return true;
}

} // namespace

bool checkXml(const QByteArray& bytes, QString& error)
{
    if (!checkBytes(bytes, error)) {
        return false;
    }
    // From a device the reader decodes block by block. From an array it decodes everything at
    // once, which takes more memory.
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    QXmlStreamReader reader(&buffer);
    return check(reader, Encoding::Declared, error);
}

bool domFromBytes(const QByteArray& bytes, QDomDocument& document, QString& error)
{
    if (!checkXml(bytes, error)) {
        return false;
    }
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    QXmlStreamReader reader(&buffer);
    return build(reader, document, error);
}

bool domFromString(const QString& text, QDomDocument& document, QString& error)
{
    // Conversion to UTF-8 would silently replace half of a surrogate pair.
    const int invalid = findInvalidCharacter(text);
    if (invalid >= 0) {
        error = atLine(
            1 + text.leftRef(invalid).count(QLatin1Char('\n')),
            QStringLiteral("character %1 is not allowed").arg(invalidCharacter(text)));
        return false;
    }
    if (!checkBytes(text.toUtf8(), error)) {
        return false;
    }
    QXmlStreamReader checked(text);
    if (!check(checked, Encoding::Ignored, error)) {
        return false;
    }
    QXmlStreamReader reader(text);
    return build(reader, document, error);
}

bool readFile(const QString& path, QByteArray& content, QString& error)
{
    QString reason;
    if (!file::read(path, kMaxFileBytes, content, reason)) {
        error = QStringLiteral("%1: %2").arg(path, reason);
        return false;
    }
    return true;
}

bool domFromFile(const QString& path, QDomDocument& document, QString& error)
{
    QByteArray bytes;
    if (!readFile(path, bytes, error)) {
        return false;
    }
    QString reason;
    if (!domFromBytes(bytes, document, reason)) {
        error = QStringLiteral("%1: %2").arg(path, reason);
        return false;
    }
    return true;
}

} // namespace lumo::xml
