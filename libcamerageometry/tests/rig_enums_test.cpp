// SPDX-License-Identifier: Apache-2.0
#include "lumo/camerageometry/rig_enums.h"

#include <gtest/gtest.h>

namespace lumo {
namespace {

constexpr int kRefused = -1;

/// What reading a text gives: a number, or kRefused.
template <typename T, typename Read>
int numberOf(const char* text, T otherwise, Read read)
{
    bool ok = false;
    const T value = read(text, &ok);
    EXPECT_TRUE(ok || value == otherwise) << text;
    EXPECT_EQ(read(text, nullptr), value);
    return ok ? static_cast<int>(value) : kRefused;
}

// Files contain these texts and numbers.
TEST(RigEnums, ProcessingTypesAreWrittenAndReadInBothForms)
{
    const struct
    {
        const char* text;
        int number;
        int oldNumber;
    } cases[] = {
        {"calibrate", 0, 0},
        {"independCalRel", 1, 1},
        {"optRels", 2, 2},
        {"optRotRel", 3, 3},
        {"optAllRel", 4, 4},
        {"optRotRelStatic", kRefused, 3},
        {"optRot", kRefused, 3},
        {"optrot", kRefused, kRefused},
        {"Calibrate", kRefused, kRefused},
        {"3", kRefused, kRefused},
        {"", kRefused, kRefused},
    };
    constexpr auto kDefault = RigSecondaryProcType::OptRotRel;
    for (const auto& [text, number, oldNumber] : cases) {
        EXPECT_EQ(numberOf(text, kDefault, text::fromString<RigSecondaryProcType>), number) << text;
        EXPECT_EQ(numberOf(text, kDefault, text::fromOldString), oldNumber) << text;
        if (number != kRefused) {
            const auto type = RigSecondaryProcType(number);
            EXPECT_EQ(text::toString(type), text);
            EXPECT_EQ(text::toOldString(type), type == kDefault ? "optRotRelStatic" : text);
        }
    }
    EXPECT_EQ(text::toString(RigSecondaryProcType{9}), "optRotRel");
}

TEST(RigEnums, DetectionIsByCameraOrderUnlessTheTextIsThatOfDetectionStrings)
{
    const char* const texts[] = {"detectionString", "cameraOrder", "cameraOrder"};
    for (int number = 0; number < 3; ++number) {
        EXPECT_EQ(text::toString(RigCameraDetection(number)), texts[number]);
    }
    const std::pair<const char*, int> cases[] = {
        {"detectionString", 0}, {"cameraOrder", 1}, {"", kRefused}, {"CameraOrder", kRefused}};
    for (const auto& [text, number] : cases) {
        EXPECT_EQ(
            numberOf(text, RigCameraDetection::ByCameraOrder, text::fromString<RigCameraDetection>),
            number)
            << text;
    }
}

} // namespace
} // namespace lumo
