// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

/// Names of cameras and rigs that are others since camera databases of version
/// 17 and projects of 2.1.
namespace lumo::xml {

/// An element that stands in a camera, be it of a rig or not.
[[nodiscard]] QString renamedInCamera(const QString& element);

/// An element that stands in a rig.
[[nodiscard]] QString renamedInRig(const QString& element);

/// An attribute of the element "camera".
[[nodiscard]] QString renamedOfCamera(const QString& attribute);

} // namespace lumo::xml
