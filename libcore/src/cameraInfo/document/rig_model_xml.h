// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/cameraInfo/rig_model.h"

#include <cstddef>

class QDomElement;
class QXmlStreamWriter;

namespace lumo {

/// Writes an element "rig". What all cameras share (EXIF string, serial number)
/// is written once. Detection strings are left out of a rig whose cameras are not
/// told apart by them. Which cameras are disabled is not stored, nor the source.
void writeRig(QXmlStreamWriter& writer, const RigModel& rig);

/// The rig of an element that writeRig, or an older program, wrote. It need not
/// be valid. A camera without an EXIF string has the rig's, or else
/// rig_camera_filter_t::unknownExifString().
/// \param version  of the document around it
[[nodiscard]] RigModel readRig(const QDomElement& element, std::size_t version);

} // namespace lumo
