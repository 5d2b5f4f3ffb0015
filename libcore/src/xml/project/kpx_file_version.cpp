// SPDX-License-Identifier: Apache-2.0
#include "xml/project/kpx_file_version.h"

#include "lumo/foundation/log.h"
#include "lumo/foundation/text.h"

#include <QBuffer>
#include <QRegularExpression>
#include <QXmlStreamReader>

#include <optional>
#include <set>
#include <stdexcept>

namespace lumo::kpx {
namespace {

// Uses a stream reader: the document tree of a large project takes a gigabyte.

/// Goes to the first child element of this name; false if there is none.
bool enterFirst(QXmlStreamReader& reader, QLatin1String name)
{
    while (reader.readNextStartElement()) {
        if (reader.qualifiedName() == name) {
            return true;
        }
        reader.skipCurrentElement();
    }
    return false;
}

/// The version texts in the element that is open, the first of each.
struct VersionTexts
{
    std::optional<QString> product;
    std::optional<QString> format;
    qint64 formatLine = 0;
};

VersionTexts readTexts(QXmlStreamReader& reader, QLatin1String productTag)
{
    VersionTexts texts;
    while (reader.readNextStartElement()) {
        if (reader.qualifiedName() == productTag && !texts.product) {
            texts.product =
                reader.readElementText(QXmlStreamReader::IncludeChildElements).trimmed();
        } else if (reader.qualifiedName() == QLatin1String("kpxVersion") && !texts.format) {
            texts.formatLine = reader.lineNumber();
            texts.format = reader.readElementText(QXmlStreamReader::IncludeChildElements);
        } else {
            reader.skipCurrentElement();
        }
    }
    return texts;
}

int formatOf(const VersionTexts& texts)
{
    if (!texts.format) {
        return 0;
    }
    // Only XML's own white space may surround the number, as in the stylesheets.
    static const QRegularExpression number(
        QStringLiteral("\\A[ \\t\\r\\n]*[+-]?[0-9]+[ \\t\\r\\n]*\\z"));
    bool ok = false;
    const int format = text::fromString<int>(*texts.format, &ok);
    if (!ok || format < 0 || !number.match(*texts.format).hasMatch()) {
        log::warning()
            << QStringLiteral("line %1: element kpxVersion: \"%2\" is not a version, 0 is used")
                   .arg(QString::number(texts.formatLine), texts.format->trimmed().left(40));
        return 0;
    }
    return format;
}

FileVersion ofProject(QXmlStreamReader& reader)
{
    VersionTexts texts;
    if (enterFirst(reader, QLatin1String("software"))) {
        texts = readTexts(reader, QLatin1String("projectVersion"));
    }
    // 2.1.43: the first version after the betas, which planSteps() refuses.
    return {texts.product.value_or(QStringLiteral("2.1.43")), formatOf(texts), false};
}

FileVersion ofTemplate(QXmlStreamReader& reader)
{
    if (!enterFirst(reader, QLatin1String("information"))) {
        return {QStringLiteral("2.0"), 0, true};
    }
    const VersionTexts texts = readTexts(reader, QLatin1String("version"));
    if (!texts.product) {
        throw std::runtime_error("template version tag not found");
    }
    return {*texts.product, formatOf(texts), true};
}

} // namespace

Origin originOfOldProject(const QByteArray& bytes)
{
    Origin origin;
    QString* const values[] = {&origin.product, &origin.version};
    std::set<QString> met;
    QBuffer device;
    device.setData(bytes);
    device.open(QIODevice::ReadOnly);
    QXmlStreamReader reader(&device);
    reader.setNamespaceProcessing(false);
    reader.readNextStartElement();
    while (met.size() < std::size(values) && reader.readNextStartElement()) {
        const QString name = reader.qualifiedName().toString();
        const bool isId = name == QLatin1String("id");
        if ((isId || name == QLatin1String("projectVersion")) && met.insert(name).second &&
            reader.attributes().hasAttribute(QStringLiteral("value"))) {
            *values[isId ? 0 : 1] = reader.attributes().value(QStringLiteral("value")).toString();
        }
        reader.skipCurrentElement();
    }
    if (origin.product == QLatin1String("gaiprain")) {
        origin.version = Origin().version;
    }
    return origin;
}

FileVersion readVersion(const QByteArray& bytes)
{
    QBuffer device; // from a device the reader decodes block by block
    device.setData(bytes);
    device.open(QIODevice::ReadOnly);
    QXmlStreamReader reader(&device);
    reader.setNamespaceProcessing(false);
    reader.readNext();
    if (reader.documentVersion().isEmpty()) {
        throw std::runtime_error("Invalid first line in XML file");
    }
    reader.readNextStartElement();
    if (reader.qualifiedName() == QLatin1String("lumodesk")) {
        return ofProject(reader);
    }
    if (reader.qualifiedName() == QLatin1String("lumoair")) {
        return {originOfOldProject(bytes).version, 0, false};
    }
    if (reader.qualifiedName() == QLatin1String("lumotmpl")) {
        return ofTemplate(reader);
    }
    throw std::runtime_error("Invalid first tag in kpx/tmpl file");
}

} // namespace lumo::kpx
