// SPDX-License-Identifier: Apache-2.0
#include "cameraInfo/identify/known_modes.h"

#include "cameraInfo/record/exif_id_parts.h"
#include "lumo/core/cameraInfo/camera_model_db.h"

#include <algorithm>
#include <set>

namespace lumo {
namespace {

QString folded(const QString& key)
{
    return key.toCaseFolded();
}

void addModes(
    const std::multimap<QString, CameraModelFromDB>& cameras, const std::set<QString>& hidden,
    std::map<QString, std::vector<KnownMode>>& modes)
{
    const QString* last = nullptr;
    for (const auto& [name, model] : cameras) {
        // Entries of several bodies are neighbours in the table.
        if ((last != nullptr && *last == name) || hidden.contains(name)) {
            continue;
        }
        last = &name;
        const std::optional<ExifIdParts> parts = exifIdParts(model.identifier());
        const CameraParams& params = model.params;
        if (!parts || params.imageWidth == 0 || params.imageHeight == 0) {
            continue;
        }
        const PictureSize size{
            std::max(params.imageWidth, params.imageHeight),
            std::min(params.imageWidth, params.imageHeight)};
        modes[folded(parts->key)].push_back(
            {name, model.identifier(), parts->focalLengthMm, size, params.pixelSize});
    }
}

} // namespace

KnownModes::KnownModes(const CameraModelDb& database)
{
    std::set<QString> own;
    for (const auto& camera : database.userData().cameras) {
        own.insert(camera.first);
    }
    addModes(database.userData().cameras, {}, m_modes);
    addModes(database.internalData().cameras, own, m_modes);
}

std::vector<KnownMode> KnownModes::of(const ExifID& identifiers) const
{
    std::set<QString> keys;
    for (const QString& identifier : {identifiers.first, identifiers.second}) {
        keys.insert(folded(exifIdKey(identifier)));
    }
    std::vector<KnownMode> result;
    for (const QString& key : keys) {
        const auto found = m_modes.find(key);
        if (found != m_modes.end()) {
            result.insert(result.end(), found->second.begin(), found->second.end());
        }
    }
    return result;
}

} // namespace lumo
