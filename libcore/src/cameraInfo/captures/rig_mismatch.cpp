// SPDX-License-Identifier: Apache-2.0
#include "cameraInfo/captures/rig_mismatch.h"

#include "cameraInfo/rig/rig_signature.h"
#include "lumo/foundation/npos.h"

#include <algorithm>
#include <functional>
#include <vector>

namespace lumo {
namespace {

/// Which rig cameras each image could be from.
using Fits = std::vector<std::vector<std::size_t>>;

bool fits(const rigdb::Signature& image, const rigdb::Signature& camera)
{
    return rigdb::pairScore(image, camera).score != rigdb::PairScore::kImpossible;
}

Fits findFits(const rigdb::Signatures& signatures)
{
    Fits result(signatures.filter.size());
    for (std::size_t i = 0; i < result.size(); ++i) {
        for (std::size_t j = 0; j < signatures.rig.size(); ++j) {
            if (fits(signatures.filter[i], signatures.rig[j])) {
                result[i].push_back(j);
            }
        }
    }
    return result;
}

/// Gives as many images as possible a camera of their own, by augmenting paths.
/// \returns the image of each rig camera, or npos
std::vector<std::size_t> assignImages(const Fits& fits, std::size_t cameraCount)
{
    std::vector<std::size_t> imageOf(cameraCount, npos);
    std::vector<bool> visited;
    const std::function<bool(std::size_t)> place = [&](std::size_t image) {
        for (const std::size_t camera : fits[image]) {
            if (visited[camera]) {
                continue;
            }
            visited[camera] = true;
            if (imageOf[camera] == npos || place(imageOf[camera])) {
                imageOf[camera] = image;
                return true;
            }
        }
        return false;
    };
    for (std::size_t image = 0; image < fits.size(); ++image) {
        visited.assign(cameraCount, false);
        place(image);
    }
    return imageOf;
}

/// Why an image is from none of the rig's cameras: the first property without
/// which it would fit one.
QString foreignReason(
    const rig_camera_filter_t& image, rigdb::Signature known,
    const std::vector<rigdb::Signature>& cameras, const QString& file)
{
    const auto fitsWithout = [&known, &cameras](std::size_t property) {
        known[property] = rigdb::kAbsent;
        return std::any_of(
            cameras.begin(), cameras.end(), [&known](const auto& c) { return fits(known, c); });
    };
    if (fitsWithout(static_cast<std::size_t>(RigKey::SerialNumber))) {
        return QStringLiteral("serial number %1 of %2 is not that of the rig's camera")
            .arg(image[RigKey::SerialNumber], file);
    }
    if (fitsWithout(rigdb::kBands)) {
        return QStringLiteral("band %1 of %2 is not one of the rig's")
            .arg(image.bands.names().join(QStringLiteral(", ")), file);
    }
    if (fitsWithout(static_cast<std::size_t>(RigKey::DetectionString))) {
        return QStringLiteral("%1 has the file name of another camera").arg(file);
    }
    return QStringLiteral("%1 is of another camera").arg(file);
}

/// Why a rig does not fit though each of its enabled cameras has an image.
QString wholeReason(const rigdb::Signatures& signatures)
{
    if (rigdb::repeatedDetectionString(signatures.rig)) {
        return QStringLiteral("two of its cameras have the same detection string");
    }
    if (rigdb::repeatedDetectionString(signatures.filter)) {
        return QStringLiteral("two images have the same detection string");
    }
    return QStringLiteral("it has %1 cameras, the capture %2 images")
        .arg(signatures.rig.size())
        .arg(signatures.filter.size());
}

/// Why image i is not from camera i.
QString orderReason(const RigModel& rig, std::size_t i, const QString& file)
{
    const QString number = QString::number(i + 1);
    return i < rig.cameraCount() ? QStringLiteral("%1 is image %2, but not of %3")
                                       .arg(file, number, rigCameraText(rig, i))
                                 : QStringLiteral("%1 is image %2, but the rig has %3 cameras")
                                       .arg(file, number, QString::number(rig.cameraCount()));
}

QString noImageOf(const QStringList& cameras)
{
    return QStringLiteral("no image of %1").arg(cameras.join(QStringLiteral(", ")));
}

QString textOf(const RigModel& rig, const QStringList& reasons)
{
    return rig.name + QStringLiteral(": ") + reasons.join(QStringLiteral("; "));
}

/// How images given to the cameras in their order do not fit.
RigMismatch explainOrder(
    const RigModel& rig, const rigdb::Signatures& signatures, const QStringList& files)
{
    const Fits possible = findFits(signatures);
    RigMismatch result;
    QStringList reasons;
    for (std::size_t i = 0; i < possible.size(); ++i) {
        const bool own = std::find(possible[i].begin(), possible[i].end(), i) != possible[i].end();
        result.fitting += possible[i].empty() ? 0U : 1U;
        result.assignment.push_back(own ? i : npos);
        if (!own) {
            reasons.append(orderReason(rig, i, files[static_cast<int>(i)]));
        }
    }
    QStringList missing;
    for (std::size_t j = possible.size(); j < rig.cameraCount(); ++j) {
        if (rig.cameraEnabled(j)) {
            missing.append(rigCameraText(rig, j));
        }
    }
    result.missing = static_cast<std::size_t>(missing.size());
    // The filter may have fewer cameras than the rig. Missing cameras alone are therefore a
    // reason only for a single image, which is never matched.
    if (reasons.isEmpty()) {
        reasons.append(noImageOf(missing));
    }
    result.text = textOf(rig, reasons);
    return result;
}

/// How images do not fit whichever cameras they are given to.
RigMismatch explainAnyOrder(
    const RigModel& rig, const rig_filter_t& filter, const rigdb::Signatures& signatures,
    const QStringList& files)
{
    const Fits possible = findFits(signatures);
    const std::vector<std::size_t> imageOf = assignImages(possible, rig.cameraCount());
    RigMismatch result;
    result.assignment.assign(possible.size(), npos);
    QStringList missing;
    for (std::size_t j = 0; j < imageOf.size(); ++j) {
        if (imageOf[j] != npos) {
            result.assignment[imageOf[j]] = j;
            ++result.fitting;
        } else if (rig.cameraEnabled(j)) {
            missing.append(rigCameraText(rig, j));
        }
    }
    result.missing = static_cast<std::size_t>(missing.size());
    QStringList reasons;
    if (!missing.isEmpty()) {
        reasons.append(noImageOf(missing));
    }
    for (std::size_t i = 0; i < possible.size(); ++i) {
        const QString& file = files[static_cast<int>(i)];
        if (possible[i].empty()) {
            reasons.append(
                foreignReason(filter.cameras[i], signatures.filter[i], signatures.rig, file));
        } else if (result.assignment[i] == npos) {
            const std::size_t camera = possible[i].front();
            const QString& other = files[static_cast<int>(imageOf[camera])];
            reasons.append(QStringLiteral("%1 and %2 are both of %3")
                               .arg(other, file, rigCameraText(rig, camera)));
        }
    }
    if (reasons.isEmpty()) {
        reasons.append(wholeReason(signatures));
    }
    result.text = textOf(rig, reasons);
    return result;
}

} // namespace

QString rigCameraText(const RigModel& rig, std::size_t camera)
{
    const RigModelCameraAttr& attr = rig.attr(camera);
    if (!attr.name.isEmpty()) {
        return attr.name;
    }
    return attr.bands().empty() ? QStringLiteral("camera %1").arg(camera)
                                : attr.bands().names().join(QLatin1Char('/'));
}

RigMismatch explainMismatch(
    const RigModel& rig, const rig_filter_t& filter, const QStringList& fileNames)
{
    const rigdb::Signatures signatures = rigdb::signaturesOf(rig, filter);
    return rig.cameraDetection == RigCameraDetection::ByDetectionString
               ? explainAnyOrder(rig, filter, signatures, fileNames)
               : explainOrder(rig, signatures, fileNames);
}

} // namespace lumo
