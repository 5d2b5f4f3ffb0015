// SPDX-License-Identifier: Apache-2.0
#include "cameraInfo/rig_mismatch.h"

#include "cameraInfo/rig_signature.h"
#include "lumo/core/cameraInfo/camera_model_from_db.h"
#include "lumo/foundation/text.h"

#include <algorithm>
#include <functional>
#include <vector>

namespace lumo {
namespace {

/// Which rig cameras each image could be from.
using Fits = std::vector<std::vector<std::size_t>>;

Fits findFits(const RigModel& rig, const rig_filter_t& filter)
{
    rigdb::SignatureMaker signatureOf;
    std::vector<rigdb::Signature> images;
    for (const rig_camera_filter_t& camera : filter.cameras) {
        images.push_back(signatureOf(camera));
    }
    Fits fits(images.size());
    for (std::size_t j = 0; j < rig.cameraCount(); ++j) {
        const rigdb::Signature camera = signatureOf(rig.attr(j));
        for (std::size_t i = 0; i < images.size(); ++i) {
            if (rigdb::pairScore(images[i], camera).score != rigdb::PairScore::kImpossible) {
                fits[i].push_back(j);
            }
        }
    }
    return fits;
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

/// Why an image is from none of the rig's cameras.
QString foreignReason(const RigModel& rig, const rig_camera_filter_t& image, const QString& file)
{
    bool knownExif = false;
    bool knownBands = image.bands.empty();
    bool knownSerial = image[RigKey::SerialNumber].isEmpty();
    for (std::size_t j = 0; j < rig.cameraCount(); ++j) {
        const RigModelCameraAttr& camera = rig.attr(j);
        if (!text::iequals(camera[RigKey::ExifString], image[RigKey::ExifString])) {
            continue;
        }
        const QString& serial = camera[RigKey::SerialNumber];
        knownExif = true;
        knownBands = knownBands || camera.bands().empty() || camera.bands().sameNames(image.bands);
        knownSerial =
            knownSerial || serial.isEmpty() || text::iequals(serial, image[RigKey::SerialNumber]);
    }
    if (!knownExif) {
        return QStringLiteral("%1 is of another camera").arg(file);
    }
    if (!knownBands) {
        return QStringLiteral("band %1 of %2 is not one of the rig's")
            .arg(image.bands.names().join(QStringLiteral(", ")), file);
    }
    if (!knownSerial) {
        return QStringLiteral("serial number %1 of %2 is not one of the rig's")
            .arg(image[RigKey::SerialNumber], file);
    }
    return QStringLiteral("%1 fits none of the rig's cameras").arg(file);
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
    const Fits fits = findFits(rig, filter);
    const std::vector<std::size_t> imageOf = assignImages(fits, rig.cameraCount());
    RigMismatch result;
    result.assignment.assign(fits.size(), npos);
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
        reasons.append(QStringLiteral("no image of %1").arg(missing.join(QStringLiteral(", "))));
    }
    for (std::size_t i = 0; i < fits.size(); ++i) {
        const QString& file = fileNames[static_cast<int>(i)];
        if (fits[i].empty()) {
            reasons.append(foreignReason(rig, filter.cameras[i], file));
        } else if (result.assignment[i] == npos) {
            const std::size_t camera = fits[i].front();
            const QString& other = fileNames[static_cast<int>(imageOf[camera])];
            reasons.append(QStringLiteral("%1 and %2 are both of %3")
                               .arg(other, file, rigCameraText(rig, camera)));
        }
    }
    result.text = rig.name + QStringLiteral(": ") + reasons.join(QStringLiteral("; "));
    return result;
}

} // namespace lumo
