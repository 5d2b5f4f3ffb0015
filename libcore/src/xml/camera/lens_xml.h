// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/xml/camera_params_xml.h"

namespace lumo::io {

/// The element "lensType" and those of that lens; nothing for an unknown type.
void writeLens(QXmlStreamWriter& writer, const CameraParams& params, XmlOutputType type);

/// Sets lens type and lens. A type that is missing or unknown (with a warning) is
/// a perspective lens, with the elements of one if they are there.
void readLens(const QDomElement& element, CameraParams& params);

} // namespace lumo::io
