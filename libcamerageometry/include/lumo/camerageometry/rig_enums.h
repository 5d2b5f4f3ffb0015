// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/camerageometry/export.h"
#include "lumo/foundation/text.h"

#include <QString>

namespace lumo {

/// How the cameras of a rig are told apart among the images of a project. The
/// numbers are stored; one that is not listed here behaves as ByCameraOrder.
enum class RigCameraDetection : int {
    ByDetectionString = 0, ///< by folder or file-name prefix, in any order
    ByCameraOrder = 1,     ///< by position: the i-th image is the i-th camera's
};

/// How the poses of a rig's secondary cameras are treated in processing. The
/// numbers are stored and compared; the processing pipeline acts on them.
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

/// As camera databases before version 13 write it: "optRotRelStatic" for
/// OptRotRel, the others as toString.
[[nodiscard]] LUMO_CAMERAGEOMETRY_EXPORT QString toOldString(RigSecondaryProcType type);

/// Reads the texts of toOldString, "optRot" (also OptRotRel) and those of
/// toString; OptRotRel (`ok`, if given, false) for any other text.
[[nodiscard]] LUMO_CAMERAGEOMETRY_EXPORT RigSecondaryProcType
fromOldString(const QString& text, bool* ok = nullptr);

} // namespace text
} // namespace lumo
