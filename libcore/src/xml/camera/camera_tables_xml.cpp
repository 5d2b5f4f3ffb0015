// SPDX-License-Identifier: Apache-2.0
#include "xml/camera/camera_tables_xml.h"

#include "lumo/cameradata/written_digits.h"
#include "lumo/cameradata/xml_values.h"
#include "lumo/core/specificSensor/vignetting_text.h"

#include <QDomElement>
#include <QStringList>
#include <QXmlStreamWriter>

#include <cmath>
#include <limits>

namespace lumo::io {
namespace {

constexpr int kFNumberDigits = 10;
constexpr double kKeyPerFNumber = 100.0;

void warnOfBadCoefficient(const QDomElement& element, const QString& coefficients)
{
    QStringList parts = coefficients.split(QLatin1Char(','));
    if (parts.last().isEmpty()) { // no text at all, or a comma at the end
        parts.removeLast();
    }
    for (const QString& part : parts) {
        bool ok = false;
        static_cast<void>(text::fromString<double>(part, &ok));
        if (!ok) {
            xml::warnAt(
                element,
                QStringLiteral("coefficient \"%1\" is not a number, 0 is used").arg(part.left(40)));
        }
    }
}

/// Only the number of rows is stored beside the coefficients, which are written column
/// by column.
VignettingData readModel(const QDomElement& element)
{
    const QString coefficients = xml::readValue(element, "value", QString());
    warnOfBadCoefficient(element, coefficients);
    VignettingData model = string2vignetting(coefficients);
    const Eigen::Index count = model.coefficients.size();
    const int rows = xml::readValue(element, "sizeY", static_cast<int>(count));
    if (rows > 0 && count % rows == 0) {
        model.coefficients.resize(rows, count / rows);
    } else if (count > 0) {
        xml::warnAt(
            element, QStringLiteral("%1 coefficients are not %2 rows, one column is used")
                         .arg(count)
                         .arg(rows));
    }
    return model;
}

} // namespace

void writePixelValues(
    QXmlStreamWriter& writer, const std::map<DataType, PixelValueRange>& pixelValues)
{
    for (const auto& [type, range] : pixelValues) {
        if (type == DataType::Unknown) {
            continue; // reading could not assign it to a type
        }
        writer.writeStartElement(QStringLiteral("pixelValue"));
        xml::writeValue(writer, "pixelType", text::toString(type));
        xml::writeValue(writer, "min", range.min, writtendigits::kValue);
        xml::writeValue(writer, "max", range.max, writtendigits::kValue);
        writer.writeEndElement();
    }
}

std::map<DataType, PixelValueRange> readPixelValues(const QDomElement& element)
{
    const QString tag = QStringLiteral("pixelValue");
    std::map<DataType, PixelValueRange> pixelValues;
    for (QDomElement child = element.firstChildElement(tag); !child.isNull();
         child = child.nextSiblingElement(tag)) {
        const QString typeText = xml::readValue(child, "pixelType", QString());
        const auto type = text::fromString<DataType>(typeText);
        if (type == DataType::Unknown) {
            xml::warnAt(child, QStringLiteral("unknown pixel type \"%1\"").arg(typeText));
            continue;
        }
        pixelValues[type] = {xml::readValue(child, "min", 0.0), xml::readValue(child, "max", 0.0)};
    }
    return pixelValues;
}

void writeVignetting(QXmlStreamWriter& writer, const std::map<int, VignettingData>& models)
{
    for (const auto& [key, model] : models) {
        writer.writeStartElement(QStringLiteral("vignettingPoly"));
        xml::writeValue(writer, "fNumber", key / kKeyPerFNumber, kFNumberDigits);
        xml::writeValue(writer, "sizeY", static_cast<int>(model.coefficients.rows()));
        xml::writeValue(writer, "value", vignetting2string(model));
        writer.writeEndElement();
    }
}

std::map<int, VignettingData> readVignetting(const QDomElement& element)
{
    const QString tag = QStringLiteral("vignettingPoly");
    std::map<int, VignettingData> models;
    for (QDomElement child = element.firstChildElement(tag); !child.isNull();
         child = child.nextSiblingElement(tag)) {
        const double key = xml::readValue(child, "fNumber", 0.0) * kKeyPerFNumber;
        if (std::abs(key) > std::numeric_limits<int>::max()) {
            xml::warnAt(child, QStringLiteral("no lens has this f-number"));
            continue;
        }
        models[static_cast<int>(std::lround(key))] = readModel(child);
    }
    return models;
}

} // namespace lumo::io
