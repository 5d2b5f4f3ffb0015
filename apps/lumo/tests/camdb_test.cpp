// SPDX-License-Identifier: Apache-2.0
#include "program.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

/// `lumo camdb` over a data folder of its own.
class Camdb : public testing::Test
{
protected:
    ProgramRun camdb(const QStringList& arguments)
    {
        return runProgram(
            QStringList{"--data-dir", m_folder.filePath("data"), "camdb"} + arguments);
    }

    QString path(const char* name) const { return m_folder.filePath(name); }

    QTemporaryDir m_folder;
};

TEST_F(Camdb, TheShippedDatabasePassesItsSelftest)
{
    const ProgramRun run = camdb({"selftest"});
    EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
    EXPECT_EQ(run.err, "");
}

TEST_F(Camdb, AnAddedCameraIsFoundUntilItIsRemoved)
{
    const QString image = samplePath("images/no_sensor_known.jpg");
    const QString name = "Model One_4.0_4000x3000";
    const auto identified = [&] {
        const ProgramRun run =
            runProgram({"--data-dir", path("data"), "identify", "--json", image});
        return run.records().front()["camera"].toString();
    };
    EXPECT_EQ(identified(), "");
    const ProgramRun added = camdb({"add", image});
    EXPECT_EQ(added.exitCode, 0) << added.err.toStdString();
    EXPECT_EQ(added.out, name.toUtf8() + '\n');
    EXPECT_EQ(identified(), name);
    EXPECT_EQ(camdb({"add", image}).exitCode, 1);
    EXPECT_EQ(camdb({"show", name, "--json"}).records().front()["source"].toString(), "exif");
    EXPECT_EQ(camdb({"map", "Alias_1.0_2x1", name}).exitCode, 0);
    EXPECT_TRUE(camdb({"list", "--json"})
                    .out.contains("{\"camera\":\"Model One_4.0_4000x3000\",\"exifId\":"
                                  "\"Alias_1.0_2x1\",\"kind\":\"mapping\",\"source\":\"user\"}"));
    EXPECT_EQ(camdb({"remove", "Alias_1.0_2x1"}).exitCode, 0);
    const ProgramRun gone = camdb({"remove", "--json", "Alias_1.0_2x1"});
    EXPECT_EQ(gone.exitCode, 1);
    EXPECT_TRUE(gone.records().front()["error"].toString().startsWith("no camera, rig or map"));

    EXPECT_EQ(camdb({"export", path("my.xml")}).exitCode, 0);
    EXPECT_EQ(camdb({"validate", path("my.xml")}).exitCode, 0);
    EXPECT_EQ(camdb({"export", path("my.csv")}).exitCode, 0);
    EXPECT_EQ(camdb({"validate", path("my.csv")}).exitCode, 0);
    EXPECT_EQ(camdb({"remove", name}).exitCode, 0);
    EXPECT_EQ(identified(), "");
    EXPECT_EQ(camdb({"remove", name}).exitCode, 1);
    for (const char* file : {"my.xml", "my.csv"}) {
        EXPECT_EQ(camdb({"import", path(file)}).exitCode, 0);
        EXPECT_EQ(identified(), name);
        EXPECT_EQ(camdb({"remove", name}).exitCode, 0);
    }
}

TEST_F(Camdb, OfACameraThatIsKnownAnImageTellsBandsAtMost)
{
    const auto bandsOf = [this](const QString& name) {
        return camdb({"show", name, "--json"}).records().front()["bands"].toArray();
    };
    const QString rededge = "RedEdge-M_5.5_1280x960";
    const QJsonArray before = bandsOf(rededge);
    EXPECT_GT(before.size(), 4);
    const QString image = samplePath("images/flight_0001_1.tif");
    const ProgramRun added = camdb({"add", image});
    EXPECT_EQ(added.exitCode, 1);
    EXPECT_TRUE(added.err.contains("exists already (internal): replace it with --overwrite"))
        << added.err.toStdString();
    EXPECT_EQ(bandsOf(rededge), before);
    const ProgramRun replaced = camdb({"add", "--overwrite", "--json", image});
    EXPECT_EQ(replaced.exitCode, 0) << replaced.err.toStdString();
    EXPECT_EQ(replaced.records().front()["camera"].toString(), rededge);
    EXPECT_EQ(bandsOf(rededge).size(), 1);
    // Of one's own camera another band is news.
    EXPECT_EQ(camdb({"add", samplePath("images/flight_0001_2.tif")}).exitCode, 0);
    EXPECT_EQ(bandsOf(rededge).size(), 2);
}

TEST_F(Camdb, AnExportOfWhatDidNotLoadReplacesNothing)
{
    EXPECT_EQ(camdb({"import", samplePath("camdb/camdb_16.xml")}).exitCode, 0);
    for (const char* file : {"copy.xml", "copy.csv"}) {
        EXPECT_EQ(camdb({"export", path(file)}).exitCode, 0);
    }
    const auto sizes = [this] {
        return std::make_pair(QFile(path("copy.xml")).size(), QFile(path("copy.csv")).size());
    };
    const auto before = sizes();
    ASSERT_TRUE(QFile::resize(path("data/cameraDB/19/ucmdb.xml"), 100));
    for (const char* file : {"copy.xml", "copy.csv"}) {
        EXPECT_EQ(camdb({"export", path(file)}).exitCode, 1);
    }
    EXPECT_EQ(sizes(), before);
    EXPECT_EQ(camdb({"export", "--internal", path("copy.csv")}).exitCode, 1); // but written
    EXPECT_NE(sizes(), before);
}

TEST_F(Camdb, AFaultIsNamedWithLineAndColumn)
{
    QFile file(path("bad.xml"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("<cameraModelDB>\n<version>19</version>\n<cameras><what/></cameras>\n"
               "</cameraModelDB>\n");
    file.close();
    const ProgramRun run = camdb({"validate", path("bad.xml")});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(run.err.startsWith("lumo: " + path("bad.xml").toUtf8() + ": line 3, column "))
        << run.err.toStdString();
    EXPECT_TRUE(run.err.contains("what"));
}

TEST_F(Camdb, ARecordThatCannotBeUsedIsAFaultAndIsNotLost)
{
    QFile sample(samplePath("camdb/camdb_19.xml"));
    ASSERT_TRUE(sample.open(QIODevice::ReadOnly));
    const QByteArray content =
        sample.readAll().replace("<camera name=\"FC6310", "<camera name=\"a/b FC6310");
    ASSERT_TRUE(QDir().mkpath(path("data/cameraDB/19")));
    QFile file(path("data/cameraDB/19/ucmdb.xml"));
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    file.write(content);
    file.flush();
    const QByteArray fault = "line 39: camera \"a/b FC6310_8.8_5472x3648\": ";
    const ProgramRun run = camdb({"validate", file.fileName()});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(run.err.contains("lumo: " + file.fileName().toUtf8() + ": " + fault))
        << run.err.toStdString();
    const ProgramRun edit = camdb({"map", "x", "FC6310_8.8_4864x3648"});
    EXPECT_EQ(edit.exitCode, 1);
    EXPECT_TRUE(edit.err.contains(fault)) << edit.err.toStdString();
    file.seek(0);
    EXPECT_EQ(file.readAll(), content);
}

TEST_F(Camdb, OlderDatabasesAreConverted)
{
    const QString old = samplePath("camdb/camdb_16.xml");
    EXPECT_EQ(camdb({"convert", old, path("new.xml")}).exitCode, 0);
    EXPECT_EQ(camdb({"validate", path("new.xml")}).exitCode, 0);
    const ProgramRun again = camdb({"convert", path("new.xml"), path("newer.xml")});
    EXPECT_EQ(again.exitCode, 1);
    EXPECT_FALSE(QFile::exists(path("newer.xml")));
    EXPECT_EQ(camdb({"import", old}).exitCode, 0);
    const ProgramRun list = camdb({"list", "--json"});
    EXPECT_EQ(list.exitCode, 0);
    EXPECT_TRUE(list.out.contains("\"source\":\"user\""));
}

TEST_F(Camdb, AnOlderDatabaseThatCannotBeCarriedForwardWaits)
{
    const QString folder = m_folder.filePath("data/cameraDB");
    const QString older = folder + "/17/ucmdb.xml";
    ASSERT_TRUE(QDir().mkpath(folder + "/17"));
    ASSERT_TRUE(QFile(older).open(QIODevice::WriteOnly)); // an empty file
    const QString image = samplePath("images/no_sensor_known.jpg");
    for (const QStringList& arguments :
         {QStringList{"list"}, QStringList{"add", image}, QStringList{"rebuild"}}) {
        const ProgramRun run = camdb(arguments);
        EXPECT_EQ(run.exitCode, 1) << qPrintable(arguments[0]);
        EXPECT_TRUE(run.err.contains(": " + older.toUtf8() + ": line ")) << run.err.toStdString();
        EXPECT_FALSE(QFile::exists(folder + "/19")) << qPrintable(arguments[0]);
    }
    ASSERT_TRUE(QFile::remove(older) && QFile::copy(samplePath("camdb/camdb_17.xml"), older));
    const ProgramRun rebuilt = camdb({"rebuild"});
    EXPECT_EQ(rebuilt.exitCode, 0);
    EXPECT_EQ(rebuilt.err, "");
    EXPECT_TRUE(camdb({"list", "--json"}).out.contains("\"source\":\"user\""));
}

/// It satisfies the schema, which allows sections to be missing.
TEST_F(Camdb, ABrokenDatabaseFailsForTheSameReasonEverywhere)
{
    const QString folder = m_folder.filePath("data/cameraDB/19");
    ASSERT_TRUE(QDir().mkpath(folder));
    QFile file(folder + "/ucmdb.xml");
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("<cameraModelDB><version>19</version><rigs/></cameraModelDB>");
    file.close();
    const QByteArray reason = "the camera database has no element 'cameras'";
    for (const char* command : {"list", "validate", "import"}) {
        QStringList arguments{command};
        if (arguments[0] != "list") {
            arguments += file.fileName();
        }
        const ProgramRun run = camdb(arguments);
        EXPECT_EQ(run.exitCode, 1);
        EXPECT_TRUE(run.err.contains(reason)) << command << ": " << run.err.constData();
    }
}

} // namespace
