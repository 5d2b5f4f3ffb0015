// SPDX-License-Identifier: Apache-2.0
#include "lumo/cameradata/exif_info.h"
#include "lumo/core/cameraInfo/text_db.h"
#include "random_database.h"
#include "test_seed.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace lumo::cameradb {
namespace {

TEST(TextDB, WhatIsWrittenReadsBackEqualAndIsWrittenAlike)
{
    RandomData random(testSeed());
    for (int trial = 0; trial < 200; ++trial) {
        SCOPED_TRACE(trial);
        const CameraDBData data = random.next();
        const QString text = writeTextDB(data);
        CameraDBData back = random.next();
        QString error;
        ASSERT_TRUE(readTextDB(text, back, error)) << qPrintable(error) << '\n' << qPrintable(text);
        expectEqual(data, back);
        ASSERT_EQ(writeTextDB(back), text);
    }
}

TEST(TextDB, WhatReadingWouldRefuseIsNotWritten)
{
    CameraDBData data;
    CameraModelFromDB camera;
    camera.params.name = QStringLiteral("A");
    data.cameras.emplace(camera.params.name, camera); // no image size
    camera.params.setImageSize(4, 3);
    camera.params.pixelSize = 0.001;
    camera.params.lensType = LensType::Spherical;
    camera.params.perspective.focalLengthMm =
        std::numeric_limits<double>::quiet_NaN(); // not in use
    data.cameras.emplace(camera.params.name, camera);
    data.cameras.emplace(camera.params.name, camera); // twice
    RigModel rig(QStringLiteral("R"));
    rig.refCamera = RigModelCameraAttr(QString(), {}, QStringLiteral("A"));
    rig.secondaries = {{rig.refCamera, {}}};
    rig.secondaries[0].relatives.rotX = std::numeric_limits<double>::infinity();
    data.rigs.emplace(rig.name, rig);
    data.mappings = {{QString(), QStringLiteral("A")}, {QStringLiteral("B"), QString()}};

    CameraDBData back;
    QString error;
    ASSERT_TRUE(readTextDB(writeTextDB(data), back, error)) << qPrintable(error);
    EXPECT_EQ(back.cameras.size(), 1u);
    EXPECT_TRUE(back.rigs.empty());
    EXPECT_TRUE(back.mappings.empty());
}

/// A small file with every section.
QString smallText()
{
    return QStringLiteral(
        "lumo camera database,1\n"
        "# a \"comment\"\n"
        "[cameras]\n"
        "name,imageWidthPx,imageHeightPx,pixelSizeUm,lensType,focalLengthMm,fisheyeCPx,facts\n"
        "A,4000,3000,1.55,,3.61,,\"seen, once\"\n"
        "Größe,1280,960,3.75,fisheye,,1667,\n"
        "[bands]\n"
        "camera,config,name,wavelengthNm\n"
        "A,0,Green,550\n"
        "A,0,NIR,790\n"
        "[vignetting]\n"
        "camera,fNumber,rowCount,coefficients\n"
        "A,2.8,2,\"1,2,3,4\"\n"
        "[pixelValues]\n"
        "camera,pixelType,min,max\n"
        "A,uint16,0,65535\n"
        "[mappings]\n"
        "exifId,camera\n"
        "B,A\n"
        "[rigs]\n"
        "name,referenceCamera\n"
        "R,1\n"
        "[rigCameras]\n"
        "rig,name,exifString,rotXDeg\n"
        "R,left,A,0.5\n"
        "R,right,A,\n"
        "[rigBands]\n"
        "rig,camera,name\n"
        "R,1,NIR\n"
        "[end]\n");
}

TEST(TextDB, CellsReachTheirFieldsInTheirUnits)
{
    CameraDBData data;
    QString error;
    ASSERT_TRUE(readTextDB(smallText(), data, error)) << qPrintable(error);
    const CameraModelFromDB& model = data.cameras.find("A")->second;
    EXPECT_DOUBLE_EQ(model.params.pixelSize, 0.00155);
    EXPECT_EQ(model.params.perspective.focalLengthMm, 3.61);
    EXPECT_EQ(model.params.perspective.distortion, 6);
    EXPECT_EQ(model.bandConfigs, (std::vector<bands_t>{{{"Green", 550}, {"NIR", 790}}}));
    EXPECT_EQ(
        model.params.vignetting.at(280).coefficients, (Eigen::Matrix2d() << 1, 3, 2, 4).finished());
    EXPECT_EQ(model.params.pixelValues.at(DataType::UInt16), (PixelValueRange{0, 65535}));
    const CameraModelFromDB& fisheye = data.cameras.find(QStringLiteral("Größe"))->second;
    EXPECT_EQ(fisheye.params.fisheye.f, 1667); // as symmetric lenses have it
    EXPECT_EQ(fisheye.bandConfigs, (std::vector<bands_t>{band::makeRGBBands()}));
    EXPECT_EQ(data.mappings.at("B"), "A");
    const RigModel& rig = data.rigs.at("R");
    EXPECT_EQ(rig.refCamera.name, "right");
    EXPECT_EQ(rig.refCamera.bands().names(), QStringList{"NIR"});
    EXPECT_EQ(rig.secondaries.at(0).relatives.rotX, 0.5);
    EXPECT_EQ(rig.secondaries.at(0).relatives.tolRotX, rig_relatives_t::kDefaultTolerance);
}

TEST(TextDB, WhatASpreadsheetSavesReadsAlike)
{
    CameraDBData expected;
    QString error;
    ASSERT_TRUE(readTextDB(smallText(), expected, error)) << qPrintable(error);
    QString saved = smallText();
    saved.replace("B,A\n", "\"B\",\"A\"\n").replace("name,referenceCamera", "referenceCamera,name");
    saved.replace("R,1\n[", "1,R\n[").replace("3.61", " 3.61 ");
    saved.replace("\n", ",,\r\n").replace("[bands]", ",,,,,\r\n\r\n[bands]");
    CameraDBData data;
    ASSERT_TRUE(readTextDB(QChar(QChar::ByteOrderMark) + saved, data, error)) << qPrintable(error);
    EXPECT_EQ(writeTextDB(data), writeTextDB(expected));
}

struct BadText
{
    const char* name;
    const char* before; ///< part of smallText()
    const char* after;  ///< what stands there instead
    const char* error;
};

class TextDBBadText : public testing::TestWithParam<BadText>
{};

TEST_P(TextDBBadText, NamesThePlaceAndLeavesTheDataAlone)
{
    QString text = smallText();
    const QString before = QString::fromUtf8(GetParam().before);
    ASSERT_TRUE(text.contains(before));
    text.replace(text.indexOf(before), before.size(), QString::fromUtf8(GetParam().after));
    CameraDBData data;
    data.mappings.emplace("before", "before");
    QString error = QStringLiteral("none");
    EXPECT_FALSE(readTextDB(text, data, error));
    EXPECT_EQ(error.toStdString(), GetParam().error);
    EXPECT_EQ(data.mappings.count("before"), 1u);
    EXPECT_TRUE(data.cameras.empty());
}

INSTANTIATE_TEST_SUITE_P(
    Table, TextDBBadText,
    testing::Values(
        BadText{
            "Title", "lumo", "LUMO",
            "line 1, column 1: the first line is not 'lumo camera database,1'"},
        BadText{
            "NewerVersion", "database,1", "database,2",
            "line 1, column 22: version 2 is higher than 1, the current one"},
        BadText{
            "Version", "database,1", "database,x",
            "line 1, column 22: version 'x' is not a version"},
        BadText{"NoSection", "[cameras]", "", "line 4, column 1: a row outside of any section"},
        BadText{
            "UnknownSection", "[cameras]", "[lenses]",
            "line 3, column 1: unknown section '[lenses]'"},
        BadText{
            "SectionTwice", "[mappings]", "[cameras]",
            "line 17, column 1: section '[cameras]' occurs twice"},
        BadText{
            "NoColumns", "exifId,camera\nB,A\n", "",
            "line 18, column 1: the section has no row of column names"},
        BadText{
            "UnknownColumn", "focalLengthMm", "focalLength",
            "line 4, column 54: unknown column 'focalLength'"},
        BadText{"ColumnTwice", "lensType", "name", "line 4, column 45: column 'name' occurs twice"},
        BadText{
            "ColumnMissing", "camera,pixelType,", "camera,",
            "line 15, column 1: column 'pixelType' is missing"},
        BadText{
            "TooManyCells", "B,A", "B,A,C",
            "line 19, column 5: more cells than the section's 2 columns"},
        BadText{"EmptyCell", "A,uint16,0,", "A,uint16,,", "line 16, column 1: min is empty"},
        BadText{
            "DecimalComma", "3.61", "3,61",
            "line 5, column 25: more cells than the section's 8 columns"},
        BadText{
            "NumberAndMore", "3.61", "3.61mm",
            "line 5, column 19: focalLengthMm '3.61mm' is not a number"},
        BadText{"Nan", "550", "nan", "line 9, column 11: wavelengthNm 'nan' is not a number"},
        BadText{
            "Fraction", "4000", "4000.5",
            "line 5, column 3: imageWidthPx '4000.5' is not a whole number of 0 or more"},
        BadText{
            "Negative", "4000", "-1",
            "line 5, column 3: imageWidthPx '-1' is not a whole number of 0 or more"},
        BadText{
            "LensType", "fisheye,,", "tele,,",
            "line 6, column 21: lensType 'tele' is not perspective, fisheye or spherical"},
        BadText{
            "OtherLens", "fisheye,,", "fisheye,2,",
            "line 6, column 29: focalLengthMm '2' does not apply to this lens type"},
        BadText{
            "InvalidCamera", "1.55", "0",
            "line 5, column 1: camera 'A': The pixel size is not positive"},
        BadText{"CameraName", "\nA,4000", "\na/b,4000", "line 9, column 1: there is no camera 'A'"},
        BadText{
            "InvalidBands", "NIR,790", "green,790",
            "line 5, column 1: camera 'A': Two bands are named 'green'"},
        BadText{"CameraTwice", "Größe", "A", "line 6, column 1: camera 'A' occurs twice"},
        BadText{"UnknownCamera", "A,0,NIR", "C,0,NIR", "line 10, column 1: there is no camera 'C'"},
        BadText{"ConfigGap", "A,0,NIR", "A,2,NIR", "line 10, column 1: config 2 without config 1"},
        BadText{
            "FNumber", "2.8,", "2.855,",
            "line 13, column 1: fNumber has more than two decimals or is too large"},
        BadText{
            "FNumberTwice", "\"1,2,3,4\"", "1\nA,2.80,,2",
            "line 13, column 1: 1 coefficients do not fill 2 rows"},
        BadText{
            "Coefficients", "3,4\"", "3,\"", "line 13, column 1: coefficients: '' is not a number"},
        BadText{
            "PixelValuesTwice", "65535\n", "65535\nA,uint16,0,1\n",
            "line 17, column 1: pixelType of camera 'A' occurs twice"},
        BadText{
            "PixelValues", "A,uint16,0,", "A,uint16,70000,",
            "line 5, column 1: camera 'A': The pixel value range is invalid: "
            "minimum 70000 exceeds maximum 65535"},
        BadText{
            "MappingTwice", "B,A\n", "B,A\nB,C\n", "line 20, column 1: exifId 'B' occurs twice"},
        BadText{"RigTwice", "R,1\n[", "R,1\nR,0\n[", "line 23, column 1: rig 'R' occurs twice"},
        BadText{"UnknownRig", "R,left", "Q,left", "line 25, column 1: there is no rig 'Q'"},
        BadText{
            "RigBandCamera", "R,1,NIR", "R,2,NIR", "line 29, column 1: rig 'R' has no camera 2"},
        BadText{
            "ReferenceCamera", "R,1\n[", "R,2\n[",
            "line 22, column 1: rig 'R': There is no reference camera 2 among 2 cameras"},
        BadText{
            "ReferencePose", "R,1\n[", "R,0\n[",
            "line 22, column 1: rig 'R': The reference camera has a pose, but poses are relative "
            "to it"},
        BadText{
            "RigExif", "left,A", "left,",
            "line 22, column 1: rig 'R': An enabled camera has no EXIF string"},
        BadText{
            "RigOfOne",
            "referenceCamera\nR,1\n[rigCameras]\nrig,name,exifString,rotXDeg\nR,left,A,0.5\n",
            "detection\nR,\n[rigCameras]\nrig,name,exifString,rotXDeg\n",
            "line 28, column 1: rig 'R' has no camera 1"},
        BadText{
            "OpenQuote", "once\"", "once",
            "line 13, column 10: text behind the closing quote of a cell"},
        BadText{
            "StrayQuote", "Größe", "Grö\"ße",
            "line 6, column 4: a quote inside a cell that does not begin with one"},
        BadText{"AfterTheEnd", "[end]\n", "[end]\nA\n", "line 31, column 1: a row after '[end]'"}),
    [](const auto& tested) { return std::string(tested.param.name); });

/// Writes files and loads them.
class TextDBFile : public testing::Test
{
protected:
    /// The error, less the path; empty on success.
    QString load(const QByteArray& bytes)
    {
        QFile file(m_path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        file.close();
        QString error;
        if (loadTextDB(m_path, m_data, error)) {
            return {};
        }
        EXPECT_TRUE(error.startsWith(m_path + QStringLiteral(": "))) << qPrintable(error);
        return error.mid(m_path.size() + 2);
    }

    QTemporaryDir m_folder;
    QString m_path = m_folder.filePath(QStringLiteral("db.csv"));
    CameraDBData m_data;
};

TEST_F(TextDBFile, CutOffAnywhereIsRefusedWhole)
{
    const QByteArray whole = smallText().toUtf8();
    EXPECT_EQ(
        load(whole.left(whole.indexOf("[mappings]"))),
        "line 17, column 1: the last line, '[end]', is missing: the text was cut off");
    EXPECT_EQ(load(whole.chopped(1)), ""); // only the last line's end is missing
    EXPECT_EQ(m_data.cameras.size(), 2u);

    m_data = {};
    for (int size = whole.size() - 2; size >= 0; --size) {
        ASSERT_TRUE(QFile::resize(m_path, size));
        QString error;
        ASSERT_FALSE(loadTextDB(m_path, m_data, error)) << size;
        ASSERT_TRUE(m_data.empty()) << size;
    }
}

TEST_F(TextDBFile, BytesThatAreNoTextAreRefused)
{
    QByteArray bytes = smallText().toUtf8();
    EXPECT_EQ(
        load(QByteArray(bytes).replace("Gr\xC3\xB6", "Gr\xF6")), "line 6, column 3: not UTF-8");
    EXPECT_EQ(
        load(bytes.insert(bytes.indexOf("[bands]") + 1, '\0')),
        "line 7, column 2: a NUL character");

    QFile file(m_path);
    ASSERT_TRUE(file.resize(qint64(256) * 1024 * 1024 + 1));
    QString error;
    EXPECT_FALSE(loadTextDB(m_path, m_data, error));
    EXPECT_EQ(error, m_path + ": larger than 256 MiB");
    ASSERT_TRUE(file.remove());
    EXPECT_FALSE(loadTextDB(m_path, m_data, error));
    EXPECT_EQ(error, m_path + ": No such file or directory");
    EXPECT_TRUE(m_data.empty());
}

TEST(ShippedTextDB, HoldsValidCamerasThatFindThemselves)
{
    CameraDBData data;
    QString error;
    ASSERT_TRUE(loadTextDB(shippedTextDBPath(), data, error)) << qPrintable(error);
    EXPECT_GT(data.cameras.size(), 100u);
    EXPECT_GT(data.rigs.size(), 5u);
    for (const auto& [name, model] : data.cameras) {
        SCOPED_TRACE(qPrintable(name));
        EXPECT_EQ(model.params.source, CameraSource::InternalDatabase);
        EXPECT_TRUE(model.serialNumber.isEmpty());
        const QStringList tokens = tokenizeExifId(name);
        ASSERT_EQ(tokens.size(), 5);
        EXPECT_TRUE(model.params.equalImageSize(tokens[3].toULong(), tokens[4].toULong()));
        // Sensors are between a millimetre and medium format wide.
        const double widthMm = model.params.pixel2mm(double(model.params.imageWidth));
        EXPECT_GT(widthMm, 1.0);
        EXPECT_LT(widthMm, 60.0);
    }
    for (const auto& [exifId, name] : data.mappings) {
        EXPECT_EQ(data.cameras.count(name), 1u) << qPrintable(exifId);
        EXPECT_EQ(data.cameras.count(exifId), 0u) << qPrintable(exifId);
    }
    for (const auto& [name, rig] : data.rigs) {
        for (std::size_t i = 0; i < rig.cameraCount(); ++i) {
            EXPECT_EQ(tokenizeExifId(rig.attr(i)[RigKey::ExifString]).size(), 5)
                << qPrintable(name) << ' ' << i;
        }
    }
}

} // namespace
} // namespace lumo::cameradb
