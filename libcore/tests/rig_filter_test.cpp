// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/cameraInfo/rig_filter.h"

#include <gtest/gtest.h>

#include <sstream>

namespace lumo {
namespace {

/// Cameras from "exif serial detection", "-" for empty; a leading "!" disables.
rig_filter_t filterOf(const QStringList& cameras, int detection)
{
    rig_filter_t filter(0, QString(), RigCameraDetection{detection});
    for (QString text : cameras) {
        const bool enabled = !text.startsWith('!');
        const QStringList words = text.remove('!').replace('-', "").split(' ');
        filter.cameras.emplace_back(words[0], words[1], words[2], bands_t());
        filter.cameras.back().enabled = enabled;
    }
    return filter;
}

struct VerifyCase
{
    const char* fact;
    QStringList cameras;
    int detection;
    bool valid;
    bool serialSeen;
    bool unique;
};

TEST(RigFilter, VerifyTellsWhatCamerasCanBeToldApartBy)
{
    const VerifyCase table[] = {
        {"by different strings", {"e - a", "e - b"}, 0, true, false, true},
        {"case tells strings apart", {"e - a", "e s A"}, 0, true, true, true},
        {"by order strings do not count", {"e s a", "e - b"}, 1, true, true, false},
        {"other numbers count as by order", {"e s a", "e - b"}, 2, true, true, false},
        {"a string is missing", {"e - a", "e - -"}, 0, true, false, false},
        {"a string is repeated", {"e - a", "e - b", "e - a"}, 0, true, false, false},
        {"disabled cameras do not count", {"e - a", "!- s a", "e - b"}, 0, true, false, true},
        {"an EXIF string is missing", {"e - a", "- s a", "e - a"}, 0, false, true, true},
        {"one camera", {"e s a"}, 0, false, false, false},
        {"one enabled camera", {"e s a", "!e s b"}, 0, false, false, false},
    };
    for (const VerifyCase& row : table) {
        SCOPED_TRACE(row.fact);
        const rig_filter_t filter = filterOf(row.cameras, row.detection);
        bool serialSeen = !row.serialSeen;
        bool unique = !row.unique;
        EXPECT_EQ(filter.verify(serialSeen, unique), row.valid);
        EXPECT_EQ(serialSeen, row.serialSeen);
        EXPECT_EQ(unique, row.unique);
        EXPECT_EQ(filter.uniqueDirOrPrefix(), row.valid && row.unique);
    }
}

TEST(RigFilter, AvailabilityNeedsTwoEnabledCameras)
{
    EXPECT_TRUE(filterOf({"- a -", "!- - -", "- b -"}, 0).serialNumberAvail());
    EXPECT_FALSE(filterOf({"- a -", "- - -", "- b -"}, 0).serialNumberAvail());
    EXPECT_FALSE(filterOf({"- a -", "!- b -"}, 0).serialNumberAvail());

    rig_filter_t filter = filterOf({"- - -", "- - -", "- - -"}, 0);
    EXPECT_FALSE(filter.bandsAvail());
    filter.cameras[0].bands = band::makeRGBBands();
    EXPECT_TRUE(filter.bandsAvail());
    filter.cameras[1].enabled = false;
    EXPECT_TRUE(filter.bandsAvail());
    filter.cameras[0].enabled = false;
    EXPECT_FALSE(filter.bandsAvail());
    EXPECT_TRUE(filter.disabledCameraFilters());
}

TEST(RigFilter, IsEmptyWithoutNameAndKnownCamera)
{
    rig_filter_t filter = filterOf({"- - -", "!e s d"}, 0);
    EXPECT_TRUE(filter.empty());
    filter.name = "rig";
    EXPECT_FALSE(filter.empty());
    filter.name.clear();
    filter.cameras[0][RigKey::DetectionString] = "d";
    EXPECT_FALSE(filter.empty());
}

TEST(RigFilter, ClearExceptLeavesOneKeyOfEachCamera)
{
    rig_filter_t filter = filterOf({"e1 s1 d1", "!e2 s2 d2"}, 0);
    filter.name = "rig";
    filter.cameras[0].bands = band::makeRGBBands();
    filter.clearExcept(RigKey::SerialNumber);
    EXPECT_EQ(filter, filterOf({"- s1 -", "!- s2 -"}, 0));
}

TEST(RigFilter, TextListsWhatIsKnown)
{
    rig_filter_t filter = filterOf({"Cam_X A123 -", "!- - dir"}, 0);
    filter.name = "Duo";
    filter.cameras[1].bands = band::makeRGBBands();
    std::ostringstream text;
    text << filter;
    EXPECT_EQ(
        text.str(), "filter for rig name=Duo, detection=detectionString, 2 cameras=["
                    " [{0:A123,2:Cam_X,}] [disabled, {Red,Green,Blue}, {1:dir,}] ]");
}

} // namespace
} // namespace lumo
