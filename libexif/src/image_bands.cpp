// SPDX-License-Identifier: Apache-2.0
#include "image_bands.h"

#include "exif_text.h"
#include "lumo/foundation/text.h"

#include <QRegularExpression>

#include <algorithm>
#include <string>

namespace lumo::exif {
namespace {

constexpr int kMaxBands = 256;
constexpr double kMaxWavelengthNm = 1e6;
constexpr int kColourChannels = 3;

// Values of the TIFF tag PhotometricInterpretation.
constexpr int kPhotometricPalette = 3;
constexpr int kPhotometricColourFilterArray = 32803;

// Values of the TIFF tag ExtraSamples that mean transparency.
constexpr int kAssociatedAlpha = 1;
constexpr int kUnassociatedAlpha = 2;

int numberOr(const TagReader& tags, const std::string& key, int fallback)
{
    const double value = tags.number(key.c_str()).value_or(fallback);
    return value >= 0.0 && value <= 65535.0 ? static_cast<int>(value) : fallback;
}

/// The directory of the main image: in raw files the first one is a preview.
std::string mainImageGroup(const TagReader& tags)
{
    constexpr int kSubImages = 9;
    if (numberOr(tags, "Exif.Image.NewSubfileType", 0) != 0) {
        for (int i = 1; i <= kSubImages; ++i) {
            const std::string group = "Exif.SubImage" + std::to_string(i);
            if (numberOr(tags, group + ".NewSubfileType", 1) == 0) {
                return group;
            }
        }
    }
    return "Exif.Image";
}

int tiffChannels(const TagReader& tags)
{
    const std::string group = mainImageGroup(tags);
    const int photometric = numberOr(tags, group + ".PhotometricInterpretation", 0);
    if (photometric == kPhotometricColourFilterArray || photometric == kPhotometricPalette) {
        return kColourChannels;
    }
    int channels = numberOr(tags, group + ".SamplesPerPixel", kColourChannels);
    if (const TagValue* extra = tags.find((group + ".ExtraSamples").c_str())) {
        channels -= static_cast<int>(
            std::count_if(extra->numbers.begin(), extra->numbers.end(), [](double kind) {
                return kind == kAssociatedAlpha || kind == kUnassociatedAlpha;
            }));
    }
    return channels;
}

/// A grey JPEG may be a copy of a colour one: what the camera recorded counts,
/// as it does for the size.
int jpegChannels(const TagReader& tags, int components)
{
    if (components != 1) {
        return kColourChannels;
    }
    if (const TagValue* configuration = tags.find("Exif.Photo.ComponentsConfiguration")) {
        const auto used = std::count_if(
            configuration->numbers.begin(), configuration->numbers.end(),
            [](double component) { return component != 0.0; });
        return used >= kColourChannels ? kColourChannels : components;
    }
    // sRGB or Adobe RGB; one, two or three colour area sensors
    const int space = numberOr(tags, "Exif.Photo.ColorSpace", 0);
    const int sensing = numberOr(tags, "Exif.Photo.SensingMethod", 0);
    const bool colour = space == 1 || space == 2 || (sensing >= 2 && sensing <= 4);
    return colour ? kColourChannels : components;
}

bands_t bandsOfChannels(int channels, const TagReader& tags)
{
    if (channels == kColourChannels) {
        return band::makeRGBBands();
    }
    if (channels == 1) {
        return {band_t{QStringLiteral("Gray")}};
    }
    bands_t bands;
    if (channels < 1 || channels > kMaxBands) {
        tags.warn(QStringLiteral("SamplesPerPixel"), QStringLiteral("not plausible"));
        return bands;
    }
    for (int i = 1; i <= channels; ++i) {
        bands.append(band_t{QStringLiteral("Band %1").arg(i)});
    }
    return bands;
}

/// One number (nm) for each band; nothing if the property is missing or does
/// not fit the bands.
std::vector<double> bandNumbers(
    const QByteArray& property, std::size_t bands, const XmpProperties& xmp, const TagReader& tags)
{
    const QStringList texts = xmp.values(property.constData());
    if (texts.isEmpty()) {
        return {};
    }
    std::vector<double> numbers;
    for (const QString& text : texts) {
        bool ok = false;
        const double value = text::fromString<double>(text, &ok);
        numbers.push_back(ok && value > 0.0 && value <= kMaxWavelengthNm ? value : 0.0);
        if (numbers.back() == 0.0) {
            tags.warn(QString::fromUtf8(property), QStringLiteral("not a wavelength"));
        }
    }
    if (numbers.size() != bands) {
        tags.warn(QString::fromUtf8(property), QStringLiteral("not one value for each band"));
        return {};
    }
    return numbers;
}

/// DJI's "450(+/-16)nm". Its cameras also write the 16 as Camera:WavelengthFWHM,
/// which for other makers is the full width; so this text goes first.
void applyBandFrequency(const QString& text, band_t& band)
{
    static const QRegularExpression form(
        QStringLiteral(R"(^\s*(\d+(?:\.\d+)?)\s*\(\s*\+/-\s*(\d+(?:\.\d+)?)\s*\))"));
    const QRegularExpressionMatch match = form.match(text);
    if (match.hasMatch()) {
        band.wavelength = text::fromString<double>(match.captured(1));
        band.width = 2.0 * text::fromString<double>(match.captured(2));
    }
}

/// The prefix of the property that names the bands; empty if none does. The two that most
/// makers write go first.
QByteArray bandPrefix(const XmpProperties& xmp)
{
    const QString name = QStringLiteral("BandName");
    const QStringList found = xmp.namesOf(name);
    for (const char* usual : {"Camera", "drone-dji"}) {
        if (found.contains(QLatin1String(usual) + QLatin1Char(':') + name)) {
            return usual;
        }
    }
    return found.isEmpty() ? QByteArray() : found.front().section(QLatin1Char(':'), 0, 0).toUtf8();
}

/// The property of the prefix; of the usual one if the prefix has none.
QByteArray bandProperty(const QByteArray& prefix, const char* name, const XmpProperties& xmp)
{
    const QByteArray own = prefix + ':' + name;
    return xmp.contains(own.constData()) ? own : QByteArray("Camera:") + name;
}

bands_t namedBands(const QByteArray& prefix, const TagReader& tags, const XmpProperties& xmp)
{
    const QStringList names = prefix.isEmpty()
                                  ? QStringList()
                                  : xmp.values((prefix + QByteArray(":BandName")).constData());
    bands_t bands;
    if (names.size() > kMaxBands) {
        tags.warn(QStringLiteral("BandName"), QStringLiteral("%1 bands").arg(names.size()));
        return bands;
    }
    for (const QString& name : names) {
        bands.append(band_t{cleanedText(name)});
        if (bands[bands.size() - 1].name.isEmpty()) {
            tags.warn(QStringLiteral("BandName"), QStringLiteral("a band without a name"));
            return {};
        }
    }
    return bands;
}

} // namespace

ImageBands findBands(const TagReader& tags, const XmpProperties& xmp, int jpegComponents)
{
    const QByteArray prefix = bandPrefix(xmp);
    bands_t bands = namedBands(prefix, tags, xmp);
    if (bands.empty()) {
        const int channels =
            jpegComponents > 0 ? jpegChannels(tags, jpegComponents) : tiffChannels(tags);
        return {bandsOfChannels(channels, tags), false};
    }
    const auto centres =
        bandNumbers(bandProperty(prefix, "CentralWavelength", xmp), bands.size(), xmp, tags);
    const auto widths =
        bandNumbers(bandProperty(prefix, "WavelengthFWHM", xmp), bands.size(), xmp, tags);
    for (std::size_t i = 0; i < bands.size(); ++i) {
        bands[i].wavelength = centres.empty() ? 0.0 : centres[i];
        bands[i].width = widths.empty() ? 0.0 : widths[i];
    }
    if (bands.size() == 1) {
        applyBandFrequency(xmp.text("drone-dji:BandFreq"), bands[0]);
    }
    return {bands, true};
}

} // namespace lumo::exif
