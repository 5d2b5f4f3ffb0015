// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/foundation/text.h"
#include "lumo/imagemodel/export.h"

#include <QString>

namespace lumo {

/// How the sample of one band of a pixel is stored. Files use these numbers' texts.
enum class DataType : int {
    Unknown = 0,
    UInt8 = 1,
    UInt16 = 2,
    Int16 = 3,
    UInt32 = 4,
    Int32 = 5,
    Float32 = 6,
    Float64 = 7,
};

/// Size of one sample in bytes; 0 for Unknown.
[[nodiscard]] LUMO_IMAGEMODEL_EXPORT int bytesPerSample(DataType type);

namespace text {

/// "uint8", "uint16", "int16", "uint32", "int32", "float32", "float64" or "unknown".
[[nodiscard]] LUMO_IMAGEMODEL_EXPORT QString toString(DataType type);

/// The reverse of toString, case-sensitive; Unknown (not ok) for any other text.
template <>
[[nodiscard]] LUMO_IMAGEMODEL_EXPORT DataType fromString<DataType>(const QString& text, bool* ok);

} // namespace text
} // namespace lumo
