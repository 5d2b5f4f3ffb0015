// SPDX-License-Identifier: Apache-2.0
// CameraModelFromDB: its band configurations.
#include "cameraInfo/record/band_count.h"
#include "lumo/core/cameraInfo/camera_model_from_db.h"

namespace lumo {
namespace {

/// The first configuration of `count` bands that matches; failing that, the
/// first that has `count` bands and matches once its garbage is removed.
template <typename Matches>
std::size_t findConfig(
    const std::vector<bands_t>& configs, std::size_t count, const Matches& matches)
{
    for (std::size_t i = 0; i < configs.size(); ++i) {
        if (configs[i].size() == count && matches(configs[i])) {
            return i;
        }
    }
    for (std::size_t i = 0; i < configs.size(); ++i) {
        if (configs[i].size() == count || !hasBandCount(configs[i], count)) {
            continue;
        }
        bands_t cleaned = configs[i];
        cleaned.removeGarbage();
        if (matches(cleaned)) {
            return i;
        }
    }
    return npos;
}

} // namespace

bool CameraModelFromDB::addBands(const bands_t& bands)
{
    const std::size_t index = bandConfigIndexByNames(bands);
    if (index == npos || bandConfigs[index].size() != bands.size()) {
        bandConfigs.push_back(bands);
        return true;
    }
    const bool differs = !(bandConfigs[index] == bands);
    bandConfigs[index] = bands;
    return differs;
}

std::size_t CameraModelFromDB::bandConfigIndexByNames(const bands_t& bands) const
{
    return findConfig(bandConfigs, bands.size(), [&bands](const bands_t& config) {
        return config.sameNames(bands);
    });
}

std::size_t CameraModelFromDB::bandConfigIndexByNames(const QStringList& names) const
{
    if (names.isEmpty()) {
        return npos;
    }
    return findConfig(
        bandConfigs, static_cast<std::size_t>(names.size()),
        [&names](const bands_t& config) { return config.sameNames(names); });
}

std::size_t CameraModelFromDB::bandConfigIndexByValues(const bands_t& bands) const
{
    return findConfig(
        bandConfigs, bands.size(), [&bands](const bands_t& config) { return config == bands; });
}

std::size_t CameraModelFromDB::bestBandConfigIndex(const CameraData& camera) const
{
    if (camera.fixedBands) {
        return bandConfigIndexByNames(camera.bands);
    }
    if (bandConfigs.size() > 1) {
        const std::size_t byValues = bandConfigIndexByValues(camera.bands);
        if (byValues != npos) {
            return byValues;
        }
        const std::size_t byNames = bandConfigIndexByNames(camera.bands);
        if (byNames != npos) {
            return byNames;
        }
    }
    for (std::size_t i = 0; i < bandConfigs.size(); ++i) {
        if (hasBandCount(bandConfigs[i], camera.bands.size())) {
            return i;
        }
    }
    return npos;
}

bool CameraModelFromDB::contains(const CameraData& camera, bool strict) const
{
    if (!params.equal(camera.params, strict && camera.keepVignetting)) {
        return false;
    }
    if (strict && camera.fixedBands) {
        const std::size_t index = bestBandConfigIndex(camera);
        return index >= bandConfigs.size() || !camera.bands.needsCopyDataFrom(bandConfigs[index]);
    }
    for (const bands_t& bands : bandConfigs) {
        if (bands == camera.bands) {
            return true;
        }
    }
    return false;
}

} // namespace lumo
