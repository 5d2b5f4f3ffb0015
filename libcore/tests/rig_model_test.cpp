// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/cameraInfo/rig_filter.h"
#include "lumo/core/cameraInfo/rig_model.h"
#include "test_seed.h"

#include <gtest/gtest.h>

#include <random>

namespace lumo {
namespace {

constexpr std::size_t kNone = static_cast<std::size_t>(-1);
constexpr auto kByString = RigCameraDetection::ByDetectionString;

/// Cameras "cam0", "cam1", ... with EXIF string "exif" and detection strings
/// "dir0", "dir1", ...
RigModel testRig(std::size_t count, std::size_t refCamera = 0)
{
    RigModel rig("rig", kByString);
    rig.secondaries.resize(count - 1);
    rig.refCameraIndex = refCamera;
    for (std::size_t i = 0; i < count; ++i) {
        rig.attr(i) = RigModelCameraAttr(QString("cam%1").arg(i), {}, "exif");
        rig.attr(i)[RigKey::DetectionString] = QString("dir%1").arg(i);
    }
    return rig;
}

void disable(RigModel& rig, std::size_t i)
{
    rig.attr(i).filter().enabled = false;
}

void setPose(
    rig_relatives_t& relatives, double x, double y, double z, const Eigen::Vector3d& transl)
{
    relatives = rig_relatives_t(x, y, z, transl, 1, 2, 3, {4, 5, 6});
}

/// Angles in the ranges of setRotation, `marginDeg` away from gimbal lock.
void setRandomPoses(RigModel& rig, std::mt19937& rng, double marginDeg)
{
    std::uniform_real_distribution<double> unit(-1.0, 1.0);
    for (RigModel::Secondary& secondary : rig.secondaries) {
        setPose(
            secondary.relatives, 179.9 * unit(rng), (90.0 - marginDeg) * unit(rng),
            179.9 * unit(rng), 1000.0 * Eigen::Vector3d(unit(rng), unit(rng), unit(rng)));
    }
}

/// Where a point of camera `from` is in the frame of camera `to`.
Eigen::Vector3d mapped(const RigModel& rig, std::size_t from, std::size_t to, Eigen::Vector3d point)
{
    if (from != rig.refCameraIndex) {
        const rig_relatives_t& pose = rig.secondaries[rig.secCameraIndex(from)].relatives;
        point = pose.rotationMatrix() * point + pose.transl;
    }
    if (to != rig.refCameraIndex) {
        const rig_relatives_t& pose = rig.secondaries[rig.secCameraIndex(to)].relatives;
        point = pose.rotationMatrix().transpose() * (point - pose.transl);
    }
    return point;
}

TEST(RigModel, NumbersStayWhereverTheReferenceCameraIs)
{
    const RigModel rig = testRig(4, 2);
    EXPECT_EQ(rig.refCamera.name, "cam2");
    EXPECT_EQ(rig.secondaries[2].attributes.name, "cam3");
    EXPECT_EQ(rig.secCameraIndex(1), 1u);
    EXPECT_EQ(rig.secCameraIndex(2), kNone);
    EXPECT_EQ(rig.secCameraIndex(3), 2u);
    EXPECT_EQ(rig.secCameraIndex(4), kNone);
    EXPECT_THROW((void)rig.attr(4), std::out_of_range);
}

TEST(RigModel, EnabledIndexCountsEnabledCamerasUpToTheOneGiven)
{
    RigModel rig = testRig(5, 1);
    disable(rig, 0);
    disable(rig, 3);
    const std::size_t expected[] = {kNone, 0, 1, 1, 2, kNone};
    for (std::size_t i = 0; i < std::size(expected); ++i) {
        EXPECT_EQ(rig.enabledCameraIndex(i), expected[i]) << i;
    }
    EXPECT_EQ(rig.enabledCameraCount(), 3u);
    EXPECT_TRUE(rig.hasDisabledCamera());
}

TEST(RigModel, RelativesAreComparedWithTolerance)
{
    const rig_relatives_t zero(0, 0, 0, {0, 0, 0}, 0, 0, 0, {0, 0, 0});
    EXPECT_EQ(zero, rig_relatives_t(0, 0, 0.009, {0.09, 0, 0}, 0, -0.009, 0, {0, 0, -0.09}));
    const rig_relatives_t different[] = {
        {0.01, 0, 0, {0, 0, 0}, 0, 0, 0, {0, 0, 0}}, {0, -0.01, 0, {0, 0, 0}, 0, 0, 0, {0, 0, 0}},
        {0, 0, 0.01, {0, 0, 0}, 0, 0, 0, {0, 0, 0}}, {0, 0, 0, {0, -0.1, 0}, 0, 0, 0, {0, 0, 0}},
        {0, 0, 0, {0, 0, 0}, 0.01, 0, 0, {0, 0, 0}}, {0, 0, 0, {0, 0, 0}, 0, 0.01, 0, {0, 0, 0}},
        {0, 0, 0, {0, 0, 0}, 0, 0, 0.01, {0, 0, 0}}, {0, 0, 0, {0, 0, 0}, 0, 0, 0, {0, 0, 0.1}},
    };
    for (std::size_t i = 0; i < std::size(different); ++i) {
        EXPECT_NE(zero, different[i]) << i;
    }
}

TEST(RigModel, AKnownPoseHasThisMatrix)
{
    // Rx(90) Rz(90): x comes to lie on z, y on -x, z on -y.
    rig_relatives_t pose(90, 0, 90, {0, 0, 0}, 0, 0, 0, {0, 0, 0});
    const Eigen::Matrix3d expected{{0, -1, 0}, {0, 0, -1}, {1, 0, 0}};
    EXPECT_LT((pose.rotationMatrix().matrix() - expected).norm(), 1e-12);
    RotationMatrix rotation;
    rotation.set(expected);
    pose.rotX = pose.rotZ = 0;
    pose.setRotation(rotation);
    EXPECT_NEAR(pose.rotX, 90, 1e-9);
    EXPECT_NEAR(pose.rotY, 0, 1e-9);
    EXPECT_NEAR(pose.rotZ, 90, 1e-9);
}

TEST(RigModel, IsEqualInAllFieldsButTheSource)
{
    using Change = void (*)(RigModel&);
    const Change changes[] = {
        [](RigModel& rig) { rig.name = "x"; },
        [](RigModel& rig) { rig.processingMode = RigSecondaryProcType::Calibrate; },
        [](RigModel& rig) { rig.adjustRefCamera = 0; },
        [](RigModel& rig) { rig.cameraDetection = RigCameraDetection::ByCameraOrder; },
        [](RigModel& rig) { rig.refCameraIndex = 2; },
        [](RigModel& rig) { rig.refCamera.name = "x"; },
        [](RigModel& rig) { rig.refCamera.filter().enabled = false; },
        [](RigModel& rig) { rig.refCamera.filter().bands = band::makeRGBBands(); },
        [](RigModel& rig) { rig.secondaries[1].attributes[RigKey::SerialNumber] = "x"; },
        [](RigModel& rig) { rig.secondaries[1].relatives.transl.z() = 1; },
        [](RigModel& rig) { rig.secondaries.pop_back(); },
    };
    const RigModel rig = testRig(3, 1);
    for (const Change& change : changes) {
        RigModel other = rig;
        change(other);
        EXPECT_FALSE(rig.equal(other)) << &change - changes;
        EXPECT_NE(rig, other) << &change - changes;
    }
    RigModel other = rig;
    other.source = CameraSource::UserDatabase;
    EXPECT_TRUE(rig.equal(other));
    EXPECT_NE(rig, other);
}

TEST(RigModel, AttributesAreExchangedAndCamerasEnabledByNumber)
{
    RigModel rig = testRig(3, 1);
    rig.secondaries[1].relatives.rotX = 7;
    ASSERT_TRUE(rig.exchangeAttrs(2, 1));
    EXPECT_EQ(rig.refCamera.name, "cam2");
    EXPECT_EQ(rig.attr(2).name, "cam1");
    EXPECT_EQ(rig.secondaries[1].relatives.rotX, 7);

    rig_filter_t filter(3, "", kByString);
    filter.cameras[1].enabled = false;
    disable(rig, 0);
    ASSERT_TRUE(rig.enableCameras(filter));
    EXPECT_TRUE(rig.cameraEnabled(0));
    EXPECT_FALSE(rig.cameraEnabled(1));
    EXPECT_TRUE(rig.cameraEnabled(2));

    EXPECT_FALSE(rig.serialNumberAvail());
    rig.attr(1)[RigKey::SerialNumber] = "s";
    EXPECT_FALSE(rig.serialNumberAvail()) << "of a disabled camera";
    rig.attr(2)[RigKey::SerialNumber] = "s";
    EXPECT_TRUE(rig.serialNumberAvail());
}

TEST(RigModel, ChangingTheReferenceCameraKeepsTheGeometryAndIsUndone)
{
    std::mt19937 rng(testSeed());
    for (int trial = 0; trial < 1000; ++trial) {
        const std::size_t count = 2 + rng() % 5;
        RigModel rig = testRig(count, rng() % count);
        setRandomPoses(rig, rng, 0.1);
        const RigModel before = rig;
        const std::size_t k = (rig.refCameraIndex + 1 + rng() % (count - 1)) % count;

        ASSERT_TRUE(rig.changeRefCamera(k));
        ASSERT_EQ(rig.refCameraIndex, k);
        for (std::size_t i = 0; i < count; ++i) {
            ASSERT_EQ(rig.attr(i), before.attr(i));
            const Eigen::Vector3d point(1, 2, 3);
            ASSERT_LT((mapped(rig, i, k, point) - mapped(before, i, k, point)).norm(), 1e-9);
        }

        ASSERT_TRUE(rig.changeRefCamera(before.refCameraIndex));
        for (std::size_t slot = 0; slot + 1 < count; ++slot) {
            rig_relatives_t expected = before.secondaries[slot].relatives;
            expected.tolRotX = expected.tolRotY = expected.tolRotZ = 5.0;
            expected.tolTransl.setConstant(5.0);
            ASSERT_EQ(rig.secondaries[slot].relatives, expected) << "trial " << trial;
        }
    }
}

// Rigs that look back or down have such angles, and rounding must not turn 180
// into -180.
TEST(RigModel, RightAnglesSurviveAChangeOfReferenceAndBack)
{
    const double angles[] = {0, 90, -90, 180};
    for (int code = 0; code < 256; ++code) {
        RigModel rig = testRig(3);
        setPose(
            rig.secondaries[0].relatives, angles[code % 4], 30, angles[code / 4 % 4], {1, 2, 3});
        setPose(
            rig.secondaries[1].relatives, angles[code / 16 % 4], 0, angles[code / 64], {4, 5, 6});
        const RigModel before = rig;
        ASSERT_TRUE(rig.changeRefCamera(2) && rig.changeRefCamera(0));
        for (std::size_t slot = 0; slot < 2; ++slot) {
            const rig_relatives_t& back = rig.secondaries[slot].relatives;
            const rig_relatives_t& former = before.secondaries[slot].relatives;
            ASSERT_NEAR(back.rotX, former.rotX, 1e-9) << code;
            ASSERT_NEAR(back.rotZ, former.rotZ, 1e-9) << code;
        }
    }
}

TEST(RigModel, AtGimbalLockTheRotationSurvivesAChangeOfReference)
{
    std::mt19937 rng(testSeed());
    for (const double rotY : {90.0, -90.0}) {
        RigModel rig = testRig(3);
        setRandomPoses(rig, rng, 1.0);
        rig.secondaries[0].relatives.rotY = rotY;
        const RigModel before = rig;
        ASSERT_TRUE(rig.changeRefCamera(1) && rig.changeRefCamera(0));
        for (std::size_t slot = 0; slot < 2; ++slot) {
            const Eigen::Matrix3d now = rig.secondaries[slot].relatives.rotationMatrix().matrix();
            const Eigen::Matrix3d former =
                before.secondaries[slot].relatives.rotationMatrix().matrix();
            EXPECT_LT((now - former).norm(), 1e-9);
        }
    }
}

TEST(RigModel, ARefusedChangeLeavesTheRigAlone)
{
    RigModel rig = testRig(3, 1);
    disable(rig, 2);
    RigModel other = testRig(3, 2);
    other.name = "other";
    const RigModel before = rig;
    for (const std::size_t k : {1u, 2u, 3u}) {
        EXPECT_FALSE(rig.changeRefCamera(k)) << k;
    }
    EXPECT_FALSE(rig.exchangeAttrs(0, 0));
    EXPECT_FALSE(rig.exchangeAttrs(0, 3));
    EXPECT_FALSE(rig.enableCameras(rig_filter_t(4, "", kByString)));
    EXPECT_FALSE(rig.replaceMainData(other)); // its reference camera is disabled here
    EXPECT_FALSE(rig.replaceMainData(testRig(4)));
    EXPECT_EQ(rig, before);
}

TEST(RigModel, IsValidWithNameTwoEnabledCamerasAndTheirExifStrings)
{
    EXPECT_TRUE(testRig(2, 1).valid());
    EXPECT_FALSE(testRig(1).validData());
    RigModel rig = testRig(3);
    rig.refCameraIndex = 3;
    EXPECT_FALSE(rig.validData());
    EXPECT_THROW((void)rig.attr(3), std::out_of_range);
    rig.refCameraIndex = 0;
    rig.name.clear();
    EXPECT_FALSE(rig.valid());
    EXPECT_TRUE(rig.validData());
    rig.attr(2)[RigKey::ExifString].clear();
    EXPECT_FALSE(rig.validData());
    disable(rig, 2);
    EXPECT_TRUE(rig.validData());
    disable(rig, 0);
    EXPECT_FALSE(rig.validData());
}

TEST(RigModel, LayoutAndNamesIgnoreCamerasDisabledHere)
{
    RigModel rig = testRig(3);
    RigModel other = testRig(3);
    other.secondaries[1].relatives.rotX = 1;
    other.attr(0).name = "CAM0";
    other.attr(2).name = "x";
    EXPECT_FALSE(rig.sameLayout(other));
    EXPECT_FALSE(rig.sameCameraNames(other));
    disable(rig, 2);
    EXPECT_TRUE(rig.sameLayout(other));
    EXPECT_TRUE(rig.sameCameraNames(other));
    disable(other, 1);
    EXPECT_FALSE(rig.sameLayout(other));
    EXPECT_FALSE(rig.sameCameraNames(other));
    EXPECT_FALSE(rig.sameLayout(testRig(4)));
    EXPECT_FALSE(rig.sameCameraNames(testRig(4)));
}

TEST(RigModel, ACommonStringIsSharedByAllCameras)
{
    RigModel rig = testRig(3);
    EXPECT_EQ(rig.commonMatchString(RigKey::ExifString), "exif");
    EXPECT_EQ(rig.commonMatchString(RigKey::SerialNumber), "");
    EXPECT_EQ(testRig(1).commonMatchString(RigKey::DetectionString), "");
    disable(rig, 2);
    rig.attr(2)[RigKey::ExifString] = "Exif";
    EXPECT_EQ(rig.commonMatchString(RigKey::ExifString), "");
}

TEST(RigModel, ReplacingTheMainDataKeepsAttributesAndPosesTheOtherLacks)
{
    std::mt19937 rng(testSeed());
    RigModel rig = testRig(4);
    RigModel other = testRig(4, 2);
    setRandomPoses(rig, rng, 1.0);
    setRandomPoses(other, rng, 1.0);
    other.name = "other";
    other.adjustRefCamera = 0;
    other.processingMode = RigSecondaryProcType::Calibrate;
    other.attr(0).name = "x";
    disable(other, 3);
    RigModel moved = rig;
    ASSERT_TRUE(moved.changeRefCamera(2));

    ASSERT_TRUE(rig.replaceMainData(other));

    RigModel expected = other;
    expected.attr(0).name = "cam0";
    expected.attr(3).filter().enabled = true;
    expected.secondaries[2].relatives = moved.secondaries[2].relatives;
    EXPECT_TRUE(rig.equal(expected));
}

TEST(RigModel, ReorderingBringsAttributesIntoTheOrderOfTheFilter)
{
    RigModel rig = testRig(3);
    RigModel other = testRig(3);
    other.name = "other";
    rig_filter_t filter = testRig(3).makeRigFilter(RigKey::DetectionString);
    std::rotate(filter.cameras.begin(), filter.cameras.begin() + 1, filter.cameras.end());

    // Filter camera 0 is the rig's camera 1, and so on.
    ASSERT_TRUE(rig.reorderAndReplace(filter, other));
    EXPECT_EQ(rig.name, "other");
    EXPECT_EQ(rig.attr(1).name, "cam0");
    EXPECT_EQ(rig.attr(2).name, "cam1");
    EXPECT_EQ(rig.attr(0).name, "cam2");

    filter.cameras[0][RigKey::DetectionString] = "elsewhere";
    ASSERT_TRUE(rig.reorderAndReplace(filter, other));
    EXPECT_EQ(rig, other);
}

TEST(RigModel, FiltersHoldWhatTheRigIsToldApartBy)
{
    RigModel rig = testRig(2);
    rig.attr(0)[RigKey::SerialNumber] = "s0";
    rig.bands(1) = band::makeRGBBands();
    disable(rig, 1);
    rig_filter_t expected(2, "rig", kByString);
    expected.cameras[0] = rig_camera_filter_t("exif", "s0", "dir0", {});
    expected.cameras[1] = rig_camera_filter_t("exif", "", "dir1", band::makeRGBBands());
    expected.cameras[1].enabled = false;
    EXPECT_EQ(rig.makeRigFilter(true), expected);
    EXPECT_EQ(RigModel::makeRigModel(expected).makeRigFilter(true), expected);

    rig.cameraDetection = expected.detection = RigCameraDetection::ByCameraOrder;
    expected.clearBands();
    rig_filter_t serialOnly = expected;
    serialOnly.clearExcept(RigKey::SerialNumber);
    serialOnly.name = "rig";
    expected.cleanKeysInCameraFilters(RigKey::DetectionString);
    EXPECT_EQ(rig.makeRigFilter(false), expected);
    EXPECT_EQ(rig.makeRigFilter(RigKey::SerialNumber), serialOnly);
    EXPECT_EQ(testRig(1).makeRigFilter(true), rig_filter_t(1, "rig", kByString));
    EXPECT_EQ(
        RigModel::makeRigModel(rig_filter_t(1, "rig", kByString)), RigModel("rig", kByString));
}

TEST(RigModel, AttributesMatchWhatTheFilterAsksFor)
{
    RigModel rig = testRig(2);
    rig.attr(0)[RigKey::SerialNumber] = "A1";
    rig.bands(0) = {{"Red", 660, 40, 1}};
    const rig_camera_filter_t same("EXIF", "a1", "DIR0", {{"R", 660.4, 10, 1}});
    EXPECT_TRUE(rig.attrMatched(0, same, true, true, true));
    EXPECT_TRUE(rig.attrMatched(0, {"exif", "", "", {}}, true, true, true));
    EXPECT_FALSE(rig.attrMatched(0, {"", "", "", {}}, false, false, false));
    const rig_camera_filter_t other("exif", "B2", "dir7", {{"Red", 550, 40, 1}});
    EXPECT_TRUE(rig.attrMatched(0, other, false, false, false));
    EXPECT_FALSE(rig.attrMatched(0, other, true, false, false));
    EXPECT_FALSE(rig.attrMatched(0, other, false, true, false));
    EXPECT_FALSE(rig.attrMatched(0, other, false, false, true));
}

} // namespace
} // namespace lumo
