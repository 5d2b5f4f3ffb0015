// SPDX-License-Identifier: Apache-2.0
#include "sensor_size_rows.h"

#include "lumo/foundation/text.h"

#include <QFile>
#include <QRegularExpression>
#include <QStringList>

#include <algorithm>
#include <array>
#include <cmath>

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
    QString first = folded(name.section(QLatin1Char(' '), 0, 0));
    for (const Alias& alias : kAliases) {
        if (first == QLatin1String(alias.firstWord)) {
            return QLatin1String(alias.maker);
        }
    }
    return first;
}

/// The maker and the model without the maker's name before it, both folded.
struct FoldedName
{
    QString maker;
    QString model;

    FoldedName(const QString& make, const QString& name)
        : maker(foldedMake(make))
        , model(folded(name))
    {
        if (model.size() > maker.size() && model.startsWith(maker)) {
            model.remove(0, maker.size());
        }
    }

    [[nodiscard]] bool isEmpty() const { return maker.isEmpty() || model.isEmpty(); }
};

/// What all variants of a phone have in common, such as "smn900" of a Samsung
/// SM-N900A: after it come letters and digits for the country or the carrier.
QString commonName(const FoldedName& name)
{
    static const std::array<std::pair<QLatin1String, QRegularExpression>, 3> kRules = {{
        {QLatin1String("samsung"),
         QRegularExpression(QStringLiteral(
             "((?:sm|sgh|sch|sph|shv|shw)[a-z][0-9]{3}|gt[a-z][0-9]{4})[a-z0-9]{0,3}$"))},
        {QLatin1String("huawei"),
         QRegularExpression(QStringLiteral("^([a-z]{3})(?:[at]?l|lx)[0-9]{1,2}[a-z]?$"))},
        {QLatin1String("lg"),
         QRegularExpression(QStringLiteral("(?:^|^lm)([a-z][0-9]{3})[a-z]{0,3}$"))},
    }};
    for (const auto& [maker, pattern] : kRules) {
        if (name.maker == maker) {
            return pattern.match(name.model).captured(1);
        }
    }
    return {};
}

/// Adds a variant's size to its phone's. Variants that contradict set it to 0: which
/// of them a further one is like is not known.
void addVariant(const QString& key, const SensorSize& size, SensorSizes& sizes)
{
    constexpr double kSameSensor = 0.05; // lists differ by 1 to 3 % on one camera
    const auto known = sizes.find(key);
    if (known == sizes.end()) {
        sizes.insert(key, size);
    } else if (std::abs(known->widthMm / size.widthMm - 1.0) > kSameSensor) {
        *known = {};
    }
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
    const QString variants = sensorVariantKey(fields[0], fields[1]);
    if (!variants.isEmpty()) {
        addVariant(variants, size, sizes);
    }
    return {};
}

} // namespace

QString sensorSizeKey(const QString& make, const QString& model)
{
    const FoldedName name(make, model);
    return name.isEmpty() ? QString() : name.maker + QLatin1Char('/') + name.model;
}

QString sensorVariantKey(const QString& make, const QString& model)
{
    const FoldedName name(make, model);
    const QString common = name.isEmpty() ? QString() : commonName(name);
    // No folded name holds an asterisk.
    return common.isEmpty() ? QString() : name.maker + QLatin1Char('/') + common + QLatin1Char('*');
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
