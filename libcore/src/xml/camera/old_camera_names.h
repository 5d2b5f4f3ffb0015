// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

/// The current names of elements and attributes that were renamed in camera databases
/// of version 17 and projects of 2.1. Each function returns other names unchanged.
namespace lumo::xml {

/// The current name of an element in a camera, inside or outside a rig.
[[nodiscard]] QString renamedInCamera(const QString& element);

/// The current name of an element in a rig.
[[nodiscard]] QString renamedInRig(const QString& element);

/// The current name of an attribute of the element "camera".
[[nodiscard]] QString renamedOfCamera(const QString& attribute);

} // namespace lumo::xml
