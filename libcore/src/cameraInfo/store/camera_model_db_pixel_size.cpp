// SPDX-License-Identifier: Apache-2.0
// CameraModelDb: estimating pixel sizes.
#include "cameraInfo/record/exif_id_parts.h"
#include "lumo/cameradata/exif_info.h"
#include "lumo/core/cameraInfo/camera_model_db.h"
#include "lumo/foundation/text.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <optional>

namespace lumo {
namespace {

struct WantedCamera
{
    QString key;
    std::int64_t width = 0;
    std::int64_t height = 0;
};

/// Nothing if the identifier has no image size.
std::optional<WantedCamera> parseIdentifier(const QString& exifId)
{
    const std::optional<ExifIdParts> parts = exifIdParts(exifId);
    if (!parts || parts->width <= 0 || parts->height <= 0) {
        return std::nullopt;
    }
    return WantedCamera{parts->key, parts->width, parts->height};
}

// Signed 64 bits: differences may be negative, and areas exceed 32 bits.
std::int64_t widthOf(const CameraModelFromDB& model)
{
    return static_cast<std::int64_t>(model.params.imageWidth);
}

std::int64_t heightOf(const CameraModelFromDB& model)
{
    return static_cast<std::int64_t>(model.params.imageHeight);
}

bool hasKey(const CameraModelFromDB& model, const QString& key)
{
    return text::iequals(exifIdKey(model.identifier()), key);
}

std::int64_t sizeDifference(const CameraModelFromDB& model, const WantedCamera& wanted)
{
    return std::abs(widthOf(model) + heightOf(model) - wanted.width - wanted.height);
}

bool sharesASide(const CameraModelFromDB& model, const WantedCamera& wanted)
{
    return widthOf(model) == wanted.width || widthOf(model) == wanted.height ||
           heightOf(model) == wanted.width || heightOf(model) == wanted.height;
}

/// The camera's entry whose size is the wanted one; else the nearest one if they
/// have a side in common; else the largest one.
const CameraModelFromDB* findCandidate(
    const std::multimap<QString, CameraModelFromDB>& cameras, const WantedCamera& wanted)
{
    const CameraModelFromDB* nearest = nullptr;
    const CameraModelFromDB* largest = nullptr;
    std::int64_t smallestDifference = wanted.width + wanted.height;
    std::int64_t largestArea = 0;
    for (const auto& [name, model] : cameras) {
        if (!hasKey(model, wanted.key)) {
            continue;
        }
        if (model.params.equalImageSize(
                static_cast<std::size_t>(wanted.width), static_cast<std::size_t>(wanted.height))) {
            return &model;
        }
        const std::int64_t difference = sizeDifference(model, wanted);
        if (difference < smallestDifference) {
            smallestDifference = difference;
            nearest = &model;
        }
        const std::int64_t area = widthOf(model) * heightOf(model);
        if (area > largestArea) {
            largestArea = area;
            largest = &model;
        }
    }
    return nearest != nullptr && sharesASide(*nearest, wanted) ? nearest : largest;
}

double scaledPixelSize(const CameraParams& stored, const WantedCamera& wanted)
{
    // A portrait image is compared with the stored size turned.
    const bool sameOrientation =
        (stored.imageWidth >= stored.imageHeight) == (wanted.width >= wanted.height);
    const auto width = static_cast<double>(sameOrientation ? wanted.width : wanted.height);
    const auto height = static_cast<double>(sameOrientation ? wanted.height : wanted.width);
    return stored.pixelSize * std::max(
                                  width / static_cast<double>(stored.imageWidth),
                                  height / static_cast<double>(stored.imageHeight));
}

} // namespace

bool CameraModelDb::estimatePixelSize(const ExifID& exifId, double& pixelSize) const
{
    const std::optional<WantedCamera> wanted = parseIdentifier(exifId.first);
    if (!wanted) {
        return false;
    }
    const CameraModelFromDB* shipped = findCandidate(m_internal.cameras, *wanted);
    const CameraModelFromDB* own = findCandidate(m_user.cameras, *wanted);
    if (shipped == nullptr && own == nullptr) {
        return false;
    }
    const bool takeShipped =
        own == nullptr ||
        (shipped != nullptr && sizeDifference(*shipped, *wanted) < sizeDifference(*own, *wanted));
    pixelSize = scaledPixelSize(takeShipped ? shipped->params : own->params, *wanted);
    return true;
}

} // namespace lumo
