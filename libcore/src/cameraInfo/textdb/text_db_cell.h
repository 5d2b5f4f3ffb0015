// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/cameradata/camera_params.h"
#include "lumo/camerageometry/rig_enums.h"
#include "lumo/foundation/text.h"
#include "lumo/imagemodel/data_type.h"

#include <QLocale>
#include <QString>

#include <cstddef>
#include <type_traits>

/// Values and the text of their cells, C locale.
namespace lumo::cameradb::textdb {

/// What a cell of this type must hold, for messages.
template <typename T>
inline constexpr const char* kCellContent = "text";
template <>
inline constexpr const char* kCellContent<double> = "a number";
template <>
inline constexpr const char* kCellContent<int> = "a whole number";
template <>
inline constexpr const char* kCellContent<std::size_t> = "a whole number of 0 or more";
template <>
inline constexpr const char* kCellContent<bool> = "true or false";
template <>
inline constexpr const char* kCellContent<LensType> = "perspective, fisheye or spherical";
template <>
inline constexpr const char* kCellContent<CameraSource> = "internal, edited, user, exif or custom";
template <>
inline constexpr const char* kCellContent<DataType> =
    "uint8, uint16, int16, uint32, int32, float32 or float64";
template <>
inline constexpr const char* kCellContent<RigCameraDetection> = "detectionString or cameraOrder";
template <>
inline constexpr const char* kCellContent<RigSecondaryProcType> =
    "calibrate, independCalRel, optRels, optRotRel or optAllRel";

template <typename T>
[[nodiscard]] bool fromCell(const QString& cell, T& value)
{
    bool ok = true;
    if constexpr (std::is_same_v<T, QString>) {
        value = cell;
    } else {
        value = text::fromString<T>(cell, &ok);
    }
    return ok;
}

/// Doubles get as many digits as reading back exactly takes.
template <typename T>
[[nodiscard]] QString toCell(const T& value)
{
    if constexpr (std::is_same_v<T, QString>) {
        return value;
    } else if constexpr (std::is_same_v<T, double>) {
        return QString::number(value, 'g', QLocale::FloatingPointShortest);
    } else if constexpr (std::is_same_v<T, bool>) {
        return value ? QStringLiteral("true") : QStringLiteral("false");
    } else if constexpr (std::is_enum_v<T>) {
        return text::toString(value);
    } else {
        return QString::number(value);
    }
}

} // namespace lumo::cameradb::textdb
