// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/cameradata/camera_data.h"
#include "lumo/core/export.h"

#include <cstddef>

class QDomElement;
class QXmlStreamWriter;

/// One camera's parameters as XML, the same wherever a camera is stored. Lengths
/// are in millimetres, affine fisheye terms in pixels.
///
/// What comes back is what was written, but for the digits, and for these:
///  - shutter models 1, 2 and 3 are stored as one and read as 2, and 4 is stored
///    as a global shutter; line read-out times up to 0.0001 ms are left out
///  - a symmetric affine part has d = e = 0 and f = c; a p0 held at zero is zero
///  - of vignetting models the type (polynomial) and the centre are not stored,
///    nor are pixel values of an unknown type
namespace lumo::io {

/// How many digits the lens has.
enum class XmlOutputType : int {
    Full = 0,
    Short = 1, ///< for people: fewer digits than reading back would need
};

/// Writes the elements of `params` into the element that is open. The name is
/// none of them. A lens type without a name is left out with all its elements.
LUMO_CORE_EXPORT void writeCameraParams(
    QXmlStreamWriter& writer, const CameraParams& params, XmlOutputType type);

/// Takes the parameters from an element that writeCameraParams wrote into. What
/// is missing is the default of its field; an unknown or missing lens type is a
/// perspective lens. All but `params.name` is replaced. A vignetting model or a
/// range of pixel values that has no place is skipped with a warning.
LUMO_CORE_EXPORT void readCameraParams(const QDomElement& element, CameraParams& params);

/// Writes an element "camera" with all of a camera but its identifier and what a
/// new model would leave alone (the keep flags).
LUMO_CORE_EXPORT void writeCamera(QXmlStreamWriter& writer, const CameraData& camera);

/// The camera of an element that writeCamera wrote.
/// \param version  of the document around it; all so far are read alike
[[nodiscard]] LUMO_CORE_EXPORT CameraData
readCamera(const QDomElement& element, std::size_t version);

} // namespace lumo::io
