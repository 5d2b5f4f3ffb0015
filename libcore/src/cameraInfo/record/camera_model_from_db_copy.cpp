// SPDX-License-Identifier: Apache-2.0
// copyCameraModelToParams(): giving a camera the parameters of a CameraModelFromDB.
#include "lumo/core/cameraInfo/camera_model_from_db.h"

namespace lumo {
namespace {

/// Sets the model's bands, merged into what the user has fixed.
void copyBands(const CameraModelFromDB& model, std::size_t bandIndex, CameraData& camera)
{
    const bands_t previous = camera.bands;
    const bool fixed = camera.fixedBands;
    bands_t chosen;
    if (bandIndex < model.bandConfigs.size()) {
        chosen = model.bandConfigs[bandIndex];
        if (chosen.size() != previous.size()) {
            chosen.removeGarbage();
        }
        camera.setBands(chosen, false);
    }
    if (fixed) {
        bands_t merged = previous;
        merged.copyData(chosen);
        if (!(merged == previous) || !(merged == chosen)) {
            camera.params.source = CameraSource::Custom;
        }
        camera.setBands(merged, true);
    }
}

bool keepVignetting(const CameraParams& previous, CameraData& camera)
{
    camera.keepVignetting = camera.keepVignetting && !previous.vignetting.empty();
    if (camera.keepVignetting) {
        camera.params.setVignettingModels(previous.vignetting);
    }
    return camera.keepVignetting;
}

bool keepInternals(const CameraParams& previous, CameraData& camera)
{
    if (!camera.keepOptimisedInternals) {
        return false;
    }
    CameraParams& params = camera.params;
    params.lensType = previous.lensType;
    if (previous.lensType == LensType::Perspective) {
        params.perspective.radialK1 = previous.perspective.radialK1;
        params.perspective.radialK2 = previous.perspective.radialK2;
        params.perspective.radialK3 = previous.perspective.radialK3;
        params.perspective.tangentialT1 = previous.perspective.tangentialT1;
        params.perspective.tangentialT2 = previous.perspective.tangentialT2;
    } else if (previous.lensType == LensType::Fisheye) {
        params.fisheye = previous.fisheye;
    }
    // The pixels are what was optimised; the new model may have another pixel size.
    params.setPrincipalPointPixel(previous.principalPointPixel());
    return true;
}

bool keepShutter(const CameraParams& previous, CameraData& camera)
{
    if (camera.keepShutter) {
        camera.params.lineReadoutTime = previous.lineReadoutTime;
    }
    return camera.keepShutter;
}

} // namespace

void copyCameraModelToParams(
    const CameraModelFromDB& model, CameraSource source, CameraData& camera, std::size_t bandIndex)
{
    if (bandIndex >= model.bandConfigs.size()) {
        bandIndex = model.bestBandConfigIndex(camera);
    }
    const CameraParams previous = camera.params;
    camera.params = model.params;
    camera.serialNumber = model.serialNumber;
    camera.params.source = source;
    copyBands(model, bandIndex, camera);

    const bool vignettingKept = keepVignetting(previous, camera);
    const bool internalsKept = keepInternals(previous, camera);
    const bool shutterKept = keepShutter(previous, camera);
    if ((vignettingKept || internalsKept || shutterKept) && !camera.params.equal(previous, false)) {
        camera.params.source = CameraSource::Custom;
    }
}

} // namespace lumo
