// SPDX-License-Identifier: Apache-2.0
#include "cameraInfo/rig_mismatch.h"

#include "cameraInfo/rig_signature.h"
#include "lumo/core/cameraInfo/camera_model_from_db.h"

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

bool fitsAny(const RigModel& rig, const rig_camera_filter_t& image)
{
    rig_filter_t filter(1, QString(), rig.cameraDetection);
    filter.cameras[0] = image;
    return !findFits(rig, filter)[0].empty();
}

/// Why an image is from none of the rig's cameras: the first property without
/// which it would fit one.
QString foreignReason(const RigModel& rig, const rig_camera_filter_t& image, const QString& file)
{
    rig_camera_filter_t known = image;
    known[RigKey::SerialNumber].clear();
    if (fitsAny(rig, known)) {
        return QStringLiteral("serial number %1 of %2 is not that of the rig's camera")
            .arg(image[RigKey::SerialNumber], file);
    }
    known.bands.clear();
    if (fitsAny(rig, known)) {
        return QStringLiteral("band %1 of %2 is not one of the rig's")
            .arg(image.bands.names().join(QStringLiteral(", ")), file);
    }
    known[RigKey::DetectionString].clear();
    if (fitsAny(rig, known)) {
        return QStringLiteral("%1 has the file name of another camera").arg(file);
    }
    return QStringLiteral("%1 is of another camera").arg(file);
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
