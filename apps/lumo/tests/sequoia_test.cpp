// SPDX-License-Identifier: Apache-2.0
#include "program.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

const QString kRaw = "IMG_260504_101112_0000_GRE.TIF";

TEST(Sequoia, ARecordSaysWhatADeviceHasAndLacks)
{
    const QString folder = samplePath("sequoia");
    QJsonObject expected{
        {"serialNumber", "PS01-0000001"},
        {"kind", "multispectral"},
        {"directories", QJsonArray{folder}},
        {"images", QJsonObject{{"multispectral", 2}, {"rgb", 1}}},
        {"mixed", true},
        {"missingIrradiance", 2},
        {"calibrationFile", folder + "/sequoia_therm.dat"},
        {"calibrationMissing", false},
    };
    const ProgramRun run =
        runProgram({"sequoia", "--json", folder, samplePath("images/drone_fc6310.jpg")});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(run.records(), std::vector<QJsonObject>{expected});

    const QTemporaryDir elsewhere;
    const QString lone = elsewhere.filePath(kRaw);
    ASSERT_TRUE(QFile::copy(folder + "/" + kRaw, lone));
    expected["directories"] = QJsonArray{elsewhere.path()};
    expected["images"] = QJsonObject{{"multispectral", 1}, {"rgb", 0}};
    expected["mixed"] = false;
    expected["missingIrradiance"] = 0;
    expected["calibrationFile"] = "";
    expected["calibrationMissing"] = true;
    EXPECT_EQ(
        runProgram({"sequoia", "--json", lone}).records(), std::vector<QJsonObject>{expected});
}

TEST(Sequoia, CutCopiesKeepTheMetadataAndAreNeverOverwritten)
{
    const QTemporaryDir root;
    const QString output = root.filePath("made/cut");
    const QStringList command{
        "sequoia", "--json", "--remove-debug-lines", output, samplePath("sequoia")};
    const ProgramRun run = runProgram(command);
    EXPECT_EQ(run.exitCode, 0) << run.err.data();
    const QString copy = output + "/" + kRaw;
    const QString original = samplePath("sequoia/" + kRaw);
    ASSERT_EQ(run.records().size(), 2u);
    EXPECT_EQ(run.records()[1], (QJsonObject{{"file", original}, {"output", copy}}));
    EXPECT_EQ(QDir(output).entryList(QDir::Files | QDir::Hidden), QStringList{kRaw});

    const auto identified = [](const QString& path) {
        QJsonObject record = runProgram({"identify", "--json", path}).records().at(0);
        record.remove("file");
        return record;
    };
    QJsonObject raw = identified(original);
    EXPECT_EQ(raw["height"], 960);
    EXPECT_EQ(raw["nativeHeight"], 970);
    const QJsonObject cut = identified(copy);
    EXPECT_EQ(cut["nativeHeight"], 960);
    raw["nativeHeight"] = 960;
    raw["exifId"] = cut["exifId"];
    EXPECT_EQ(cut, raw);
    const QJsonObject device = runProgram({"sequoia", "--json", copy}).records().at(0);
    EXPECT_EQ(device["missingIrradiance"], 0);

    const ProgramRun again = runProgram(command);
    EXPECT_EQ(again.exitCode, 1);
    EXPECT_EQ(
        again.err, QStringLiteral("lumo: %1: %2: already exists\n").arg(original, copy).toUtf8());
}

} // namespace
