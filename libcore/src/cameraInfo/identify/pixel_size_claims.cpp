// SPDX-License-Identifier: Apache-2.0
#include "cameraInfo/identify/pixel_size_claims.h"

#include <algorithm>

namespace lumo {
namespace {

/// Pixel sizes of the database are published or measured numbers.
constexpr double kDatabaseSigma = 0.01;
constexpr double kContradiction = 3.0;

PixelSizeOrigin originOf(exif::PixelSizeSource source)
{
    switch (source) {
    case exif::PixelSizeSource::FocalPlane:
        return PixelSizeOrigin::FocalPlane;
    case exif::PixelSizeSource::SensorTable:
        return PixelSizeOrigin::SensorTable;
    case exif::PixelSizeSource::Focal35mm:
        return PixelSizeOrigin::Focal35mm;
    case exif::PixelSizeSource::Calibration:
        return PixelSizeOrigin::Calibration;
    case exif::PixelSizeSource::FieldOfView:
        return PixelSizeOrigin::FieldOfView;
    case exif::PixelSizeSource::None:
        break;
    }
    return PixelSizeOrigin::None;
}

PixelSizeClaim claimOf(const exif::PixelSizeEvidence& evidence)
{
    PixelSizeClaim claim;
    claim.from = originOf(evidence.source);
    claim.pixelSizeMm = evidence.pixelSizeMm;
    claim.sigmaMm = evidence.sigma * evidence.pixelSizeMm;
    claim.formula = evidence.formula;
    claim.reason = evidence.reason;
    claim.doubt = evidence.doubt;
    return claim;
}

PixelSizeClaim claimOf(const KnownPixelSize& known)
{
    PixelSizeClaim claim;
    claim.from = known.from;
    claim.pixelSizeMm = known.pixelSizeMm;
    claim.sigmaMm = kDatabaseSigma * known.pixelSizeMm;
    claim.formula = known.model;
    claim.reason = QStringLiteral("published or measured");
    claim.verdict = ClaimVerdict::Taken;
    return claim;
}

QString size(double mm)
{
    constexpr double kMicrometres = 1000.0;
    return QString::number(mm * kMicrometres, 'g', 4);
}

/// Without a pixel size, evidence that may be right is too doubtful.
void refuseAll(std::vector<PixelSizeClaim>& claims)
{
    for (PixelSizeClaim& claim : claims) {
        if (claim.doubt.isEmpty()) {
            claim.doubt = QStringLiteral("alone, and likely of another camera of this name");
        }
    }
}

} // namespace

JudgedPixelSize judgePixelSize(
    const KnownPixelSize& known, const std::vector<exif::PixelSizeEvidence>& evidence)
{
    JudgedPixelSize result;
    exif::CombinedPixelSize combined;
    if (known.pixelSizeMm > 0.0) {
        combined = {known.pixelSizeMm, kDatabaseSigma, kDatabaseSigma, {}};
        result.from = known.from;
        result.claims.push_back(claimOf(known));
    } else {
        combined = exif::combinePixelSizes(evidence);
        result.from = originOf(combined.from);
    }
    result.pixelSizeMm = combined.pixelSizeMm;
    result.sigma = combined.sigma;
    for (const exif::PixelSizeEvidence& each : evidence) {
        PixelSizeClaim claim = claimOf(each);
        if (combined.pixelSizeMm > 0.0 && each.wrongShare < 1.0) {
            claim.sigmasOff =
                exif::sigmasApart(each, combined.pixelSizeMm, combined.sigmaWithoutDoubt);
        }
        if (claim.doubt.isEmpty()) {
            claim.verdict = claim.from == result.from           ? ClaimVerdict::Taken
                            : claim.sigmasOff <= kContradiction ? ClaimVerdict::Agrees
                                                                : ClaimVerdict::Disagrees;
        }
        result.claims.push_back(claim);
    }
    if (result.from == PixelSizeOrigin::None) {
        refuseAll(result.claims);
    }
    return result;
}

QStringList contradictions(const JudgedPixelSize& judged)
{
    QStringList result;
    for (const PixelSizeClaim& claim : judged.claims) {
        if (claim.sigmasOff <= kContradiction) {
            continue;
        }
        QString text =
            QStringLiteral("the pixel size is %1 um by %2, but %3 um by %4, %5 sigma off")
                .arg(
                    size(judged.pixelSizeMm), toString(judged.from), size(claim.pixelSizeMm),
                    toString(claim.from))
                .arg(claim.sigmasOff, 0, 'f', 1);
        if (!claim.doubt.isEmpty()) {
            text += QStringLiteral(" (refused: %1)").arg(claim.doubt);
        }
        result.append(text);
    }
    return result;
}

} // namespace lumo
