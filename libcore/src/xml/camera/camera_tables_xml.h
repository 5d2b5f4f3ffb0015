// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/cameradata/camera_params.h"

#include <map>

class QDomElement;
class QXmlStreamWriter;

namespace lumo::io {

/// One element "pixelValue" a known data type.
void writePixelValues(
    QXmlStreamWriter& writer, const std::map<DataType, PixelValueRange>& pixelValues);

/// An unknown data type is skipped with a warning; of one type the last counts.
[[nodiscard]] std::map<DataType, PixelValueRange> readPixelValues(const QDomElement& element);

/// One element "vignettingPoly" a model, in the order of the f-numbers.
void writeVignetting(QXmlStreamWriter& writer, const std::map<int, VignettingData>& models);

/// A coefficient that is not a number counts as 0, with a warning. Of one
/// f-number the last counts.
[[nodiscard]] std::map<int, VignettingData> readVignetting(const QDomElement& element);

} // namespace lumo::io
