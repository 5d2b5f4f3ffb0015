// SPDX-License-Identifier: Apache-2.0
#include "program.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <cmath>

namespace {

class Align : public testing::Test
{
protected:
    QString write(const QByteArray& table)
    {
        QFile file(m_folder.filePath("points.csv"));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(table) == table.size());
        return file.fileName();
    }
    QByteArray read(const QString& name) const
    {
        QFile file(m_folder.filePath(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    QTemporaryDir m_folder;
};

/// Set 1 is set 2 turned by 90 degrees about z (x -> y, y -> -x), twice as large
/// and moved by (100, 200, 300); the sixth pair is wrong.
constexpr const char* kTurned = "x1,y1,z1,x2,y2,z2\n"
                                "100,200,300,0,0,0\n100,220,300,10,0,0\n80,200,300,0,10,0\n"
                                "100,200,320,0,0,10\n80,220,320,10,10,10\n0,0,0,3,4,5\n"
                                "88,214,304,7,6,2\n92,208,310,4,4,5\n";

TEST_F(Align, GivesTheTransformOfSet2OntoSet1)
{
    const QString points = write(kTurned);
    const ProgramRun run = runProgram(
        {"align", "--json", points, "-o", m_folder.filePath("out.json"), "--report",
         m_folder.filePath("out.html")});
    EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
    ASSERT_EQ(run.records().size(), 1u);
    const QJsonObject record = run.records().front();
    EXPECT_NEAR(record["scale"].toDouble(), 2.0, 1e-9);
    EXPECT_NEAR(record["translation"].toArray()[1].toDouble(), 200.0, 1e-9);
    const double rotation[3][3] = {{0, -1, 0}, {1, 0, 0}, {0, 0, 1}};
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column) {
            EXPECT_NEAR(
                record["rotation"].toArray()[row].toArray()[column].toDouble(),
                rotation[row][column], 1e-9);
        }
    }
    EXPECT_NEAR(record["omegaPhiKappa"].toArray()[2].toDouble(), -M_PI_2, 1e-9);
    ASSERT_EQ(record["weights"].toArray().size(), 8);
    for (int i = 0; i < 8; ++i) {
        EXPECT_EQ(record["weights"].toArray()[i].toDouble() >= 0.5, i != 5) << i;
    }
    EXPECT_EQ(record["degeneracy"].toString(), "none");
    EXPECT_EQ(QJsonDocument::fromJson(read("out.json")).object(), record);
    EXPECT_TRUE(read("out.html").contains("\"title\":\"points.csv\""));
}

TEST_F(Align, AFreeRollIsRefusedUnlessForced)
{
    const QString points = write("x1,y1,z1,x2,y2,z2\n0,0,0,5,5,5\n1,1,1,6,6,6\n2,2,2,7,7,7\n"
                                 "3,3,3,8,8,8\n4,4,4,9,9,9\n5,5,5,10,10,10\n");
    const ProgramRun refused = runProgram({"align", "--json", points});
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_TRUE(refused.err.startsWith("lumo: " + points.toUtf8() + ": collinear: "));
    ASSERT_EQ(refused.records().size(), 1u);
    EXPECT_EQ(refused.records().front()["degeneracy"].toString(), "collinear");
    EXPECT_FALSE(refused.records().front().contains("scale"));
    const ProgramRun forced = runProgram({"align", "--json", "--force", points});
    EXPECT_EQ(forced.exitCode, 0);
    ASSERT_EQ(forced.records().size(), 1u);
    EXPECT_NEAR(forced.records().front()["scale"].toDouble(), 1.0, 1e-9);
    EXPECT_TRUE(forced.err.contains("collinear"));
    EXPECT_FALSE(forced.err.contains("wrong"));
    // Of four pairs the last is wrong: nothing tells which, nor the shape.
    const ProgramRun four = runProgram(
        {"align", write("x1,y1,z1,x2,y2,z2\n0,0,0,5,5,5\n9,0,0,14,5,5\n0,9,0,5,14,5\n"
                        "0,0,9,-70,30,90\n")});
    EXPECT_EQ(four.exitCode, 1);
    EXPECT_TRUE(four.err.contains("(or one of the pairs is wrong: among fewer than 5 that is "
                                  "not found)"));
}

TEST_F(Align, NothingThatIsReadOrWrittenIsWrittenOver)
{
    const QString points = write(kTurned);
    const QString link = m_folder.filePath("link.csv");
    ASSERT_TRUE(QFile::link(points, link));
    const QString out = m_folder.filePath("out");
    for (const QStringList& outputs :
         {QStringList{"-o", points}, {"--report", link}, {"-o", out, "--report", out}}) {
        const ProgramRun run = runProgram(QStringList{"align", points} + outputs);
        EXPECT_EQ(run.exitCode, 1) << outputs.join(' ').toStdString();
        EXPECT_TRUE(run.err.contains("is given twice: this run would overwrite it"));
        EXPECT_EQ(read("points.csv"), kTurned);
        EXPECT_FALSE(QFile::exists(out));
    }
}

TEST_F(Align, BadInputIsRefusedWithItsLine)
{
    EXPECT_EQ(runProgram({"align", m_folder.filePath("none.csv")}).exitCode, 1);
    const QString points = write("x1,y1,z1,x2,y2,z2\n1,2,3,4,5,6\n1,2,3,4,5,nan\n");
    const ProgramRun run = runProgram({"align", points, "-o", m_folder.filePath("out.json")});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.err, "lumo: " + points.toUtf8() + ": line 3: z2 'nan' is not a number\n");
    EXPECT_TRUE(run.out.isEmpty());
    EXPECT_FALSE(QFile::exists(m_folder.filePath("out.json")));
    EXPECT_EQ(runProgram({"align", write(""), "--json"}).exitCode, 1);
}

} // namespace
