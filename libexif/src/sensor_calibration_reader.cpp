// SPDX-License-Identifier: Apache-2.0
#include "sensor_calibration_reader.h"

#include "lumo/foundation/text.h"

#include <cmath>
#include <optional>

namespace lumo::exif {
namespace {

constexpr const char* kReadout = "Camera:LineReadoutTime";
constexpr const char* kCoefficients = "Camera:VignettingPolynomial2D";
constexpr const char* kPowers = "Camera:VignettingPolynomial2DName";

/// A text "a, b, c", or a list; nothing if one is no number, which is noted.
std::optional<std::vector<double>> numbers(
    const char* property, const XmpProperties& xmp, const TagReader& tags)
{
    constexpr double kMax = 1e9;
    std::vector<double> result;
    const QString list = xmp.values(property).join(QLatin1Char(','));
    for (const QString& part : list.split(QLatin1Char(','))) {
        bool ok = false;
        result.push_back(text::fromString<double>(part.trimmed(), &ok));
        if (!ok || !(std::abs(result.back()) <= kMax)) {
            tags.warn(
                QLatin1String(property),
                QStringLiteral("\"%1\" is no number to be used").arg(part));
            return std::nullopt;
        }
    }
    return result;
}

bool isPower(double number)
{
    constexpr double kMaxPower = 16.0;
    return number >= 0.0 && number <= kMaxPower && number == std::floor(number);
}

} // namespace

double findLineReadoutTime(const XmpProperties& xmp, const TagReader& tags)
{
    constexpr double kNanosecondsPerMillisecond = 1e6;
    constexpr double kLongestNs = 1e6; // a picture of 1,000 lines would take a second
    if (!xmp.contains(kReadout)) {
        return 0.0;
    }
    const auto time = numbers(kReadout, xmp, tags);
    if (!time || time->size() != 1 || !(time->front() >= 0.0 && time->front() <= kLongestNs)) {
        tags.warn(QLatin1String(kReadout), QStringLiteral("no time in nanoseconds"));
        return 0.0;
    }
    return time->front() / kNanosecondsPerMillisecond;
}

std::vector<VignettingTerm> findVignetting(const XmpProperties& xmp, const TagReader& tags)
{
    if (!xmp.contains(kCoefficients)) {
        return {};
    }
    const auto coefficients = numbers(kCoefficients, xmp, tags);
    const auto powers = numbers(kPowers, xmp, tags);
    if (!coefficients || !powers || powers->size() != 2 * coefficients->size()) {
        tags.warn(
            QLatin1String(kCoefficients),
            QStringLiteral("not used: not two powers to each coefficient"));
        return {};
    }
    std::vector<VignettingTerm> terms;
    for (std::size_t i = 0; i < coefficients->size(); ++i) {
        const double x = (*powers)[2 * i];
        const double y = (*powers)[2 * i + 1];
        if (!isPower(x) || !isPower(y)) {
            tags.warn(QLatin1String(kPowers), QStringLiteral("not used: holds other than powers"));
            return {};
        }
        terms.push_back({static_cast<int>(x), static_cast<int>(y), (*coefficients)[i]});
    }
    return terms;
}

} // namespace lumo::exif
