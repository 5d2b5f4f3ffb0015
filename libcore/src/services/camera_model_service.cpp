// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/services/camera_model_service.h"

namespace lumo {

CameraModelService::CameraModelService() = default;
CameraModelService::~CameraModelService() = default;

} // namespace lumo
