// SPDX-License-Identifier: Apache-2.0
#include "lumo/camerageometry/rig_enums.h"

#include <gtest/gtest.h>

namespace lumo {
namespace {

struct ProcTypeTexts
{
    RigSecondaryProcType type;
    const char* text;
    const char* oldText;
};

// Files hold these texts.
TEST(RigEnums, ProcessingTypesAreWrittenAndReadInBothForms)
{
    const ProcTypeTexts table[] = {
        {RigSecondaryProcType{0}, "calibrate", "calibrate"},
        {RigSecondaryProcType{1}, "independCalRel", "independCalRel"},
        {RigSecondaryProcType{2}, "optRels", "optRels"},
        {RigSecondaryProcType{3}, "optRotRel", "optRotRelStatic"},
        {RigSecondaryProcType{4}, "optAllRel", "optAllRel"},
    };
    for (const auto& [type, text, oldText] : table) {
        SCOPED_TRACE(text);
        bool ok = false;
        EXPECT_EQ(text::toString(type), text);
        EXPECT_EQ(text::toOldString(type), oldText);
        EXPECT_EQ(text::fromString<RigSecondaryProcType>(text, &ok), type);
        EXPECT_TRUE(ok);
        EXPECT_EQ(text::fromOldString(oldText, &ok), type);
        EXPECT_TRUE(ok);
        EXPECT_EQ(text::fromOldString(text, &ok), type);
        EXPECT_TRUE(ok);
    }
    EXPECT_EQ(text::fromOldString("optRot"), RigSecondaryProcType::OptRotRel);
}

TEST(RigEnums, UnknownProcessingTypesAreTheDefault)
{
    for (const char* text : {"", "Calibrate", "optRot", "optRotRelStatic", "3"}) {
        SCOPED_TRACE(text);
        bool ok = true;
        EXPECT_EQ(
            text::fromString<RigSecondaryProcType>(text, &ok), RigSecondaryProcType::OptRotRel);
        EXPECT_FALSE(ok);
    }
    bool ok = true;
    EXPECT_EQ(text::fromOldString("optrot", &ok), RigSecondaryProcType::OptRotRel);
    EXPECT_FALSE(ok);
    EXPECT_EQ(text::toString(RigSecondaryProcType{9}), "optRotRel");
}

TEST(RigEnums, DetectionIsByCameraOrderUnlessTheTextSaysByString)
{
    bool ok = false;
    EXPECT_EQ(text::toString(RigCameraDetection{0}), "detectionString");
    EXPECT_EQ(text::toString(RigCameraDetection{1}), "cameraOrder");
    EXPECT_EQ(text::toString(RigCameraDetection{2}), "cameraOrder");
    EXPECT_EQ(
        text::fromString<RigCameraDetection>("detectionString", &ok),
        RigCameraDetection::ByDetectionString);
    EXPECT_TRUE(ok);
    EXPECT_EQ(
        text::fromString<RigCameraDetection>("cameraOrder", &ok),
        RigCameraDetection::ByCameraOrder);
    EXPECT_TRUE(ok);
    EXPECT_EQ(text::fromString<RigCameraDetection>("", &ok), RigCameraDetection::ByCameraOrder);
    EXPECT_FALSE(ok);
}

} // namespace
} // namespace lumo
