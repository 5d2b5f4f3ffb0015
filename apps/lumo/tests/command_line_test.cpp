// SPDX-License-Identifier: Apache-2.0
#include "program.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <cstdio>

namespace {

TEST(CommandLine, WrongUsageIsSaidAndEndsWithTwo)
{
    const struct
    {
        QStringList arguments;
        const char* said;
    } rows[] = {
        {{}, "A subcommand is required"},
        {{"identify"}, "PATH is required"},
        {{"identfy", "x.jpg"}, "'identfy' is not a command or option here"},
        {{"camdb", "lst"}, "'lst' is not a command or option here"},
        {{"identify", "--no-such-option", "x"}, "--no-such-option"},
        {{"align", "p.csv", "--outliers", "nan"}, "'nan' is not a number, 0 to 0.99"},
        {{"align", "p.csv", "--outliers", "1.5"}, "'1.5' is not a number, 0 to 0.99"},
        {{"align", "p.csv", "--seed", "-1"}, "'-1' is not a number"},
        {{"resources", "--max-cpus", "0x10"}, "'0x10' is not a number, at least 1"},
        // Options that a shell variable was meant to fill.
        {{"--data-dir", "", "camdb", "list"}, "is empty"},
        {{"align", "p.csv", "-o", ""}, "is empty"},
        {{"align", "p.csv", "--report", ""}, "is empty"},
        {{"project", "convert", "-o", "", "a.kpx"}, "is empty"},
        {{"project", "convert", "--backup", "", "a.kpx"}, "is empty"},
        {{"rig", "--save", "", "x"}, "is empty"},
        {{"sequoia", "--remove-debug-lines", "", "x"}, "is empty"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.arguments.join(' ').toStdString());
        const ProgramRun run = runProgram(row.arguments);
        EXPECT_EQ(run.exitCode, 2);
        EXPECT_EQ(run.out, "");
        EXPECT_TRUE(run.err.startsWith("lumo: ")) << run.err.toStdString();
        EXPECT_TRUE(run.err.contains(row.said)) << run.err.toStdString();
    }
}

TEST(CommandLine, NumbersAreDecimal)
{
    const ProgramRun run = runProgram({"resources", "--json", "--max-cpus", "010"});
    ASSERT_EQ(run.records().size(), 1u);
    EXPECT_EQ(run.records().front()["maxCPUs"].toInt(), 10);
}

TEST(CommandLine, OutputThatIsLostIsAFailure)
{
    for (const QStringList& arguments :
         {QStringList{"--help"}, {"camdb", "list"}, {"resources", "--json"}}) {
        const ProgramRun run = runProgram(arguments, "/dev/full");
        EXPECT_EQ(run.exitCode, 1) << arguments.join(' ').toStdString();
        EXPECT_TRUE(run.err.startsWith("lumo: standard output: ")) << run.err.toStdString();
    }
}

/// Folders with names and contents that are hard on a listing.
TEST(CommandLine, FoldersGiveWhatTheyHoldAndSayWhatTheyCannot)
{
    const QTemporaryDir folder;
    const QString image = samplePath("images/drone_fc6310.jpg");
    ASSERT_TRUE(QDir(folder.path()).mkpath("[a,b]"));
    ASSERT_TRUE(QDir(folder.path()).mkpath("a"));
    ASSERT_TRUE(QDir(folder.path()).mkpath("none"));
    ASSERT_TRUE(QFile::copy(image, folder.filePath("[a,b]/one.jpg")));
    ASSERT_TRUE(QFile::copy(image, folder.filePath("a/._one.jpg"))); // macOS's notes
    ASSERT_TRUE(QFile::link(folder.filePath("gone"), folder.filePath("a/link.jpg")));
    const QByteArray latin = QFile::encodeName(folder.filePath("a/")) + "f\xfcnf.jpg";
    FILE* const made = std::fopen(latin.constData(), "w");
    ASSERT_NE(made, nullptr);
    std::fclose(made);

    const QString before = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(folder.path()));
    const ProgramRun run = runProgram({"identify", "--json", "[a,b]", "a", "none"});
    ASSERT_TRUE(QDir::setCurrent(before));
    EXPECT_EQ(std::remove(latin.constData()), 0); // Qt, which removes the rest, does not see it
    EXPECT_EQ(run.exitCode, 1);
    const std::vector<QJsonObject> records = run.records();
    ASSERT_EQ(records.size(), 3u) << run.out.toStdString();
    EXPECT_EQ(records[0]["file"].toString(), "a/link.jpg");
    EXPECT_EQ(records[0]["error"].toString(), "The link leads nowhere");
    EXPECT_EQ(records[1]["error"].toString(), "The name is not valid UTF-8");
    EXPECT_EQ(records[2]["file"].toString(), "[a,b]/one.jpg");
    EXPECT_TRUE(run.err.contains("lumo: none: note: the folder contains no files of this kind\n"));
}

} // namespace
