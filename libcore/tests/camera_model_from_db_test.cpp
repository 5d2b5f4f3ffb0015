// SPDX-License-Identifier: Apache-2.0
#include "lumo/cameradata/exif_info.h"
#include "lumo/core/cameraInfo/camera_model_from_db.h"
#include "lumo/core/cameraInfo/exif_compatible.h"
#include "test_cameras.h"

#include <gtest/gtest.h>

namespace lumo {
namespace {

const bands_t kRgb = band::makeRGBBands();
const bands_t kGreenNir{{"Green", 550, 40, 1}, {"NIR", 790, 40, 1}};
const bands_t kGreenGarbageNir{{"Green", 550, 40, 1}, {"Garbage"}, {"NIR", 790, 40, 1}};

CameraModelFromDB modelWith(const std::vector<bands_t>& configs)
{
    CameraModelFromDB model = testModel("Cam");
    model.bandConfigs = configs;
    return model;
}

TEST(CameraModelFromDB, ADefaultOneIsRgbAndNotPortrait)
{
    const CameraModelFromDB model;
    EXPECT_EQ(model.bandConfigs, std::vector<bands_t>{kRgb});
    EXPECT_EQ(model.defaultBandConfig, 0u);
    EXPECT_FALSE(model.portraitImage());
}

TEST(CameraModelFromDB, ClearingKeepsTheIdentifier)
{
    CameraModelFromDB model = modelWith({kGreenNir, kRgb});
    model.serialNumber = "1";
    model.exifId = "id";
    model.defaultBandConfig = 1;
    model.clearData();
    CameraModelFromDB expected;
    expected.exifId = "id";
    EXPECT_EQ(model.exifId, "id");
    EXPECT_TRUE(model.equal(expected));
    EXPECT_TRUE(model.serialNumber.isEmpty());
}

TEST(CameraModelFromDB, TheFirstConfigurationStandsInForABadDefault)
{
    CameraModelFromDB model = modelWith({kGreenNir, kRgb});
    model.defaultBandConfig = 1;
    EXPECT_EQ(model.camera().bands, kRgb);
    model.defaultBandConfig = npos;
    EXPECT_EQ(model.camera().bands, kGreenNir);
    EXPECT_FALSE(model.camera().fixedBands);
    model.bandConfigs.clear();
    EXPECT_TRUE(model.defaultBands().empty());
}

struct ValidCase
{
    const char* name;
    CameraModelFromDB model;
    std::size_t index;
    const char* error; ///< empty: valid
};

TEST(CameraModelFromDB, ValidityNamesTheFault)
{
    CameraModelFromDB noDefault = modelWith({kRgb});
    noDefault.defaultBandConfig = npos;
    CameraModelFromDB badSize = modelWith({kRgb});
    badSize.params.setImageSize(0, 0);
    const ValidCase cases[] = {
        {"good", modelWith({kRgb, kGreenNir}), npos, ""},
        {"good index", modelWith({kRgb, {}}), 0, ""},
        {"index", modelWith({kRgb}), 1, "Invalid index for the band configuration"},
        {"default", noDefault, npos, "Invalid default band configuration"},
        {"none", modelWith({}), npos, "Invalid default band configuration"},
        {"an empty one", modelWith({kRgb, {}}), npos, "There are no bands"},
        {"parameters", badSize, npos, "The image size is 0"},
    };
    for (const ValidCase& test : cases) {
        QString error;
        EXPECT_EQ(test.model.valid(error, test.index), *test.error == '\0') << test.name;
        EXPECT_EQ(error, test.error) << test.name;
        EXPECT_EQ(test.model.valid(test.index, true), *test.error == '\0') << test.name;
    }
    const CameraModelFromDB nameless = modelWith({{{"", 0, 0, 1}}});
    EXPECT_TRUE(nameless.valid(npos, false));
    EXPECT_FALSE(nameless.valid(npos, true));
}

struct LookupCase
{
    const char* name;
    std::vector<bands_t> configs;
    bands_t bands;
    std::size_t byNames;
    std::size_t byValues;
    std::size_t best;
};

TEST(CameraModelFromDB, BandConfigurationsAreFound)
{
    const bands_t greenNirOther{{"GREEN", 560, 0, 1}, {"N I R", 800, 0, 1}};
    const bands_t two{{"A"}, {"B"}};
    const LookupCase cases[] = {
        {"values", {kRgb, kGreenNir}, kGreenNir, 1, 1, 1},
        {"names only", {kRgb, kGreenNir}, greenNirOther, 1, npos, 1},
        {"count only", {kRgb, kGreenNir}, two, npos, npos, 1},
        {"without garbage", {kRgb, kGreenGarbageNir}, kGreenNir, 1, 1, 1},
        {"same count goes first", {kGreenGarbageNir, kGreenNir}, kGreenNir, 1, 1, 1},
        {"first of equals", {kGreenNir, kGreenNir}, kGreenNir, 0, 0, 0},
        {"values before names", {greenNirOther, kGreenNir}, kGreenNir, 0, 1, 1},
        {"one, by count", {kGreenGarbageNir}, two, npos, npos, 0},
        {"one, other count", {kRgb}, kGreenNir, npos, npos, npos},
        {"none", {}, kGreenNir, npos, npos, npos},
    };
    for (const LookupCase& test : cases) {
        SCOPED_TRACE(test.name);
        const CameraModelFromDB model = modelWith(test.configs);
        CameraData camera;
        camera.setBands(test.bands, false);
        EXPECT_EQ(model.bandConfigIndexByNames(test.bands), test.byNames);
        EXPECT_EQ(model.bandConfigIndexByNames(test.bands.names()), test.byNames);
        EXPECT_EQ(model.bandConfigIndexByValues(test.bands), test.byValues);
        EXPECT_EQ(model.bestBandConfigIndex(camera), test.best);
        camera.fixedBands = true;
        EXPECT_EQ(model.bestBandConfigIndex(camera), test.byNames);
    }
    EXPECT_EQ(modelWith({{}}).bandConfigIndexByNames(QStringList()), npos);
}

TEST(CameraModelFromDB, AddingBandsReplacesThoseOfTheSameNamesAndCount)
{
    CameraModelFromDB model = modelWith({kRgb, kGreenGarbageNir});
    EXPECT_FALSE(model.addBands(kRgb));
    EXPECT_TRUE(model.addBands(kGreenNir)); // matches without garbage only: appended
    EXPECT_EQ(model.bandConfigs.size(), 3u);
    const bands_t shifted{{"green", 555, 40, 1}, {"NIR", 790, 40, 1}};
    EXPECT_TRUE(model.addBands(shifted));
    EXPECT_EQ(model.bandConfigs, (std::vector<bands_t>{kRgb, kGreenGarbageNir, shifted}));
}

TEST(CameraModelFromDB, EqualityLeavesTheSerialNumberAside)
{
    CameraModelFromDB model = modelWith({kRgb});
    CameraModelFromDB other = model;
    other.serialNumber = "42";
    EXPECT_TRUE(model.equal(other));
    other.defaultBandConfig = 1;
    EXPECT_FALSE(model.equal(other));
}

TEST(CameraModelFromDB, ContainsAsksForVignettingAndFixedBandsOnlyWhenStrict)
{
    const CameraModelFromDB model = modelWith({kGreenNir});
    CameraData camera = model.camera();
    EXPECT_TRUE(model.contains(camera, true));

    camera.params.vignetting[280] = {Eigen::MatrixXd::Ones(2, 1), 0, 0, VignettingType::Polynomial};
    EXPECT_TRUE(model.contains(camera, true));
    camera.keepVignetting = true;
    EXPECT_FALSE(model.contains(camera, true));
    EXPECT_TRUE(model.contains(camera, false));

    camera = model.camera();
    camera.setBands({{"Green", 0, 0, 1}, {"NIR", 0, 0, 1}}, true);
    EXPECT_FALSE(model.contains(camera, true)); // would be filled from the configuration
    camera.setBands({{"Green", 551, 41, 1}, {"NIR", 791, 41, 1}}, true);
    EXPECT_TRUE(model.contains(camera, true)); // its own numbers stand
    EXPECT_FALSE(model.contains(camera, false));
    camera.setBands(kRgb, true);
    EXPECT_TRUE(model.contains(camera, true)); // fits no configuration
    camera.setBands(kRgb, false);
    EXPECT_FALSE(model.contains(camera, true));
}

TEST(ExifCompatible, SizeInEitherOrientationAndBandCount)
{
    const CameraModelFromDB model = modelWith({kGreenGarbageNir, kRgb}); // 4000x3000
    ExifInfo exif;
    exif.imageWidth = 3000;
    exif.imageHeight = 4000;
    exif.bands = kGreenNir;
    EXPECT_TRUE(exif::compatible(exif, model, npos));
    EXPECT_TRUE(exif::compatible(exif, model, 0));
    EXPECT_FALSE(exif::compatible(exif, model, 1));
    EXPECT_TRUE(exif::compatible(exif, model, 2));
    exif.bands = {{"Grey"}};
    EXPECT_FALSE(exif::compatible(exif, model, npos));
    exif.bands = kRgb;
    exif.imageHeight = 4001;
    EXPECT_FALSE(exif::compatible(exif, model, npos));
}

} // namespace
} // namespace lumo
