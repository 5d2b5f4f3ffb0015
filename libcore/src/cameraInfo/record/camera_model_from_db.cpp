// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/cameraInfo/camera_model_from_db.h"

namespace lumo {

CameraModelFromDB::CameraModelFromDB()
    : bandConfigs{band::makeRGBBands()}
{}

CameraModelFromDB::CameraModelFromDB(const CameraData& camera, const QString& exifIdentifier)
    : serialNumber(camera.serialNumber)
    , params(camera.params)
    , bandConfigs{camera.bands}
    , exifId(exifIdentifier)
{}

CameraData CameraModelFromDB::camera() const
{
    CameraData result;
    result.serialNumber = serialNumber;
    result.params = params;
    result.setBands(defaultBands(), false);
    return result;
}

const QString& CameraModelFromDB::identifier() const
{
    return exifId.isEmpty() ? params.name : exifId;
}

bool CameraModelFromDB::portraitImage() const
{
    return params.imageWidth < params.imageHeight;
}

const bands_t& CameraModelFromDB::defaultBands() const
{
    static const bands_t none; // static, because a reference is returned
    if (bandConfigs.empty()) {
        return none;
    }
    return defaultBandConfig < bandConfigs.size() ? bandConfigs[defaultBandConfig]
                                                  : bandConfigs.front();
}

bool CameraModelFromDB::setBands(const bands_t& bands, std::size_t index)
{
    if (index >= bandConfigs.size()) {
        return false;
    }
    bandConfigs[index] = bands;
    return true;
}

void CameraModelFromDB::setParamsAndReplaceBands(const CameraData& camera)
{
    params = camera.params;
    bandConfigs = {camera.bands};
    defaultBandConfig = 0;
}

void CameraModelFromDB::clearData()
{
    serialNumber.clear();
    params.clearData();
    bandConfigs = {band::makeRGBBands()};
    defaultBandConfig = 0;
}

bool CameraModelFromDB::equal(const CameraModelFromDB& other) const
{
    return exifId == other.exifId && params.equal(other.params, false) &&
           bandConfigs == other.bandConfigs && defaultBandConfig == other.defaultBandConfig;
}

bool CameraModelFromDB::valid(QString& error, std::size_t index) const
{
    return valid(error, false, true, index);
}

bool CameraModelFromDB::valid(std::size_t index, bool checkBands) const
{
    QString unused;
    return valid(unused, checkBands, false, index);
}

bool CameraModelFromDB::valid(
    QString& error, bool checkBands, bool verbose, std::size_t index) const
{
    if (!params.valid(error, verbose)) {
        return false;
    }
    const auto refuse = [&error, verbose](const char* reason) {
        if (verbose) {
            error = QString::fromLatin1(reason);
        }
        return false;
    };
    if (index != npos) {
        return index < bandConfigs.size()
                   ? bandConfigs[index].valid(error, checkBands, verbose, false)
                   : refuse("Invalid index for the band configuration");
    }
    for (const bands_t& bands : bandConfigs) {
        if (!bands.valid(error, checkBands, verbose, false)) {
            return false;
        }
    }
    return defaultBandConfig < bandConfigs.size() || refuse("Invalid default band configuration");
}

} // namespace lumo
