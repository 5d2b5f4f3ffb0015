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
/// Reading restores what was written, except for the number of digits and for these:
///  - shutter models 1, 2 and 3 are stored as one and read as 2, and 4 is stored
///    as a global shutter; line read-out times up to 0.0001 ms are left out
///  - a symmetric affine part has d = e = 0 and f = c; a p0 fixed at zero is zero
///  - of vignetting models the type (polynomial) and the centre are not stored,
///    nor are pixel values of an unknown type
namespace lumo::io {

/// How many digits the lens has.
enum class XmlOutputType : int {
    Full = 0,
    Short = 1, ///< for people: fewer digits than reading back would need
};

/// Writes the elements of `params` into the element that is open in `writer`. The
/// camera's name is not written. A lens type without a name is left out with all its
/// elements.
LUMO_CORE_EXPORT void writeCameraParams(
    QXmlStreamWriter& writer, const CameraParams& params, XmlOutputType type);

/// Reads the parameters from an element that writeCameraParams wrote into. Replaces
/// all of `params` except the name. A missing element means the default of its
/// field; an unknown or missing lens type means a perspective lens. A vignetting
/// model or pixel value range that `params` cannot store is skipped with a warning.
LUMO_CORE_EXPORT void readCameraParams(const QDomElement& element, CameraParams& params);

/// Writes an element "camera" with all of a camera except its identifier and its
/// keep flags (which values a new model leaves unchanged).
LUMO_CORE_EXPORT void writeCamera(QXmlStreamWriter& writer, const CameraData& camera);

/// Reads a camera from an element that writeCamera wrote.
/// \param version  of the enclosing document; has no effect so far
[[nodiscard]] LUMO_CORE_EXPORT CameraData
readCamera(const QDomElement& element, std::size_t version);

} // namespace lumo::io
