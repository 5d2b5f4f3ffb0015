// SPDX-License-Identifier: Apache-2.0
#include "program.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

QStringList names(const std::vector<QJsonObject>& records)
{
    QStringList result;
    for (const QJsonObject& record : records) {
        result.append(record["file"].toString().section('/', -1));
    }
    return result;
}

TEST(Identify, AFolderGivesARecordForEachImageInOrder)
{
    const ProgramRun run = runProgram({"identify", "--json", samplePath("images")});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.err, "");
    const std::vector<QJsonObject> records = run.records();
    EXPECT_EQ(
        names(records), (QStringList{
                            "compact_portrait.jpg", "drone_fc6310.jpg", "drone_fc6310_half.jpg",
                            "flight_0001_1.tif", "flight_0001_2.tif", "flight_0001_3.tif",
                            "flight_0001_4.tif", "flight_0001_5.tif", "no_sensor_known.jpg"}));
}

TEST(Identify, ARecordSaysWhatTheImageAndTheDatabaseHold)
{
    const ProgramRun run =
        runProgram({"identify", "--json", samplePath("images/drone_fc6310_half.jpg")});
    ASSERT_EQ(run.records().size(), 1u);
    QJsonObject record = run.records().front();
    record.remove("file");
    const QString identifier = "FC6310_8.8_5472x3648";
    const QJsonObject expected{
        {"make", "DJI"},
        {"model", "FC6310"},
        {"exifId", QJsonArray{identifier, identifier}},
        {"camera", identifier},
        {"serialNumber", ""},
        {"source", "internal"},
        {"width", 2736},
        {"height", 1824},
        {"nativeWidth", 5472},
        {"nativeHeight", 3648},
        {"mode", "resized"},
        {"pixelSizeUm", 4.8},
        {"pixelSizeSigmaUm", 0.048},
        {"pixelSizeFrom", "database"},
        {"focalLengthMm", 8.8},
        {"lens", "perspective"},
        {"bands", QJsonArray{"Red", "Green", "Blue"}},
        {"disagreements", QJsonArray()},
    };
    EXPECT_EQ(record, expected);
}

TEST(Identify, ExplainNamesTheCandidateAndTheEvidenceThatWereTaken)
{
    const QString image = samplePath("images/drone_fc6310_half.jpg");
    const ProgramRun json = runProgram({"identify", "--json", "--explain", image});
    ASSERT_EQ(json.records().size(), 1u);
    const QJsonObject explained = json.records().front()["explain"].toObject();
    QStringList taken;
    for (const QJsonValue candidate : explained["candidates"].toArray()) {
        EXPECT_FALSE(candidate["rule"].toString().isEmpty());
        if (candidate["taken"].toBool()) {
            taken.append(candidate["name"].toString());
        }
    }
    for (const QJsonValue evidence : explained["evidence"].toArray()) {
        if (evidence["verdict"] == "taken") {
            taken.append(evidence["from"].toString());
            EXPECT_EQ(evidence["pixelSizeUm"].toDouble(), 2.4);
        }
    }
    EXPECT_EQ(taken, (QStringList{"FC6310_8.8_5472x3648", "database"}));

    const ProgramRun text = runProgram({"identify", "--explain", image});
    for (const char* part : {"drone_fc6310_half.jpg\n", "its name", "resized", "evidence"}) {
        EXPECT_TRUE(text.out.contains(part)) << part << " is not in\n" << text.out.toStdString();
    }
}

TEST(Identify, BadFilesAreSaidOneByOneAndTheRestIsDone)
{
    const QTemporaryDir folder;
    const auto put = [&folder](const char* name, const QByteArray& content) {
        QFile file(folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
    };
    QFile sample(samplePath("images/drone_fc6310.jpg"));
    ASSERT_TRUE(sample.open(QIODevice::ReadOnly));
    const QByteArray whole = sample.readAll();
    put("1_empty.jpg", "");
    put("2_text.jpg", "this is no picture\n");
    put("3_cut.jpg", whole.left(60));
    put("4_good.jpg", whole);
    put("5_ignored.txt", "not an image file");
    const QString missing = folder.filePath("missing.jpg");

    const ProgramRun run = runProgram({"identify", "--json", folder.path(), missing});
    EXPECT_EQ(run.exitCode, 1);
    const std::vector<QJsonObject> records = run.records();
    EXPECT_EQ(
        names(records),
        (QStringList{"missing.jpg", "1_empty.jpg", "2_text.jpg", "3_cut.jpg", "4_good.jpg"}));
    QList<QByteArray> lines = run.err.trimmed().split('\n');
    ASSERT_EQ(lines.size(), 5);
    EXPECT_TRUE(lines.takeAt(0).endsWith("note: left out 1 file of other kinds: 1 .txt"))
        << run.err.constData();
    for (int i = 0; i < lines.size(); ++i) {
        const QJsonObject& record = records[static_cast<std::size_t>(i)];
        const QString said = QStringLiteral("lumo: %1: %2")
                                 .arg(record["file"].toString(), record["error"].toString());
        EXPECT_EQ(QString::fromUtf8(lines[i]), said);
        EXPECT_FALSE(record["error"].toString().isEmpty());
    }
    EXPECT_FALSE(records.back().contains("error"));
}

TEST(Identify, HelpHasAnExample)
{
    const ProgramRun help = runProgram({"identify", "--help"});
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_TRUE(help.out.contains("Example: lumo identify"));
}

TEST(Identify, TheTableIsAligned)
{
    const ProgramRun run = runProgram({"identify", samplePath("images")});
    const QList<QByteArray> lines = run.out.split('\n');
    ASSERT_EQ(lines.size(), 11);
    const int column = lines[0].indexOf("make");
    for (int i = 1; i + 1 < lines.size(); ++i) {
        EXPECT_EQ(lines[i][column - 1], ' ') << lines[i].toStdString();
        EXPECT_NE(lines[i][column], ' ') << lines[i].toStdString();
    }
}

} // namespace
