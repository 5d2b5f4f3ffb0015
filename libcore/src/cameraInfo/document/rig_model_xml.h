// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/cameraInfo/rig_model.h"

#include <cstddef>

class QDomElement;
class QXmlStreamWriter;

namespace lumo {

/// Writes an element "rig". An EXIF string or serial number that all cameras share is
/// written once. Detection strings are written only for rigs whose cameras are
/// distinguished by them. The source, and which cameras are disabled, are not stored.
void writeRig(QXmlStreamWriter& writer, const RigModel& rig);

/// Reads a rig from an element that writeRig, or an older program, wrote. The rig need
/// not be valid. A camera without an EXIF string gets the rig's, or else
/// rig_camera_filter_t::unknownExifString().
/// \param version  format version of the enclosing document
[[nodiscard]] RigModel readRig(const QDomElement& element, std::size_t version);

} // namespace lumo
