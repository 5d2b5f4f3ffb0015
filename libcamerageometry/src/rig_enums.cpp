// SPDX-License-Identifier: Apache-2.0
#include "lumo/camerageometry/rig_enums.h"

#include <array>

namespace lumo::text {
namespace {

template <typename Enum>
struct EnumText
{
    Enum value;
    const char* text;
};

constexpr std::array<EnumText<RigCameraDetection>, 2> kDetections{{
    {RigCameraDetection::ByDetectionString, "detectionString"},
    {RigCameraDetection::ByCameraOrder, "cameraOrder"},
}};

constexpr std::array<EnumText<RigSecondaryProcType>, 5> kProcTypes{{
    {RigSecondaryProcType::Calibrate, "calibrate"},
    {RigSecondaryProcType::IndependCalRel, "independCalRel"},
    {RigSecondaryProcType::OptRels, "optRels"},
    {RigSecondaryProcType::OptRotRel, "optRotRel"},
    {RigSecondaryProcType::OptAllRel, "optAllRel"},
}};

/// What is written first; both are read.
constexpr std::array<EnumText<RigSecondaryProcType>, 2> kOldProcTypes{{
    {RigSecondaryProcType::OptRotRel, "optRotRelStatic"},
    {RigSecondaryProcType::OptRotRel, "optRot"},
}};

/// The text of `value` in a table; null if it has none.
template <typename Table, typename Enum>
const char* textOf(const Table& table, Enum value)
{
    for (const auto& entry : table) {
        if (entry.value == value) {
            return entry.text;
        }
    }
    return nullptr;
}

template <typename Table, typename Enum>
bool find(const Table& table, const QString& text, Enum& value)
{
    for (const auto& entry : table) {
        if (text == QLatin1String(entry.text)) {
            value = entry.value;
            return true;
        }
    }
    return false;
}

void report(bool found, bool* ok)
{
    if (ok != nullptr) {
        *ok = found;
    }
}

} // namespace

QString toString(RigCameraDetection detection)
{
    const char* text = textOf(kDetections, detection);
    return QString::fromLatin1(text != nullptr ? text : "cameraOrder");
}

template <>
RigCameraDetection fromString<RigCameraDetection>(const QString& text, bool* ok)
{
    RigCameraDetection detection = RigCameraDetection::ByCameraOrder;
    report(find(kDetections, text, detection), ok);
    return detection;
}

QString toString(RigSecondaryProcType type)
{
    const char* text = textOf(kProcTypes, type);
    return QString::fromLatin1(text != nullptr ? text : "optRotRel");
}

template <>
RigSecondaryProcType fromString<RigSecondaryProcType>(const QString& text, bool* ok)
{
    RigSecondaryProcType type = RigSecondaryProcType::OptRotRel;
    report(find(kProcTypes, text, type), ok);
    return type;
}

QString toOldString(RigSecondaryProcType type)
{
    const char* text = textOf(kOldProcTypes, type);
    return text != nullptr ? QString::fromLatin1(text) : toString(type);
}

RigSecondaryProcType fromOldString(const QString& text, bool* ok)
{
    RigSecondaryProcType type = RigSecondaryProcType::OptRotRel;
    report(find(kOldProcTypes, text, type) || find(kProcTypes, text, type), ok);
    return type;
}

} // namespace lumo::text
