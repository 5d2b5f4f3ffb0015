// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/cameradata/camera_params.h"

#include <map>

class QDomElement;
class QXmlStreamWriter;

namespace lumo::io {

/// Writes one element "pixelValue" for each known data type.
void writePixelValues(
    QXmlStreamWriter& writer, const std::map<DataType, PixelValueRange>& pixelValues);

/// Reads the elements "pixelValue". Skips an unknown data type with a warning. Of
/// several elements of one type the last counts.
[[nodiscard]] std::map<DataType, PixelValueRange> readPixelValues(const QDomElement& element);

/// Writes one element "vignettingPoly" for each model, in the order of the f-numbers.
void writeVignetting(QXmlStreamWriter& writer, const std::map<int, VignettingData>& models);

/// Reads the elements "vignettingPoly". A coefficient that is not a number counts as 0,
/// with a warning. Of several elements of one f-number the last counts.
[[nodiscard]] std::map<int, VignettingData> readVignetting(const QDomElement& element);

} // namespace lumo::io
