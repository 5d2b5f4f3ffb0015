// SPDX-License-Identifier: Apache-2.0
#include "program.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

class ProjectCommand : public testing::Test
{
protected:
    /// A copy of a sample under a name that is hard on paths.
    QString copyOf(const char* sample)
    {
        QString path = m_folder.filePath(
            "site #1 %20 \u00fc" + QString(sample).mid(QString(sample).lastIndexOf('.')));
        EXPECT_TRUE(QFile::copy(samplePath(sample), path));
        return path;
    }
    static QByteArray read(const QString& path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    static void write(const QString& path, const QByteArray& content)
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
    }
    ProgramRun run(const QStringList& arguments) const
    {
        return runProgram(
            QStringList{"project", "--data-dir", m_folder.filePath("data")} + arguments);
    }
    QStringList files() const
    {
        return QDir(m_folder.path()).entryList(QDir::Files | QDir::NoDotAndDotDot);
    }

    QTemporaryDir m_folder;
};

TEST_F(ProjectCommand, InfoSaysTheVersionsAndWhatIsToBeDone)
{
    const ProgramRun run = this->run(
        {"info", "--json", samplePath("projects/drone_2.0.kpx"),
         samplePath("templates/quick_format_3.tmpl"), samplePath("projects/refused")});
    EXPECT_EQ(run.exitCode, 1); // a test version is among the refused
    ASSERT_GT(run.records().size(), 2u);
    const QJsonObject drone = run.records()[0];
    EXPECT_EQ(drone["kind"].toString(), "project");
    EXPECT_EQ(drone["projectVersion"].toString(), "2.0");
    EXPECT_EQ(drone["kpxVersion"].toInt(-1), 0);
    EXPECT_EQ(drone["steps"].toArray().size(), 4);
    EXPECT_FALSE(drone["newer"].toBool(true));
    EXPECT_EQ(run.records()[1]["kind"].toString(), "template");
    EXPECT_TRUE(run.records()[1]["steps"].toArray().isEmpty());
    EXPECT_TRUE(run.err.contains("Project generated with 2.1 beta version."));
}

TEST_F(ProjectCommand, ConvertInPlaceKeepsABackup)
{
    const QString file = copyOf("projects/drone_2.0.kpx");
    const QByteArray before = read(file);
    const ProgramRun converted = run({"convert", "--json", file});
    EXPECT_EQ(converted.exitCode, 0) << converted.err.toStdString();
    ASSERT_EQ(converted.records().size(), 1u);
    const QString backup = converted.records()[0]["backup"].toString();
    EXPECT_EQ(backup, m_folder.filePath("site #1 %20 \u00fc_backup_2.0.kpx"));
    EXPECT_EQ(read(backup), before);
    EXPECT_NE(read(file), before);
    EXPECT_EQ(run({"validate", file}).exitCode, 0);
    EXPECT_EQ(run({"convert", file}).exitCode, 0); // nothing is left to be done

    // An older file of the same version, but not the same, is not given up.
    write(file, before + "<!-- changed -->");
    const ProgramRun refused = run({"convert", file});
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_TRUE(refused.err.contains("a different backup exists at")) << refused.err.toStdString();
    EXPECT_EQ(read(file), before + "<!-- changed -->");
    EXPECT_EQ(run({"convert", file, "--backup", m_folder.filePath("mine.kpx")}).exitCode, 0);
    EXPECT_EQ(read(m_folder.filePath("mine.kpx")), before + "<!-- changed -->");
    EXPECT_EQ(read(backup), before);
}

TEST_F(ProjectCommand, NoBackupIsTheFileItself)
{
    const QString file = copyOf("projects/field_2.1.43.kpx");
    const QByteArray before = read(file);
    const QString link = m_folder.filePath("link.kpx");
    ASSERT_TRUE(QFile::link(file, link));
    for (const QString& backup : {file, link, m_folder.path()}) {
        for (const QStringList& dry : {QStringList(), {"--dry-run"}}) {
            const ProgramRun run =
                this->run(QStringList{"convert", "--backup", backup, file} + dry);
            EXPECT_EQ(run.exitCode, 1);
            EXPECT_TRUE(run.err.contains("would be the file itself")) << run.err.toStdString();
        }
    }
    EXPECT_EQ(read(file), before);
}

TEST_F(ProjectCommand, BackupsInAFolderStayWhatTheyAre)
{
    copyOf("projects/field_2.1.43.kpx");
    EXPECT_EQ(run({"convert", m_folder.path()}).exitCode, 0);
    const QStringList after = files();
    ASSERT_EQ(after.size(), 2);
    const QByteArray backup = read(m_folder.filePath(after[1]));
    EXPECT_EQ(run({"convert", m_folder.path()}).exitCode, 0);
    EXPECT_EQ(files(), after);
    EXPECT_EQ(read(m_folder.filePath(after[1])), backup);
}

TEST_F(ProjectCommand, AnOutputFolderGetsWhatNeedsNoConversionToo)
{
    const QString folder = m_folder.filePath("out");
    ASSERT_TRUE(QDir(m_folder.path()).mkdir("out"));
    const ProgramRun run = this->run(
        {"convert", "--json", "-o", folder, samplePath("projects/field_2.1.43.kpx"),
         samplePath("projects/drone_format_3.kpx")});
    EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
    ASSERT_EQ(run.records().size(), 2u);
    EXPECT_EQ(run.records()[1]["output"].toString(), folder + "/drone_format_3.kpx");
    EXPECT_EQ(
        read(folder + "/drone_format_3.kpx"), read(samplePath("projects/drone_format_3.kpx")));
    EXPECT_EQ(this->run({"validate", folder}).exitCode, 0);
}

TEST_F(ProjectCommand, ALinkStaysOneAndItsTargetIsConverted)
{
    const QString file = copyOf("projects/field_2.1.43.kpx");
    const QString link = m_folder.filePath("link.kpx");
    ASSERT_TRUE(QFile::link(file, link));
    EXPECT_EQ(run({"convert", link}).exitCode, 0);
    EXPECT_TRUE(QFileInfo(link).isSymLink());
    EXPECT_EQ(run({"validate", file}).exitCode, 0);
    EXPECT_EQ(
        read(m_folder.filePath("link_backup_2.1.43.kpx")),
        read(samplePath("projects/field_2.1.43.kpx")));
}

TEST_F(ProjectCommand, ADryRunSaysWhatWouldBeDoneAndWritesNothing)
{
    const QString file = copyOf("projects/drone_2.0.kpx");
    const QByteArray before = read(file);
    const ProgramRun run = this->run({"convert", "--dry-run", "--json", file});
    EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
    ASSERT_EQ(run.records().size(), 1u);
    EXPECT_TRUE(run.records()[0]["valid"].toBool());
    const QJsonArray steps = run.records()[0]["steps"].toArray();
    ASSERT_EQ(steps.size(), 4);
    QStringList dropped;
    for (const QJsonValue change : steps[0].toObject()["changes"].toArray()) {
        if (change.toObject()["kind"].toString() == "dropped") {
            dropped << change.toObject()["what"].toString();
        }
    }
    EXPECT_TRUE(dropped.contains("denseSamplingScale"));
    EXPECT_EQ(read(file), before);
    EXPECT_EQ(files().size(), 1);
}

TEST_F(ProjectCommand, WhatCannotBeConvertedIsSaidAndLeftAlone)
{
    const QString file = copyOf("projects/drone_format_3.kpx");
    const QByteArray newer =
        read(file).replace("<kpxVersion>3</kpxVersion>", "<kpxVersion>7</kpxVersion>");
    write(file, newer);
    const ProgramRun run = this->run({"convert", file, samplePath("projects/none.kpx")});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(run.err.contains("has format version 7, newer than the requested version 3"))
        << run.err.toStdString();
    EXPECT_TRUE(run.err.contains("none.kpx: No such file or folder"));
    EXPECT_EQ(read(file), newer);
    EXPECT_EQ(files().size(), 1);
    EXPECT_EQ(this->run({"convert", file, "--target", "4"}).exitCode, 2);
}

TEST_F(ProjectCommand, AFileThatIsNoXmlIsSaidWithItsLine)
{
    const QString file = m_folder.filePath("cut.kpx");
    write(file, "<lumodesk>\n<software>\n");
    const ProgramRun run = this->run({"info", "--json", file});
    EXPECT_EQ(run.exitCode, 1);
    ASSERT_EQ(run.records().size(), 1u);
    EXPECT_TRUE(run.records()[0]["error"].toString().startsWith(
        "Could not read XML from input file: line 3: "))
        << run.out.toStdString();
}

TEST_F(ProjectCommand, TemplatesOfAFolderAreKeptInTheDataFolder)
{
    const QString first = copyOf("templates/quick_2.0.tmpl");
    ASSERT_TRUE(
        QFile::copy(samplePath("templates/quick_format_1.tmpl"), m_folder.filePath("one.tmpl")));
    const ProgramRun run = this->run({"convert", m_folder.path()});
    EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
    EXPECT_EQ(
        read(m_folder.filePath("data/templates_backups20/site #1 %20 \u00fc.tmpl")),
        read(samplePath("templates/quick_2.0.tmpl")));
    EXPECT_EQ(
        read(m_folder.filePath("data/templates_backups21/one.tmpl")),
        read(samplePath("templates/quick_format_1.tmpl")));
    EXPECT_EQ(this->run({"validate", first, m_folder.filePath("one.tmpl")}).exitCode, 0);
}

TEST_F(ProjectCommand, WithoutABackupNothingIsSaidOfOne)
{
    const QString file = copyOf("templates/quick_format_1.tmpl");
    EXPECT_EQ(run({"convert", "-o", m_folder.filePath("out.tmpl"), file}).err, "");
    EXPECT_EQ(run({"convert", "--backup", "none", file}).err, "");
    EXPECT_FALSE(QDir(m_folder.filePath("data/templates_backups21")).exists());
}

TEST_F(ProjectCommand, ABackupThatCannotBeMadeIsSaidWithTheReason)
{
    const QString file = copyOf("templates/quick_format_1.tmpl");
    const ProgramRun run = this->run({"convert", "--backup", file + "/in/it", file});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(
        run.err, QStringLiteral("lumo: %1: the backup cannot be made: %1/in: the folder cannot be "
                                "made\n")
                     .arg(file));
    EXPECT_EQ(read(file), read(samplePath("templates/quick_format_1.tmpl")));
}

} // namespace
