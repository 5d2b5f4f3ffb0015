// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/cameraInfo/camera_model_db.h"
#include "lumo/exif/camera_from_exif.h"
#include "test_cameras.h"

#include <gtest/gtest.h>

namespace lumo {
namespace {

/// "<name>" or "<name>#<serial number>"; the pixel size tells entries apart.
CameraModelFromDB entry(const QString& key, double pixelSize)
{
    CameraModelFromDB model = testModel(key.section('#', 0, 0), key.section('#', 1));
    model.params.pixelSize = pixelSize;
    return model;
}

cameradb::CameraDBData tables(std::initializer_list<std::pair<const char*, double>> entries)
{
    cameradb::CameraDBData data;
    for (const auto& [key, pixelSize] : entries) {
        const CameraModelFromDB model = entry(key, pixelSize);
        data.cameras.emplace(model.params.name, model);
    }
    return data;
}

CameraModelDb database(
    const cameradb::CameraDBData& internal, const cameradb::CameraDBData& user = {})
{
    CameraModelDb db;
    db.setInternalData(internal);
    EXPECT_TRUE(db.setUserData(user, 17));
    return db;
}

TEST(CameraModelDb, DisablingTheUserDatabaseEmptiesItAndRefusesEdits)
{
    CameraModelDb db = database({}, tables({{"Cam", 1}}));
    EXPECT_EQ(db.userDbVersion(), 17u);
    EXPECT_FALSE(db.emptyDB());
    db.setUserDBStatus(false);
    EXPECT_TRUE(db.emptyUserDB());
    EXPECT_TRUE(db.emptyDB());
    EXPECT_EQ(db.userDbVersion(), 19u);
    EXPECT_FALSE(db.setUserData(tables({{"Cam", 1}}), 19));
    EXPECT_FALSE(db.setCameraModel(testModel("Cam"), false));
    db.setUserDBStatus(true);
    db.setUserDBReadOnly(true);
    EXPECT_FALSE(db.editingAllowed());
    EXPECT_FALSE(db.setCameraModel(testModel("Cam"), false));
    EXPECT_FALSE(db.removeCameraModel("Cam", "", false));
    EXPECT_FALSE(db.setMapping("id", "Cam", false));
}

struct LookupCase
{
    const char* name;
    cameradb::CameraDBData internal;
    cameradb::CameraDBData user;
    const char* wanted; ///< name#serial
    bool exactSerial;
    double found; ///< pixel size of the entry; 0: none
    CameraSource source;
};

constexpr CameraSource kInternal = CameraSource::InternalDatabase;
constexpr CameraSource kEdited = CameraSource::EditedDatabase;
constexpr CameraSource kUser = CameraSource::UserDatabase;

TEST(CameraModelDb, LookupByNameAndSerialNumber)
{
    const LookupCase cases[] = {
        {"empty name", tables({{"", 1}}), {}, "", false, 0, kInternal},
        {"other case", tables({{"Cam", 1}}), {}, "cam", false, 0, kInternal},
        {"body under a name of other case behind",
         tables({{"CAM#7", 1}, {"CAM", 2}, {"Cam#8", 3}}),
         {},
         "CAM#8",
         true,
         3,
         kInternal},
        {"generic under a name of other case behind",
         tables({{"CAM#7", 1}, {"Cam", 2}}),
         {},
         "CAM#8",
         false,
         2,
         kInternal},
        {"not under one before",
         tables({{"CAM#8", 1}, {"Cam", 2}}),
         {},
         "Cam#8",
         true,
         0,
         kInternal},
        {"not behind another name",
         tables({{"CAM", 1}, {"CAN", 2}, {"Cam#8", 3}}),
         {},
         "CAM#8",
         true,
         0,
         kInternal},
        {"internal", tables({{"Cam", 1}}), {}, "Cam", true, 1, kInternal},
        {"body", tables({{"Cam", 1}, {"Cam#7", 2}}), {}, "Cam#7", true, 2, kInternal},
        {"unknown body: generic",
         tables({{"Cam#7", 2}, {"Cam", 1}}),
         {},
         "Cam#8",
         false,
         1,
         kInternal},
        {"unknown body, no generic: first",
         tables({{"Cam#7", 2}, {"Cam#6", 3}}),
         {},
         "Cam#8",
         false,
         2,
         kInternal},
        {"unknown body, exact",
         tables({{"Cam#7", 2}, {"Cam", 1}}),
         {},
         "Cam#8",
         true,
         0,
         kInternal},
        {"user overrides", tables({{"Cam", 1}}), tables({{"Cam", 5}}), "Cam", true, 5, kEdited},
        {"user only", tables({{"Other", 1}}), tables({{"Cam", 5}}), "Cam", true, 5, kUser},
        {"internal body over user's generic", tables({{"Cam#7", 2}}), tables({{"Cam", 5}}), "Cam#7",
         false, 2, kInternal},
        {"internal generic over user's other body", tables({{"Cam", 1}}), tables({{"Cam#6", 5}}),
         "Cam#7", false, 1, kInternal},
        {"user's body over internal generic", tables({{"Cam", 1}}), tables({{"Cam#7", 5}}), "Cam#7",
         false, 5, kEdited},
        {"user's other body over internal other body", tables({{"Cam#5", 1}}),
         tables({{"Cam#6", 5}}), "Cam#7", false, 5, kEdited},
    };
    for (const LookupCase& test : cases) {
        SCOPED_TRACE(test.name);
        const CameraModelDb db = database(test.internal, test.user);
        const QString wanted = test.wanted;
        CameraModelFromDB model;
        model.params.pixelSize = 0;
        const bool found = db.findCameraModel(
            wanted.section('#', 0, 0), wanted.section('#', 1), test.exactSerial, model, false);
        EXPECT_EQ(found, test.found > 0);
        EXPECT_EQ(model.params.pixelSize, test.found);
        if (found) {
            EXPECT_EQ(model.params.source, test.source);
        }
    }
}

TEST(CameraModelDb, AUserEntryFromExifKeepsThatSourceUnlessItOverrides)
{
    cameradb::CameraDBData user = tables({{"Cam", 5}});
    user.cameras.begin()->second.params.source = CameraSource::Exif;
    CameraModelFromDB model;
    EXPECT_TRUE(database({}, user).findCameraModel("Cam", model, false));
    EXPECT_EQ(model.params.source, CameraSource::Exif);
    EXPECT_TRUE(database(tables({{"Cam#9", 1}}), user).findCameraModel("Cam", model, false));
    EXPECT_EQ(model.params.source, kEdited);
    EXPECT_FALSE(database({}, user).findCameraModel("Cam", model, true));
}

TEST(CameraModelDb, IdentifiersResolveThroughMappingsThenNames)
{
    cameradb::CameraDBData internal = tables({{"A", 1}, {"B", 2}});
    internal.mappings = {{"x", "A"}, {"y", "Gone"}, {"B", "Gone"}, {"z", "A"}};
    cameradb::CameraDBData user = tables({{"U", 3}});
    user.mappings = {{"x", "U"}, {"z", ""}};
    const CameraModelDb db = database(internal, user);
    const std::tuple<QString, QString, QString> cases[] = {
        {"", "", ""},    {"x", "U", "A"}, {"y", "", ""},   {"B", "B", "B"},
        {"A", "A", "A"}, {"U", "U", ""},  {"z", "A", "A"}, {"unknown", "", ""},
    };
    for (const auto& [id, name, internalName] : cases) {
        EXPECT_EQ(db.exifId2cameraName(id, false), name) << qPrintable(id);
        EXPECT_EQ(db.exifId2cameraName(id, true), internalName) << qPrintable(id);
    }
    EXPECT_EQ(db.exifId2cameraName(ExifID{"unknown", "B"}, false), "B");
    EXPECT_EQ(db.exifId2cameraName(ExifID{"a/b", "B"}, false), "");
    EXPECT_EQ(db.exifId2cameraName(ExifID{"unknown", "a/b"}, false), "");
}

TEST(CameraModelDb, NamesThatMayServeAnImage)
{
    cameradb::CameraDBData internal = tables({{"B#2", 1}, {"B", 1}, {"Big", 1}});
    internal.cameras.find("Big")->second.params.setImageSize(8000, 6000);
    const CameraModelDb db = database(internal, tables({{"B", 5}, {"A", 5}}));
    ExifInfo exif;
    using Names = std::vector<std::pair<QString, QString>>;
    Names names{{"left", "over"}};
    db.cameraNames(exif, names);
    EXPECT_EQ(names, (Names{{"A", ""}, {"B", ""}, {"B", "2"}, {"Big", ""}}));
    exif.imageWidth = 4000;
    exif.imageHeight = 3000;
    exif.bands = band::makeRGBBands();
    db.cameraNames(exif, names);
    EXPECT_EQ(names, (Names{{"A", ""}, {"B", ""}, {"B", "2"}}));
}

TEST(CameraModelDb, AModelEqualToTheInternalOneRemovesTheUsersOwn)
{
    CameraModelDb db = database(tables({{"Cam", 1}}), tables({{"Cam", 5}}));
    EXPECT_TRUE(db.setCameraModel(entry("Cam", 1), false));
    EXPECT_TRUE(db.emptyUserDB());
    EXPECT_FALSE(db.setCameraModel(entry("Cam", 1), false));
}

TEST(CameraModelDb, SettingAModelReportsChangesAndTheirSource)
{
    CameraModelDb db = database(tables({{"Cam#1", 1}}));
    CameraModelFromDB invalid = entry("New", 5);
    invalid.params.pixelSize = 0;
    EXPECT_FALSE(db.setCameraModel(invalid, false));

    EXPECT_TRUE(db.setCameraModel(entry("Cam", 5), false));
    EXPECT_EQ(db.userData().cameras.find("Cam")->second.params.source, kEdited);
    CameraModelFromDB held = db.userData().cameras.find("Cam")->second;
    EXPECT_FALSE(db.setCameraModel(held, false)); // nothing new
    EXPECT_TRUE(db.setCameraModel(entry("Cam", 6), false));
    EXPECT_EQ(db.userData().cameras.count("Cam"), 1u);

    CameraModelFromDB fromExif = entry("New", 5);
    fromExif.params.source = CameraSource::Exif;
    EXPECT_TRUE(db.setCameraModel(fromExif, false));
    EXPECT_EQ(db.userData().cameras.find("New")->second.params.source, CameraSource::Exif);
    fromExif.params.source = CameraSource::Custom;
    EXPECT_TRUE(db.setCameraModel(fromExif, false));
    EXPECT_EQ(db.userData().cameras.find("New")->second.params.source, kUser);
}

TEST(CameraModelDb, AddingACameraAddsItsBands)
{
    CameraModelDb db = database(tables({{"Cam", 1}}));
    CameraData camera = entry("Cam", 1).camera();
    EXPECT_FALSE(db.addCamera(camera, false)); // all there already
    camera.setBands({{"NIR", 790, 40, 1}}, false);
    EXPECT_TRUE(db.addCamera(camera, false));
    CameraModelFromDB model;
    ASSERT_TRUE(db.findCameraModel("Cam", model, false));
    EXPECT_EQ(model.bandConfigs.size(), 2u);
    std::size_t index = npos;
    const CameraModelFromDB converted = db.convert2CameraModel(camera, "id", index);
    EXPECT_EQ(index, 1u);
    EXPECT_EQ(converted.bandConfigs.size(), 2u);
    camera.params.name = "Else";
    EXPECT_EQ(db.convert2CameraModel(camera, "id", index).exifId, "id");
    EXPECT_EQ(index, 0u);
}

TEST(CameraModelDb, RemovingAModelTakesItsMappingsUnlessItIsShipped)
{
    cameradb::CameraDBData user = tables({{"Cam", 5}, {"Own", 5}});
    user.mappings = {{"a", "Cam"}, {"b", "Own"}};
    CameraModelDb db = database(tables({{"Cam", 1}}), user);
    EXPECT_FALSE(db.removeCameraModel("Cam", "7", false));
    EXPECT_TRUE(db.removeCameraModel("Cam", "", false));
    EXPECT_TRUE(db.removeCameraModel("Own", "", false));
    EXPECT_EQ(db.userData().mappings, (std::map<QString, QString>{{"a", "Cam"}}));
}

TEST(CameraModelDb, TextsOfTheStoreItselfCanNameWhatIsRemoved)
{
    cameradb::CameraDBData user = tables({{"Own", 5}, {"Own#7", 5}});
    user.mappings = {{"a", "Own"}, {"b", "Own"}};
    CameraModelDb db = database({}, user);
    EXPECT_TRUE(db.removeCameraModel(db.userData().mappings.at("a"), "7", false));
    EXPECT_TRUE(db.userData().mappings.empty());
    const CameraModelFromDB& last = db.userData().cameras.begin()->second;
    EXPECT_TRUE(db.removeCameraModel(last.params.name, last.serialNumber, false));
    EXPECT_TRUE(db.emptyUserDB());
}

TEST(CameraModelDb, MappingsThatSayNothingNewAreNotHeld)
{
    cameradb::CameraDBData internal = tables({{"A", 1}, {"B", 2}});
    internal.mappings = {{"x", "A"}};
    CameraModelDb db = database(internal);
    EXPECT_FALSE(db.setMapping("none", "A", false));
    EXPECT_FALSE(db.setMapping("", "A", false));
    EXPECT_TRUE(db.setMapping("x", "B", false));
    EXPECT_EQ(db.exifId2cameraName(QString("x"), false), "B");
    EXPECT_TRUE(db.setMapping("x", "A", false));
    EXPECT_TRUE(db.userData().mappings.empty());
    EXPECT_TRUE(db.setMapping("y", "A", false));
    EXPECT_TRUE(db.setMapping("y", "y", false));
    EXPECT_TRUE(db.setMapping("z", "", false)); // as it is
    EXPECT_TRUE(db.userData().mappings.empty());
    // There is no folder to save to, so that what is saved fails.
    EXPECT_TRUE(db.setMapping("x", "A", true));
    EXPECT_FALSE(db.setMapping("x", "B", true));
    EXPECT_TRUE(db.setMapping("x", "B", true));
}

struct PixelCase
{
    const char* id;
    double pixelSize; ///< 0: no estimate
};

TEST(CameraModelDb, PixelSizesAreEstimatedFromOtherSizes)
{
    // Cam: 4000x3000 of 2 um; User: 2000x1500 of 4 um under the same key.
    cameradb::CameraDBData internal = tables({{"Cam_5.0_4000x3000", 2}});
    cameradb::CameraDBData user = tables({{"Own", 4}});
    user.cameras.begin()->second.params.setImageSize(2000, 1500);
    user.cameras.begin()->second.exifId = "cam_5.0_2000x1500";
    const CameraModelDb db = database(internal, user);
    const PixelCase cases[] = {
        {"Cam_5.0_4000x3000", 2},   {"Cam_9.9_3000x4000", 2},
        {"CAM_5.0_2000x1500", 4},   {"Cam_5.0_4000x2250", 2}, // one side in common
        {"Cam_5.0_8000x6000", 4},                             // nearest is internal, doubled
        {"Cam_5.0_1000x750", 2},                              // nearest is the user's, halved
        {"Cam_5.0_750x1000", 2},    {"Other_5.0_4000x3000", 0},
        {"Cam_4000x3000", 0},       {"a_b", 0},
        {"Cam_a_b_4000", 0}, // four tokens, and six
        {"Cam_a_b_4000_3000_x", 0}, {"Cam_5.0_0x0", 0},
        {"Cam_5.0_4000x0", 0},      {"Cam_5.0_99999999999x3000", 0},
        {"Cam_5_0_4000_3000", 2}, // five, if not of the usual form
    };
    for (const PixelCase& test : cases) {
        double pixelSize = 0;
        EXPECT_EQ(db.estimatePixelSize({test.id, ""}, pixelSize), test.pixelSize > 0) << test.id;
        EXPECT_DOUBLE_EQ(pixelSize, test.pixelSize) << test.id;
    }
}

/// Sizes and pixel sizes of entries of camera "C", in key order.
cameradb::CameraDBData sizes(
    std::initializer_list<std::tuple<std::size_t, std::size_t, double>> entries)
{
    cameradb::CameraDBData data;
    for (const auto& [width, height, pixelSize] : entries) {
        CameraModelFromDB model = entry(QString("k%1").arg(data.cameras.size()), pixelSize);
        model.params.setImageSize(width, height);
        model.exifId = "C_1.0_1x1";
        data.cameras.emplace(model.params.name, model);
    }
    return data;
}

TEST(CameraModelDb, PixelSizesComeFromTheNearestOrLargestEntry)
{
    struct Case
    {
        const char* text;
        cameradb::CameraDBData internal;
        cameradb::CameraDBData user;
        double pixelSize; ///< at 4000 x 2000
    };
    const Case cases[] = {
        {"nearest, a side in common", sizes({{8000, 6000, 1}, {4000, 3000, 2}}), {}, 2},
        {"largest, if the nearest has none", sizes({{4100, 2100, 1}, {8000, 4000, 2}}), {}, 1},
        {"first of the nearest", sizes({{4000, 2100, 1}, {4000, 1900, 3}}), {}, 1},
        {"first of the largest", sizes({{8000, 4000, 4}, {4000, 8000, 6}}), {}, 2},
        {"none near enough: the largest", sizes({{9000, 9000, 9}}), {}, 4},
        {"the same, turned, whatever is nearer", sizes({{4000, 2001, 1}, {2000, 4000, 3}}), {}, 3},
        {"user's of a tie", sizes({{4000, 2100, 1}}), sizes({{4000, 1900, 2}}), 2 * 2000. / 1900},
        {"internal if nearer", sizes({{4000, 2050, 1}}), sizes({{4000, 1900, 2}}), 1},
    };
    for (const Case& test : cases) {
        double pixelSize = 0;
        EXPECT_TRUE(database(test.internal, test.user)
                        .estimatePixelSize({"C_1.0_4000x2000", ""}, pixelSize))
            << test.text;
        EXPECT_DOUBLE_EQ(pixelSize, test.pixelSize) << test.text;
    }
}

ExifInfo testExif()
{
    ExifInfo exif;
    exif.model = "Cam";
    exif.focalLengthMm = 5.0;
    exif.imageWidth = 4000;
    exif.imageHeight = 3000;
    exif.focalPlane = FocalPlaneResolution{500, 500}; // 2 um
    exif.bands = band::makeRGBBands();
    return exif;
}

CameraData cameraFromExif()
{
    CameraData camera;
    QString error;
    EXPECT_TRUE(exif::getCamera(testExif(), camera, nullptr, error)) << qPrintable(error);
    return camera;
}

TEST(CameraModelDb, SourceOfACamera)
{
    const CameraData fromExif = cameraFromExif();
    const QString name = fromExif.params.name;
    CameraModelFromDB same(fromExif, QString());
    same.params.source = kInternal;
    CameraModelFromDB other = same;
    other.params.pixelSize = 0.003;
    CameraModelFromDB otherBody = other;
    otherBody.serialNumber = "7";
    CameraData body = fromExif;
    body.serialNumber = "9";
    CameraData edited = fromExif;
    edited.params.pixelSize = 0.0025;
    const auto holding = [&name](const CameraModelFromDB& model) {
        cameradb::CameraDBData data;
        data.cameras.emplace(name, model);
        return data;
    };
    struct Case
    {
        const char* text;
        CameraModelDb db;
        CameraData camera;
        ExifInfo exif;
        CameraSource source;
    };
    const Case cases[] = {
        {"incomplete, no metadata", {}, {}, {}, CameraSource::Custom},
        {"as the metadata", {}, fromExif, testExif(), CameraSource::Exif},
        {"unlike the metadata", {}, edited, testExif(), CameraSource::Custom},
        {"internal", database(holding(same)), fromExif, {}, kInternal},
        {"user", database({}, holding(same)), fromExif, {}, kUser},
        {"user, as the metadata", database({}, holding(same)), fromExif, testExif(),
         CameraSource::Exif},
        {"overriding", database(holding(other), holding(same)), fromExif, {}, kEdited},
        {"as the internal one that is overridden",
         database(holding(same), holding(other)),
         fromExif,
         {},
         kInternal},
        {"user's differs, no internal",
         database({}, holding(other)),
         fromExif,
         {},
         CameraSource::Custom},
        {"body that is not held", database(holding(same)), body, testExif(), kInternal},
        {"body that is not held, no metadata",
         database(holding(same)),
         body,
         {},
         CameraSource::Custom},
        {"body that is not held, user, as the metadata", database({}, holding(same)), body,
         testExif(), CameraSource::Exif},
        {"internal differs", database(holding(other)), fromExif, {}, CameraSource::Custom},
        {"internal differs, as the metadata", database(holding(other)), fromExif, testExif(),
         CameraSource::Exif},
        {"internal of another body",
         database(holding(otherBody), holding(other)),
         fromExif,
         {},
         kEdited},
    };
    for (const Case& test : cases) {
        EXPECT_EQ(test.db.calcCameraSource(test.camera, test.exif), test.source) << test.text;
    }
}

TEST(CameraDbSettings, PathsAndKeysCarryTheVersion)
{
    CameraDbSettings settings;
    settings.dataDirectory = "D:/data";
    EXPECT_EQ(cameradb::settingsPath("ICH", 19), "cameraDB/19/ICH");
    EXPECT_EQ(settings.userDBLoadFileName(17), "D:/data/17/ucmdb.xml");
    EXPECT_EQ(settings.internalDBFileName(19), "D:/data/19/icmdb.xml");
    EXPECT_TRUE(settings.appSettingsPathHash().isEmpty());
}

} // namespace
} // namespace lumo
