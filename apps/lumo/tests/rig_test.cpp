// SPDX-License-Identifier: Apache-2.0
#include "program.h"

#include <QFile>
#include <QJsonArray>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <algorithm>

namespace {

TEST(Rig, ACompleteCaptureIsAssigned)
{
    const ProgramRun run = runProgram(
        {"rig", "--json", samplePath("images/flight_0001_1.tif"),
         samplePath("images/flight_0001_2.tif"), samplePath("images/flight_0001_3.tif"),
         samplePath("images/flight_0001_4.tif"), samplePath("images/flight_0001_5.tif")});
    EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
    ASSERT_EQ(run.records().size(), 1u);
    const QJsonObject record = run.records().front();
    EXPECT_EQ(record["rig"].toString(), "MicaSense RedEdge-M / RedEdge-MX");
    EXPECT_EQ(record["assignment"].toArray(), (QJsonArray{0, 1, 2, 3, 4}));
    EXPECT_EQ(record["cameras"].toArray(), (QJsonArray{"Blue", "Green", "Red", "NIR", "Red edge"}));
    EXPECT_EQ(record["source"].toString(), "internal");
    EXPECT_EQ(record["serialNumbers"].toArray().last().toString(), "RM01-0000001");
    EXPECT_FALSE(record.contains("reason"));
}

TEST(Rig, ALostBandIsSaidAndShownAsAGap)
{
    const QTemporaryDir folder;
    for (const char* name : {"flight_0001_1.tif", "flight_0001_2.tif", "flight_0001_4.tif"}) {
        ASSERT_TRUE(QFile::copy(samplePath("images/") + name, folder.filePath(name)));
    }
    ASSERT_TRUE(QFile::copy(samplePath("images/drone_fc6310.jpg"), folder.filePath("other.jpg")));
    const ProgramRun run = runProgram({"rig", "--json", folder.path()});
    EXPECT_EQ(run.exitCode, 1);
    ASSERT_EQ(run.records().size(), 2u);
    const QString reason = "MicaSense RedEdge-M / RedEdge-MX: no image of Red, Red edge";
    EXPECT_TRUE(run.records()[0]["reason"].toString().startsWith(reason));
    EXPECT_EQ(run.records()[1]["reason"].toString(), "no rig has a camera of this kind");
    EXPECT_TRUE(run.err.startsWith("lumo: Smp1Capture0001: " + reason.toUtf8()));
    EXPECT_EQ(run.err.count('\n'), 1);

    const ProgramRun matrix = runProgram({"rig", "--matrix", "--json", folder.path()});
    const QJsonObject cameras = matrix.records().front()["cameras"].toObject();
    EXPECT_EQ(cameras["NIR"].toString(), "flight_0001_4.tif");
    EXPECT_TRUE(cameras["Red edge"].isNull());
    EXPECT_EQ(cameras.size(), 5);
}

TEST(Rig, NoRigIsSavedWhereAnImageCannotBeRead)
{
    const QTemporaryDir folder;
    for (int band = 1; band <= 5; ++band) {
        const QString name = QStringLiteral("flight_0001_%1.tif").arg(band);
        ASSERT_TRUE(QFile::copy(samplePath("images/") + name, folder.filePath(name)));
    }
    ASSERT_TRUE(QFile::resize(folder.filePath("flight_0001_3.tif"), 20));
    const QStringList data{"--data-dir", folder.filePath("data")};
    const ProgramRun run = runProgram(data + QStringList{"rig", "--save", "Four", folder.path()});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(run.err.contains("lumo: Four: not saved")) << run.err.toStdString();
    EXPECT_EQ(runProgram(data + QStringList{"camdb", "show", "Four"}).exitCode, 1);
}

TEST(Rig, TheImagesOwnPosesMakeAUserRig)
{
    const QTemporaryDir folder;
    const auto run = [&folder](const QStringList& arguments) {
        return runProgram(QStringList{"--data-dir", folder.path()} + arguments);
    };
    const ProgramRun saved = run({"rig", "--save", "Mine", samplePath("images")});
    EXPECT_EQ(saved.exitCode, 0) << saved.err.toStdString();
    EXPECT_EQ(saved.out, "Mine: 5 cameras\n");
    const ProgramRun again = run({"rig", "--json", "--save", "Mine", samplePath("images")});
    EXPECT_EQ(again.exitCode, 1);
    EXPECT_TRUE(again.records().front()["error"].toString().startsWith("exists already"));
    EXPECT_EQ(run({"rig", "--overwrite", "--save", "Mine", samplePath("images")}).exitCode, 0);
    const QJsonObject rig = run({"camdb", "show", "Mine", "--json"}).records().front();
    EXPECT_EQ(rig["referenceCamera"].toInt(), 1);
    const QJsonArray cameras = rig["cameras"].toArray();
    EXPECT_EQ(cameras[2].toObject()["rotationDeg"].toArray(), (QJsonArray{-0.25, 0.0, 0.1}));
    EXPECT_FALSE(cameras[1].toObject().contains("rotationDeg"));

    const std::vector<QJsonObject> found = run({"rig", "--json", samplePath("images")}).records();
    const auto capture = std::find_if(found.begin(), found.end(), [](const QJsonObject& record) {
        return record["capture"].toString() == "Smp1Capture0001";
    });
    ASSERT_NE(capture, found.end());
    EXPECT_EQ((*capture)["rig"].toString(), "Mine");
    EXPECT_EQ((*capture)["source"].toString(), "user");
    EXPECT_TRUE((*capture)["serialMatched"].toBool());
}

} // namespace
