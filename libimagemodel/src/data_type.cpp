// SPDX-License-Identifier: Apache-2.0
#include "lumo/imagemodel/data_type.h"

#include <array>

namespace lumo {
namespace {

struct DataTypeEntry
{
    DataType type;
    const char* text;
    int bytes;
};

constexpr std::array<DataTypeEntry, 8> kDataTypes{{
    {DataType::Unknown, "unknown", 0},
    {DataType::UInt8, "uint8", 1},
    {DataType::UInt16, "uint16", 2},
    {DataType::Int16, "int16", 2},
    {DataType::UInt32, "uint32", 4},
    {DataType::Int32, "int32", 4},
    {DataType::Float32, "float32", 4},
    {DataType::Float64, "float64", 8},
}};

const DataTypeEntry& entryOf(DataType type)
{
    for (const DataTypeEntry& entry : kDataTypes) {
        if (entry.type == type) {
            return entry;
        }
    }
    return kDataTypes.front();
}

} // namespace

int bytesPerSample(DataType type)
{
    return entryOf(type).bytes;
}

namespace text {

QString toString(DataType type)
{
    return QString::fromLatin1(entryOf(type).text);
}

template <>
DataType fromString<DataType>(const QString& text, bool* ok)
{
    for (const DataTypeEntry& entry : kDataTypes) {
        if (entry.type != DataType::Unknown && text == QLatin1String(entry.text)) {
            if (ok != nullptr) {
                *ok = true;
            }
            return entry.type;
        }
    }
    if (ok != nullptr) {
        *ok = false;
    }
    return DataType::Unknown;
}

} // namespace text
} // namespace lumo
