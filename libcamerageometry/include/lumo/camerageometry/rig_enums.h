// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/camerageometry/export.h"
#include "lumo/foundation/text.h"

#include <QString>

namespace lumo {

/// How an image of a project is assigned to a camera of a rig. Files use these numbers;
/// any other number behaves as ByCameraOrder.
enum class RigCameraDetection : int {
    ByDetectionString = 0, ///< by folder or file-name prefix, in any order
    ByCameraOrder = 1,     ///< by position: the i-th image is the i-th camera's
};

/// How processing treats the poses of a rig's secondary cameras. Files use these numbers,
/// and conditions compare them. This library only stores the choice.
enum class RigSecondaryProcType : int {
    Calibrate = 0,
    IndependCalRel = 1,
    OptRels = 2,
    OptRotRel = 3, ///< the default
    OptAllRel = 4,
};

namespace text {

/// "detectionString" or "cameraOrder".
[[nodiscard]] LUMO_CAMERAGEOMETRY_EXPORT QString toString(RigCameraDetection detection);

/// The reverse of toString, case-sensitive; ByCameraOrder (not ok) for any
/// other text.
template <>
[[nodiscard]] LUMO_CAMERAGEOMETRY_EXPORT RigCameraDetection
fromString<RigCameraDetection>(const QString& text, bool* ok);

/// "calibrate", "independCalRel", "optRels", "optRotRel" or "optAllRel"; the
/// default's text for a number that is none of them.
[[nodiscard]] LUMO_CAMERAGEOMETRY_EXPORT QString toString(RigSecondaryProcType type);

/// The reverse of toString, case-sensitive; OptRotRel (not ok) for any other
/// text.
template <>
[[nodiscard]] LUMO_CAMERAGEOMETRY_EXPORT RigSecondaryProcType
fromString<RigSecondaryProcType>(const QString& text, bool* ok);

/// The text in camera databases before version 13: "optRotRelStatic" for OptRotRel, else
/// as toString.
[[nodiscard]] LUMO_CAMERAGEOMETRY_EXPORT QString toOldString(RigSecondaryProcType type);

/// Reads the texts of toOldString, "optRot" (also OptRotRel) and those of
/// toString; OptRotRel (`ok`, if given, false) for any other text.
[[nodiscard]] LUMO_CAMERAGEOMETRY_EXPORT RigSecondaryProcType
fromOldString(const QString& text, bool* ok = nullptr);

} // namespace text
} // namespace lumo
