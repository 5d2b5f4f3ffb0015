// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/cameraInfo/optimized_parameters.h"

#include "lumo/camerageometry/fisheye_camera.h"
#include "lumo/camerageometry/perspective_camera.h"
#include "lumo/core/cameraInfo/camera_model_from_db.h"

#include <algorithm>
#include <array>
#include <stdexcept>

namespace lumo {
namespace {

void loadPerspective(const PerspectiveCamera& camera, CameraParams& params)
{
    params.lensType = LensType::Perspective;
    const std::array<double, 3>& radial = camera.distortion().radial();
    const std::array<double, 2>& tangential = camera.distortion().tangential();
    constexpr int kHighestPower = 6; // of r, with K3
    const bool distorts =
        radial != std::array<double, 3>{} || tangential != std::array<double, 2>{};
    params.perspective.distortion = distorts ? kHighestPower : 0;
    params.perspective.radialK1 = radial[0];
    params.perspective.radialK2 = radial[1];
    params.perspective.radialK3 = radial[2];
    params.perspective.tangentialT1 = tangential[0];
    params.perspective.tangentialT2 = tangential[1];
}

void loadFisheye(const FisheyeCamera& camera, CameraParams& params)
{
    const std::vector<double>& coefficients = camera.polynomial();
    FisheyeParams& lens = params.fisheye;
    if (coefficients.size() > lens.poly.size()) {
        throw std::invalid_argument("loadOptimizedParameters: the fisheye polynomial is too long");
    }
    params.lensType = LensType::Fisheye;
    lens.npoly = static_cast<int>(coefficients.size()) - 1;
    lens.poly.fill(0.0);
    std::copy(coefficients.begin(), coefficients.end(), lens.poly.begin());
    lens.setP0zero(false);
    const FisheyeCamera::Affine& affine = camera.affine();
    lens.setAffine(false, affine.c, affine.d, affine.e, affine.f);
}

} // namespace

void loadOptimizedParameters(const AbstractCamera& optimised, CameraModelFromDB& model)
{
    CameraParams& params = model.params;
    if (const auto* fisheye = dynamic_cast<const FisheyeCamera*>(&optimised)) {
        loadFisheye(*fisheye, params);
    } else if (const auto* perspective = dynamic_cast<const PerspectiveCamera*>(&optimised)) {
        loadPerspective(*perspective, params);
    } else {
        throw std::invalid_argument("loadOptimizedParameters: unknown lens model");
    }
    params.setImageSize(optimised.imageWidth(), optimised.imageHeight());
    params.setFocalLengthPixel(optimised.focalLength());
    params.setPrincipalPointPixel({optimised.principalPoint().x(), optimised.principalPoint().y()});
}

} // namespace lumo
