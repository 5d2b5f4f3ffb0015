// SPDX-License-Identifier: Apache-2.0
#include "lumo/cameradata/bands.h"

#include <QSet>

#include <algorithm>
#include <cmath>
#include <optional>

namespace lumo {
namespace {

/// The form in which names are compared: without blanks and case, since makers spell the
/// same band "Red Edge", "RedEdge" and "rededge".
QString foldedName(const QString& name)
{
    QString folded;
    for (const QChar& character : name) {
        if (!character.isSpace()) {
            folded += character;
        }
    }
    return folded.toCaseFolded();
}

bool sameName(const QString& a, const QString& b)
{
    return foldedName(a) == foldedName(b);
}

bool usable(double value)
{
    return std::isfinite(value) && value >= 0.0;
}

/// The first fault of a band, if any.
std::optional<QString> faultOf(const bands_t& bands)
{
    QSet<QString> seen;
    for (const band_t& band : bands) {
        const QString folded = foldedName(band.name);
        if (folded.isEmpty()) {
            return QStringLiteral("A band has no name");
        }
        if (!usable(band.wavelength) || !usable(band.width) || !usable(band.weight)) {
            return QStringLiteral("Band '%1' has an invalid wavelength, width or weight")
                .arg(band.name);
        }
        // Cameras may deliver several channels without content.
        if (!band.garbage() && seen.contains(folded)) {
            return QStringLiteral("Two bands are named '%1'").arg(band.name);
        }
        seen.insert(folded);
    }
    return std::nullopt;
}

} // namespace

bool band_t::garbage() const
{
    return name.compare(QLatin1String("Garbage"), Qt::CaseInsensitive) == 0;
}

bands_t::bands_t(std::initializer_list<band_t> bands)
    : m_bands(bands)
{}

QStringList bands_t::names() const
{
    QStringList result;
    for (const band_t& band : m_bands) {
        result.append(band.name);
    }
    return result;
}

bool bands_t::sameNames(const bands_t& other) const
{
    return sameNames(other.names());
}

bool bands_t::sameNames(const QStringList& names) const
{
    return std::equal(
        m_bands.begin(), m_bands.end(), names.begin(), names.end(),
        [](const band_t& band, const QString& name) { return sameName(band.name, name); });
}

bool bands_t::sameCentralWaveLengths(const bands_t& other) const
{
    constexpr double kToleranceNm = 0.5; // files and data sheets round to whole nanometres
    return std::equal(
        begin(), end(), other.begin(), other.end(), [](const band_t& a, const band_t& b) {
            return std::abs(a.wavelength - b.wavelength) <= kToleranceNm;
        });
}

std::size_t bands_t::garbageBandCount() const
{
    return static_cast<std::size_t>(
        std::count_if(begin(), end(), [](const band_t& band) { return band.garbage(); }));
}

void bands_t::removeGarbage()
{
    std::erase_if(m_bands, [](const band_t& band) { return band.garbage(); });
}

void bands_t::copyData(const bands_t& other)
{
    for (band_t& band : m_bands) {
        const auto source = std::find_if(other.begin(), other.end(), [&band](const band_t& known) {
            return sameName(known.name, band.name);
        });
        if (source == other.end()) {
            continue;
        }
        band.wavelength = band.wavelength == 0.0 ? source->wavelength : band.wavelength;
        band.width = band.width == 0.0 ? source->width : band.width;
        band.weight = band.weight == 0.0 ? source->weight : band.weight;
    }
}

bool bands_t::needsCopyDataFrom(const bands_t& other) const
{
    if (!sameNames(other)) {
        return true;
    }
    // Copying and comparing repeats none of the rules of copyData.
    bands_t filled = *this;
    filled.copyData(other);
    return !(filled == *this);
}

bool bands_t::valid(QString& error, bool checkBands, bool verbose, bool allowEmpty) const
{
    std::optional<QString> fault;
    if (m_bands.empty() && !allowEmpty) {
        fault = QStringLiteral("There are no bands");
    } else if (checkBands) {
        fault = faultOf(*this);
    }
    if (verbose && fault) {
        error = *fault;
    }
    return !fault;
}

bands_t band::makeRGBBands()
{
    return {
        {QStringLiteral("Red"), 0.0, 0.0, 1.0},
        {QStringLiteral("Green"), 0.0, 0.0, 1.0},
        {QStringLiteral("Blue"), 0.0, 0.0, 1.0},
    };
}

} // namespace lumo
