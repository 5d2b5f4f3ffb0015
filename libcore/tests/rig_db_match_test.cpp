// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/cameraInfo/rig_db_match.h"
#include "rig_exhaustive_search.h"
#include "test_seed.h"

#include <gtest/gtest.h>

#include <numeric>
#include <random>

namespace lumo {
namespace rigdb {

void PrintTo(const RigDBMatch& match, std::ostream* out)
{
    *out << "score " << match.score << (match.serialMatched ? ", serial" : "") << ", "
         << testing::PrintToString(match.assignment);
}

} // namespace rigdb

namespace {

using rigdb::matchRigDB;
using rigdb::RigDBMatch;

constexpr auto kByString = RigCameraDetection::ByDetectionString;
constexpr auto kByOrder = RigCameraDetection::ByCameraOrder;

/// Cameras of few different properties, so that many fit and many are alike.
class RandomRigs
{
public:
    explicit RandomRigs(std::uint32_t seed)
        : m_rng(seed)
    {}

    int below(int limit) { return std::uniform_int_distribution(0, limit - 1)(m_rng); }

    /// \param knownPercent  how often each property is known
    rig_filter_t filter(std::size_t count, RigCameraDetection detection, int knownPercent)
    {
        rig_filter_t filter(count, "rig", detection);
        std::vector<int> detectionStrings(count);
        std::iota(detectionStrings.begin(), detectionStrings.end(), 0);
        std::shuffle(detectionStrings.begin(), detectionStrings.end(), m_rng);
        for (std::size_t i = 0; i < count; ++i) {
            rig_camera_filter_t& camera = filter.cameras[i];
            camera.enabled = below(10) > 0;
            const int values = below(2) == 0 ? 1 : static_cast<int>(count);
            const bool repeat = below(40) == 0;
            camera[RigKey::SerialNumber] = known(knownPercent / 2, 's', below(values));
            camera[RigKey::DetectionString] =
                known(knownPercent, 'd', repeat ? 0 : detectionStrings[i]);
            camera[RigKey::ExifString] = known(knownPercent, 'e', below(values));
            if (below(100) < knownPercent) {
                camera.bands.append({known(100, 'b', below(2)), 0, 0, 1});
            }
        }
        return filter;
    }

    RigModel rig(std::size_t count, RigCameraDetection detection, int knownPercent)
    {
        RigModel rig = RigModel::makeRigModel(filter(count, detection, knownPercent));
        (void)rig.changeRefCamera(static_cast<std::size_t>(below(static_cast<int>(count))));
        return rig;
    }

private:
    /// "" or a letter in either case with the value's number.
    QString known(int percent, char letter, int value)
    {
        if (below(100) >= percent) {
            return {};
        }
        const QString text = QString("%1%2").arg(QLatin1Char(letter)).arg(value);
        return below(2) == 0 ? text : text.toUpper();
    }

    std::mt19937 m_rng;
};

TEST(RigDBMatch, EqualsTheExhaustiveSearch)
{
    RandomRigs random(testSeed());
    int matches = 0;
    int nonMatches = 0;
    int reordered = 0;
    for (int trial = 0; trial < 6000; ++trial) {
        const std::size_t count = 2 + static_cast<std::size_t>(random.below(6));
        const auto detection = RigCameraDetection{random.below(8) == 0 ? 1 : 0};
        const std::size_t more = detection == kByOrder && random.below(2) == 0 ? 1 : 0;
        const int knownPercent = 10 + random.below(50);
        const rig_filter_t filter = random.filter(count, detection, knownPercent);
        const RigModel rig = random.rig(count + more, detection, knownPercent);
        const bool fixedOrder = random.below(8) == 0;

        const RigDBMatch match = matchRigDB(rig, filter, fixedOrder);

        ASSERT_EQ(match, exhaustiveMatch(rig, filter, fixedOrder))
            << "trial " << trial << ": " << filter << "\n"
            << rig.makeRigFilter(true);
        matches += match.matched() ? 1 : 0;
        nonMatches += match.matched() ? 0 : 1;
        reordered += std::is_sorted(match.assignment.begin(), match.assignment.end()) ? 0 : 1;
    }
    EXPECT_GT(matches, 500);
    EXPECT_GT(nonMatches, 500);
    EXPECT_GT(reordered, 500);
}

/// A filter of one camera per text, "serial detection exif" with "-" for unknown
/// and "off" for a disabled camera.
rig_filter_t filterOf(const QStringList& cameras, RigCameraDetection detection = kByString)
{
    rig_filter_t filter(static_cast<std::size_t>(cameras.size()), QString(), detection);
    for (int i = 0; i < cameras.size(); ++i) {
        rig_camera_filter_t& camera = filter.cameras[static_cast<std::size_t>(i)];
        const QStringList words = cameras[i].split(' ');
        camera.enabled = words[0] != "off";
        for (int key = 0; camera.enabled && key < words.size(); ++key) {
            camera[RigKey{key}] = words[key] == "-" ? QString() : words[key];
        }
    }
    return filter;
}

struct MatchCase
{
    const char* fact;
    QStringList filter;
    QStringList rig;
    RigCameraDetection detection;
    RigDBMatch match;
};

TEST(RigDBMatch, FollowsTheRules)
{
    const RigDBMatch none{-1, {}, false};
    const MatchCase table[] = {
        {"serial numbers ignore case and count 4",
         {"ab12", "-"},
         {"-", "AB12"},
         kByString,
         {4, {1, 0}, true}},
        {"each property counts 1",
         {"- l Cam", "- r Cam"},
         {"- R cam", "- L cam"},
         kByString,
         {4, {1, 0}, false}},
        {"a known property must not differ", {"a d", "b e"}, {"a d", "c e"}, kByString, none},
        {"a disabled camera fits any", {"off", "a"}, {"a", "b"}, kByString, {4, {1, 0}, true}},
        {"own numbers are kept in a tie",
         {"-", "-", "-"},
         {"-", "-", "-"},
         kByString,
         {0, {0, 1, 2}, false}},
        // Cameras 0 and 1 only fit 2 and 3, cameras 2 and 3 only 0 and 1.
        {"then the last camera gets the lowest number",
         {"- - x", "- - x", "- - y", "- - y"},
         {"- - y", "- - y", "- - x", "- - x"},
         kByString,
         {4, {3, 2, 1, 0}, false}},
        {"as many cameras as the rig by string",
         {"-", "-", "-"},
         {"-", "-", "-", "-"},
         kByString,
         none},
        {"fewer cameras than the rig by order",
         {"a", "-", "c"},
         {"a", "b", "c", "d"},
         kByOrder,
         {8, {0, 1, 2}, true}},
        {"not more cameras than the rig by order", {"-", "-", "-"}, {"-", "-"}, kByOrder, none},
        {"no reordering by order", {"a", "b"}, {"b", "a"}, kByOrder, none},
        {"a detection string twice in the filter", {"- d", "- D"}, {"-", "-"}, kByString, none},
        {"a detection string twice in the rig", {"-", "-"}, {"- d", "- D"}, kByString, none},
        {"which matters by string only",
         {"- d", "- d"},
         {"- d", "- d"},
         kByOrder,
         {2, {0, 1}, false}},
    };
    for (const MatchCase& row : table) {
        SCOPED_TRACE(row.fact);
        const RigModel rig = RigModel::makeRigModel(filterOf(row.rig, row.detection));
        EXPECT_EQ(matchRigDB(rig, filterOf(row.filter, row.detection), false), row.match);
    }
}

TEST(RigDBMatch, DegenerateInputsAreAnEmptyMatchOrNone)
{
    RigModel rig = RigModel::makeRigModel(filterOf({"a", "b"}));
    EXPECT_EQ(matchRigDB(rig, filterOf({}), false), RigDBMatch());
    EXPECT_FALSE(matchRigDB(rig, filterOf({"a", "b"}, kByOrder), false).matched());
    EXPECT_FALSE(matchRigDB(rig, filterOf({"b", "a"}), true).matched());
    rig.refCameraIndex = 7;
    EXPECT_FALSE(matchRigDB(rig, filterOf({"a", "b"}), false).matched());
}

// Enumerating the orders of 150 cameras would never end.
TEST(RigDBMatch, ManyCamerasAreMatchedToo)
{
    constexpr int kCount = 150;
    std::vector<std::size_t> order(kCount);
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::shuffle(order.begin(), order.end(), std::mt19937(testSeed()));
    QStringList unknown;
    QStringList filter;
    QStringList rig;
    for (int i = 0; i < kCount; ++i) {
        unknown << "-";
        filter << QString("- dir%1").arg(order[static_cast<std::size_t>(i)]);
        rig << QString("- DIR%1").arg(i);
    }
    const RigModel model = RigModel::makeRigModel(filterOf(rig));
    EXPECT_EQ(matchRigDB(model, filterOf(filter), false), (RigDBMatch{kCount, order, false}));
    std::sort(order.begin(), order.end());
    EXPECT_EQ(matchRigDB(model, filterOf(unknown), false), (RigDBMatch{0, order, false}));
}

TEST(RigDBMatch, OrderGoesByScoreThenOwnNumbersThenLength)
{
    const std::pair<RigDBMatch, RigDBMatch> worseAndBetter[] = {
        {{-1, {}, false}, {0, {}, false}},       {{1, {0, 1}, true}, {2, {1, 0}, false}},
        {{1, {1, 0}, true}, {1, {0, 1}, false}}, {{0, {0, 2, 1}, false}, {0, {0, 1}, false}},
        {{0, {}, true}, {0, {1, 0}, false}},     {{0, {1, 0, 3}, false}, {0, {1, 0}, false}},
    };
    for (const auto& [worse, better] : worseAndBetter) {
        SCOPED_TRACE(testing::PrintToString(better));
        EXPECT_TRUE(worse < better && worse <= better);
        EXPECT_FALSE(better < worse || better <= worse);
    }
    const RigDBMatch left{3, {1, 2, 0}, false};
    const RigDBMatch right{3, {2, 0, 1}, true};
    EXPECT_TRUE(left <= right && right <= left);
    EXPECT_FALSE(left < right || right < left || left == right);
}

} // namespace
} // namespace lumo
