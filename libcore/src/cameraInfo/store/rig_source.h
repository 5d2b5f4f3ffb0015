// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/cameradata/camera_source.h"

namespace lumo {

/// The source of a user's rig: whether an internal one has its name.
[[nodiscard]] inline CameraSource userRigSource(bool overridesInternal)
{
    return overridesInternal ? CameraSource::EditedDatabase : CameraSource::UserDatabase;
}

} // namespace lumo
