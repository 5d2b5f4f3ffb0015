// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/cameraInfo/camera_model_db.h"
#include "lumo/core/cameraInfo/rig_db_iterator.h"
#include "lumo/core/cameraInfo/rig_db_match.h"

#include <gtest/gtest.h>

namespace lumo {
namespace {

using Names = std::vector<std::pair<QString, int>>;

/// A rig whose cameras have these EXIF strings, or "exif#serial".
RigModel rigOf(const QString& name, const QStringList& cameras)
{
    RigModel rig(name, RigCameraDetection::ByDetectionString);
    rig.secondaries.resize(static_cast<std::size_t>(cameras.size()) - 1);
    for (int i = 0; i < cameras.size(); ++i) {
        RigModelCameraAttr& camera = rig.attr(static_cast<std::size_t>(i));
        camera[RigKey::ExifString] = cameras[i].section('#', 0, 0);
        camera[RigKey::SerialNumber] = cameras[i].section('#', 1);
    }
    return rig;
}

rig_filter_t filterOf(const QString& name, const QStringList& cameras)
{
    return rigOf(name, cameras).makeRigFilter(true);
}

cameradb::CameraDBData tables(const std::vector<RigModel>& rigs)
{
    cameradb::CameraDBData data;
    for (const RigModel& rig : rigs) {
        data.rigs.emplace(rig.name, rig);
    }
    return data;
}

CameraModelDb database(const std::vector<RigModel>& internal, const std::vector<RigModel>& user)
{
    CameraModelDb db;
    db.setInternalData(tables(internal));
    EXPECT_TRUE(db.setUserData(tables(user), cameradb::kCurrentVersion));
    return db;
}

TEST(RigStore, TheUsersRigsComeFirstAndOverride)
{
    const CameraModelDb db = database(
        {rigOf("A", {"i", "i"}), rigOf("C", {"i", "i"})},
        {rigOf("B", {"u", "u"}), rigOf("C", {"u", "u"})});
    QStringList visited;
    RigDBIterator rigs(db);
    while (rigs.hasNext()) {
        const auto [rig, source] = rigs.next();
        visited << rig.name + text::toString(source);
    }
    EXPECT_EQ(visited, QStringList({"Buser", "Cedited", "Ainternal", "Cinternal"}));
    EXPECT_THROW(rigs.next(), std::runtime_error);

    const std::pair<const char*, CameraSource> sources[] = {
        {"A", CameraSource::InternalDatabase},
        {"B", CameraSource::UserDatabase},
        {"C", CameraSource::EditedDatabase},
    };
    RigModel rig;
    for (const auto& [name, source] : sources) {
        SCOPED_TRACE(name);
        ASSERT_TRUE(db.findRigModel(name, rig, false));
        EXPECT_EQ(rig.source, source);
        EXPECT_EQ(db.calcRigSource(rig), source);
    }
    ASSERT_TRUE(db.findRigModel("C", rig, true));
    EXPECT_EQ(rig.source, CameraSource::InternalDatabase);
    EXPECT_FALSE(db.findRigModel("B", rig, true));
    EXPECT_EQ(rig.name, "C");
    EXPECT_TRUE(db.containsRigModel("B", false));
    EXPECT_FALSE(db.containsRigModel("B", true));
    EXPECT_FALSE(db.containsRigModel("", false));
}

TEST(RigStore, ARigWhoseDataDifferIsCustom)
{
    const RigModel stored = rigOf("A", {"a#1", "b#2", "c#3"});
    const CameraModelDb db = database({stored}, {});
    const auto sourceWith = [&](auto change) {
        RigModel rig = stored;
        change(rig);
        return db.calcRigSource(rig);
    };
    using Rig = RigModel;
    EXPECT_EQ(sourceWith([](Rig&) {}), CameraSource::InternalDatabase);
    EXPECT_EQ(
        sourceWith([](Rig& rig) { rig.attr(1).filter().enabled = false; }),
        CameraSource::InternalDatabase);
    EXPECT_EQ(sourceWith([](Rig& rig) { rig.name = "B"; }), CameraSource::Custom);
    EXPECT_EQ(sourceWith([](Rig& rig) { rig.adjustRefCamera = 0; }), CameraSource::Custom);
    EXPECT_EQ(
        sourceWith([](Rig& rig) { rig.processingMode = RigSecondaryProcType::OptRels; }),
        CameraSource::Custom);
    EXPECT_EQ(sourceWith([](Rig& rig) { rig.attr(2).name = "c"; }), CameraSource::Custom);
    EXPECT_EQ(
        sourceWith([](Rig& rig) { rig.secondaries[0].relatives.rotY = 1; }), CameraSource::Custom);
    EXPECT_EQ(sourceWith([](Rig& rig) { (void)rig.exchangeAttrs(0, 1); }), CameraSource::Custom);
    EXPECT_EQ(sourceWith([](Rig& rig) { rig.refCameraIndex = 9; }), CameraSource::Custom);
}

struct BestCase
{
    const char* fact;
    rig_filter_t filter;
    const char* best; ///< null if none fits
    CameraSource source;
};

TEST(RigStore, TheBestRigIsTheNamedOneUnlessSerialNumbersSayOtherwise)
{
    const CameraModelDb db = database(
        {rigOf("Duo", {"a", "b"}), rigOf("Duo 2", {"a", "b"}), rigOf("Trio", {"a", "b", "c"}),
         rigOf("Trio#7", {"a#7", "b#8", "c#9"})},
        {rigOf("Mine", {"a", "b"})});
    const CameraSource internal = CameraSource::InternalDatabase;
    const BestCase table[] = {
        {"of equal rigs the last", filterOf("", {"b", "a"}), "Duo 2", internal},
        {"the named one", filterOf("Mine", {"b", "a"}), "Mine", CameraSource::UserDatabase},
        {"nothing else if the named one does not fit", filterOf("Trio", {"a", "b"}), nullptr,
         internal},
        {"nothing else if there is none of the name", filterOf("X", {"a", "b"}), nullptr, internal},
        {"the one with the serial numbers", filterOf("Trio", {"a#7", "b#8", "c#9"}), "Trio#7",
         internal},
        {"the named one with the serial numbers", filterOf("Trio#7", {"a#7", "b#8", "c#9"}),
         "Trio#7", internal},
        // The named one is as good as those found later, which win the tie.
        {"of equal rigs the last, if no serial number fits", filterOf("Mine", {"a#1", "b#2"}),
         "Duo 2", internal},
        {"nothing that is known differs", filterOf("", {"a", "x"}), nullptr, internal},
        {"something must be known", filterOf("", {"", ""}), nullptr, internal},
        {"a name is", {0, "Trio", RigCameraDetection::ByDetectionString}, "Trio", internal},
    };
    for (const BestCase& row : table) {
        SCOPED_TRACE(row.fact);
        RigModel rig("untouched");
        EXPECT_EQ(db.findBestRigModel(row.filter, rig), row.best != nullptr);
        EXPECT_EQ(rig.name, row.best != nullptr ? row.best : "untouched");
        if (row.best != nullptr) {
            EXPECT_EQ(rig.source, row.source);
        }
    }
}

TEST(RigStore, NamesAreListedBestFirstAndOnce)
{
    const CameraModelDb db = database(
        {rigOf("A", {"a", "b"}), rigOf("B", {"b", "a"}), rigOf("C", {"a#1", "b#2"}),
         rigOf("D", {"x", "b"})},
        {rigOf("A", {"a", "b"})});
    Names names{{"old", 1}};
    db.rigNamesWithScore(filterOf("", {"a#1", "b"}), names);
    EXPECT_EQ(names, (Names{{"C", 6}, {"A", 2}, {"B", 2}}));
}

TEST(RigStore, AnOverriddenRigIsNotMatched)
{
    const CameraModelDb db = database(
        {rigOf("A", {"a", "b"}), rigOf("B", {"b", "c"})},
        {rigOf("A", {"a", "b"}), rigOf("B", {"x", "y"})});
    RigModel rig;
    ASSERT_TRUE(db.findBestRigModel(filterOf("", {"a", "b"}), rig));
    EXPECT_EQ(rig.source, CameraSource::EditedDatabase);
    EXPECT_FALSE(db.findBestRigModel(filterOf("", {"b", "c"}), rig));
    Names names;
    db.rigNamesWithScore(filterOf("", {"b", "c"}), names);
    EXPECT_EQ(names, Names());
}

TEST(RigStore, SettingARigOverridesAndDropsTheOverrideWhenEqual)
{
    const RigModel shipped = rigOf("A", {"a", "b"});
    CameraModelDb db = database({shipped}, {});
    RigModel edited = shipped;
    edited.adjustRefCamera = 0;
    RigModel held;

    EXPECT_FALSE(db.setRigModel(shipped, false));
    EXPECT_TRUE(db.setRigModel(edited, false));
    EXPECT_FALSE(db.setRigModel(edited, false));
    ASSERT_TRUE(db.findRigModel("A", held, false));
    EXPECT_EQ(held.source, CameraSource::EditedDatabase);
    EXPECT_TRUE(held.equal(edited));
    EXPECT_TRUE(db.setRigModel(shipped, false));
    EXPECT_TRUE(db.emptyUserDB());

    EXPECT_TRUE(db.setRigModel(rigOf("B", {"a", "b"}), false));
    EXPECT_EQ(db.userData().rigs.at("B").source, CameraSource::UserDatabase);
    EXPECT_FALSE(db.setRigModel(rigOf("C", {"a"}), false)); // not valid
    EXPECT_FALSE(db.removeRigModel("A", false));            // an internal one
    EXPECT_TRUE(db.removeRigModel("B", false));
    EXPECT_FALSE(db.removeRigModel("B", false));

    db = database({}, {rigOf("B", {"a", "b"})}); // as loaded, the source is Custom
    EXPECT_FALSE(db.setRigModel(rigOf("B", {"a", "b"}), false));
    db.setUserDBReadOnly(true);
    EXPECT_FALSE(db.setRigModel(edited, false));
    EXPECT_FALSE(db.containsRigModel("A", false));
}

} // namespace
} // namespace lumo
