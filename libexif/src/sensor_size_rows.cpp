// SPDX-License-Identifier: Apache-2.0
#include "sensor_size_rows.h"

#include "lumo/foundation/text.h"

#include <QFile>
#include <QStringList>

#include <algorithm>
#include <array>

namespace lumo::exif {
namespace {

constexpr double kMaxSideMm = 70.0;

QString folded(const QString& text)
{
    QString result;
    for (const QChar character : text.toLower()) {
        if (character.isLetterOrNumber() || character == QLatin1Char('+')) {
            result += character;
        }
    }
    return result;
}

/// Legal names change, the first word of a maker's name rarely does. These are
/// the exceptions among the makers of the table.
QString foldedMake(const QString& make)
{
    struct Alias
    {
        const char* firstWord;
        const char* maker;
    };
    static constexpr std::array<Alias, 10> kAliases = {{
        {"asahi", "pentax"},
        {"eastman", "kodak"},
        {"general", "ge"},
        {"hewlett", "hp"},
        {"hewlettpackard", "hp"},
        {"jk", "kodak"},
        {"konica", "konicaminolta"},
        {"lge", "lg"},
        {"seiko", "epson"},
        {"teledyne", "flir"},
    }};
    QString name = make.trimmed();
    name.replace(QLatin1Char('_'), QLatin1Char(' ')).replace(QLatin1Char(','), QLatin1Char(' '));
    const QString first = folded(name.section(QLatin1Char(' '), 0, 0));
    for (const Alias& alias : kAliases) {
        if (first == QLatin1String(alias.firstWord)) {
            return QLatin1String(alias.maker);
        }
    }
    return first;
}

bool parseSide(const QString& text, double& side)
{
    bool ok = false;
    side = text::fromString<double>(text, &ok);
    return ok && side > 0.0 && side <= kMaxSideMm;
}

QString rowFault(const QString& line, SensorSizes& sizes)
{
    const QStringList fields = line.split(QLatin1Char('\t'));
    if (fields.size() != 4) {
        return QStringLiteral("%1 fields instead of 4").arg(fields.size());
    }
    const QString key = sensorSizeKey(fields[0], fields[1]);
    if (key.isEmpty()) {
        return QStringLiteral("no make or no model");
    }
    SensorSize size;
    if (fields[2].isEmpty() && fields[3].isEmpty()) {
        sizes.insert(key, size);
        return {};
    }
    if (!parseSide(fields[2], size.widthMm)) {
        return QStringLiteral("\"%1\" is no width").arg(fields[2]);
    }
    if (!fields[3].isEmpty() &&
        !(parseSide(fields[3], size.heightMm) && size.heightMm <= size.widthMm)) {
        return QStringLiteral("\"%1\" is no height").arg(fields[3]);
    }
    if (!sizes.contains(key)) {
        sizes.insert(key, size);
    }
    return {};
}

} // namespace

QString sensorSizeKey(const QString& make, const QString& model)
{
    const QString maker = foldedMake(make);
    QString name = folded(model);
    if (name.size() > maker.size() && name.startsWith(maker)) {
        name.remove(0, maker.size());
    }
    return maker.isEmpty() || name.isEmpty() ? QString() : maker + QLatin1Char('/') + name;
}

QByteArray shippedSensorSizes()
{
    QFile file(QStringLiteral(":/lumo/exif/sensor_sizes.tsv"));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool parseSensorSizes(const QByteArray& text, SensorSizes& sizes, QString& error)
{
    SensorSizes result;
    int number = 0;
    for (const QString& line : QString::fromUtf8(text).split(QLatin1Char('\n'))) {
        ++number;
        if (line.isEmpty() || line.startsWith(QLatin1Char('#'))) {
            continue;
        }
        const QString fault = rowFault(line, result);
        if (!fault.isEmpty()) {
            error = QStringLiteral("line %1: %2").arg(number).arg(fault);
            return false;
        }
    }
    sizes = result;
    return true;
}

} // namespace lumo::exif
