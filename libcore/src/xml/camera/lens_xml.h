// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/xml/camera_params_xml.h"

namespace lumo::io {

/// Writes the element "lensType" and the elements of that lens. Writes nothing for an
/// unknown type.
void writeLens(QXmlStreamWriter& writer, const CameraParams& params, XmlOutputType type);

/// Reads lens type and lens. A missing type, or an unknown one (with a warning), counts
/// as a perspective lens.
void readLens(const QDomElement& element, CameraParams& params);

} // namespace lumo::io
