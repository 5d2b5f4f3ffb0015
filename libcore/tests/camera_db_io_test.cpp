// SPDX-License-Identifier: Apache-2.0
#include "held_lock.h"
#include "lumo/core/cameraInfo/camera_db_import.h"
#include "lumo/core/cameraInfo/camera_model_db.h"
#include "lumo/core/cameraInfo/lumo_camera_db_io.h"
#include "lumo/core/cameraInfo/text_db.h"
#include "lumo/core/xml/register_xml_converters.h"
#include "lumo/foundation/log.h"
#include "lumo/foundation/system.h"
#include "source_dir.h"
#include "test_cameras.h"

#include <QDir>
#include <QFile>
#include <QSettings>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace lumo {
namespace {

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void put(const QString& path, const QByteArray& content)
{
    ASSERT_TRUE(QDir().mkpath(QFileInfo(path).path()));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
}

/// Stores over one data folder of their own.
class CameraDbFiles : public testing::Test
{
protected:
    CameraDbFiles()
    {
        registerXmlConverters();
        system::setApplicationDirectory(sourcePath());
    }
    ~CameraDbFiles() override { system::setApplicationDirectory(QString()); }

    CameraModelDb makeStore() const
    {
        CameraDbSettings settings;
        settings.appSettings =
            std::make_shared<QSettings>(m_folder.filePath("settings.ini"), QSettings::IniFormat);
        settings.secondSettings = settings.appSettings;
        settings.dataDirectory = m_folder.filePath("db");
        settings.checkInternalHash = true;
        return CameraModelDb(settings);
    }

    QString path(const char* name) const { return m_folder.filePath(QString("db/") + name); }

    static QByteArray sample(int version)
    {
        return contentOf(sourcePath("samples/camdb/camdb_%1.xml").arg(version));
    }

    /// The text form, whose digits tell any two numbers apart.
    static QString internalText(const CameraModelDb& store)
    {
        return cameradb::writeTextDB(store.internalData());
    }

    QTemporaryDir m_folder;
};

TEST_F(CameraDbFiles, AnEmptyFolderGetsTheShippedDatabase)
{
    CameraModelDb store = makeStore();
    QString error;
    ASSERT_TRUE(loadCameraDatabases(store, error)) << qPrintable(error);
    EXPECT_FALSE(store.emptyInternalDB());
    EXPECT_TRUE(store.emptyUserDB());
    EXPECT_FALSE(QFile::exists(path("19/ucmdb.xml")));

    CameraModelDb again = makeStore();
    ASSERT_TRUE(CameraDbIo(again).loadXML(path("19/icmdb.xml"), QString()));
    EXPECT_EQ(internalText(again), internalText(store));

    CameraModelDb nowhere; // without a folder for files and settings
    EXPECT_TRUE(loadCameraDatabases(nowhere, error)) << qPrintable(error);
    EXPECT_EQ(internalText(nowhere), internalText(store));
}

TEST_F(CameraDbFiles, AnInternalFileThatWasEditedIsMadeAnew)
{
    CameraModelDb store = makeStore();
    QString error;
    ASSERT_TRUE(loadCameraDatabases(store, error));
    const QByteArray generated = contentOf(path("19/icmdb.xml"));
    put(path("19/icmdb.xml"), generated + "<!-- edited -->\n");
    {
        const log::Capture log;
        EXPECT_FALSE(CameraDbIo(store).loadXML(path("19/icmdb.xml"), QString()));
        EXPECT_TRUE(log.contains(
            log::Level::Warning, "The original internal database has been edited manualy. It will "
                                 "be restored!"));
    }
    ASSERT_TRUE(loadCameraDatabases(store, error));
    EXPECT_EQ(contentOf(path("19/icmdb.xml")), generated);
}

TEST_F(CameraDbFiles, AnInternalFileThatAnOlderVersionLeftIsMadeAnew)
{
    CameraModelDb old = makeStore();
    QString error;
    ASSERT_TRUE(loadCameraDatabases(old, error));
    const std::size_t cameras = old.internalData().cameras.size();
    put(path("few.csv"), contentOf(cameradb::shippedTextDBPath()).replace("FC6310_", "Other_"));
    ASSERT_TRUE(CameraDbIo(old).loadAndSaveInternalTextDB(path("few.csv")));
    old.settings().appSettings->setValue("cameraDB/19/shippedDatabase", "of another version");

    CameraModelDb store = makeStore();
    ASSERT_TRUE(loadCameraDatabases(store, error)) << qPrintable(error);
    EXPECT_TRUE(store.containsCameraModel("FC6310_8.8_5472x3648", QString(), true, false));
    EXPECT_EQ(store.internalData().cameras.size(), cameras);
}

TEST_F(CameraDbFiles, AnOlderUserDatabaseIsCarriedForwardOnce)
{
    put(path("9/ucmdb.xml"), "older still");
    put(path("17/ucmdb.xml"), sample(17));
    CameraModelDb store = makeStore();
    QString error;
    ASSERT_TRUE(loadCameraDatabases(store, error)) << qPrintable(error);
    EXPECT_FALSE(store.userData().cameras.empty());
    EXPECT_FALSE(store.userData().rigs.empty());
    EXPECT_EQ(contentOf(path("17/ucmdb.xml")), sample(17));
    const QByteArray carried = contentOf(path("19/ucmdb.xml"));
    EXPECT_TRUE(hasDbLastestFormat(path("19/ucmdb.xml")));

    put(path("17/ucmdb.xml"), "changed later");
    CameraModelDb again = makeStore();
    ASSERT_TRUE(loadCameraDatabases(again, error));
    EXPECT_EQ(again.userData().cameras.size(), store.userData().cameras.size());
    EXPECT_EQ(contentOf(path("19/ucmdb.xml")), carried);
}

TEST_F(CameraDbFiles, ACurrentDocumentInAnOlderFolderIsCopied)
{
    put(path("18/ucmdb.xml"), sample(19));
    CameraModelDb store = makeStore();
    QString error;
    ASSERT_TRUE(loadCameraDatabases(store, error)) << qPrintable(error);
    EXPECT_FALSE(store.userData().cameras.empty());
    EXPECT_EQ(contentOf(path("19/ucmdb.xml")), sample(19));
}

struct FolderCase
{
    const char* name;
    QStringList folders;
    const char* message; ///< empty: nothing is said
};

TEST_F(CameraDbFiles, FoldersThatHoldNothingOlder)
{
    const FolderCase cases[] = {
        {"none", {}, ""},
        {"current", {"17", "19"}, ""},
        {"by hand",
         {"17", "backup"},
         "Unexpected folders in data-common directory. Remove the folders created manually."},
        {"no file", {"17"}, "Error trying to convert user camera database to latest format"},
    };
    for (const FolderCase& test : cases) {
        SCOPED_TRACE(test.name);
        ASSERT_TRUE(QDir(m_folder.filePath("db")).removeRecursively());
        for (const QString& folder : test.folders) {
            ASSERT_TRUE(QDir().mkpath(m_folder.filePath("db/" + folder)));
        }
        CameraModelDb store = makeStore();
        const log::Capture log;
        EXPECT_FALSE(CameraDbIo(store).loadAndSavePreviousUserXML());
        EXPECT_EQ(log.records().empty(), *test.message == '\0');
        if (*test.message != '\0') {
            EXPECT_TRUE(log.contains(log::Level::Important, test.message));
        }
        QString error;
        EXPECT_TRUE(loadCameraDatabases(store, error));
        EXPECT_TRUE(store.editingAllowed());
    }
}

struct CarryFault
{
    const char* file;
    QByteArray content;
    QString folder; ///< another one beside, if not empty
    QString reason; ///< part of the error
};

TEST_F(CameraDbFiles, AnOlderUserFileThatCannotBeCarriedForwardWaitsForTheNextStart)
{
    const QByteArray current = sample(19);
    const CarryFault cases[] = {
        {"17/ucmdb.xml", sample(17).left(sample(17).size() / 2), "", "line 58: "},
        {"17/ucmdb.xml", sample(17).replace("<pixelSize>0.", "<pixelSize>0,"), "", "0,0024"},
        {"18/ucmdb.xml", QByteArray(current).replace(">19</version>", ">20</version>"), "",
         "version"},
        {"18/ucmdb.xml", "<cameraModelDB><version>19</version></cameraModelDB>", "",
         "after conversion: the camera database has no element 'cameras'"},
        {"17/ucmdb.xml", sample(17), "backup", "Unexpected folders in data-common directory"},
        {"9/ucmdb.xml", sample(16), "17", m_folder.filePath("db/17/ucmdb.xml")},
    };
    for (const CarryFault& test : cases) {
        SCOPED_TRACE(test.reason.toStdString());
        ASSERT_TRUE(QDir(path("")).removeRecursively());
        put(path(test.file), test.content);
        ASSERT_TRUE(test.folder.isEmpty() || QDir(path("")).mkdir(test.folder));
        const auto entries = [this] {
            return QDir(path("")).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
        };
        const QStringList before = entries();
        for (int start = 0; start < 2; ++start) {
            CameraModelDb store = makeStore();
            QString error;
            EXPECT_FALSE(loadCameraDatabases(store, error));
            EXPECT_TRUE(error.contains(": " + path(test.file) + ": ")) << qPrintable(error);
            EXPECT_TRUE(error.contains(test.reason)) << qPrintable(error);
            EXPECT_FALSE(store.emptyInternalDB());
            EXPECT_FALSE(store.setCameraModel(testModel("Mine"), true));
            EXPECT_EQ(entries(), before);
        }
        EXPECT_EQ(contentOf(path(test.file)), test.content);

        ASSERT_TRUE(test.folder.isEmpty() || QDir(path("")).rmdir(test.folder));
        put(path(test.file), sample(17));
        CameraModelDb repaired = makeStore();
        QString error;
        EXPECT_TRUE(loadCameraDatabases(repaired, error)) << qPrintable(error);
        EXPECT_FALSE(repaired.userData().cameras.empty());
        EXPECT_TRUE(repaired.editingAllowed());
    }
}

TEST_F(CameraDbFiles, AUserFileThatDoesNotLoadIsNeverOverwritten)
{
    for (const QByteArray& content :
         {QByteArray("no XML"), sample(19).left(sample(19).size() / 2), sample(17),
          QByteArray("\xff\xfe\x00", 3), QByteArray()}) {
        put(path("19/ucmdb.xml"), content);
        CameraModelDb store = makeStore();
        QString error;
        EXPECT_FALSE(loadCameraDatabases(store, error));
        EXPECT_TRUE(error.contains("ucmdb.xml")) << qPrintable(error);
        EXPECT_FALSE(store.emptyInternalDB());
        EXPECT_FALSE(store.setCameraModel(testModel("Mine"), true));
        EXPECT_EQ(contentOf(path("19/ucmdb.xml")), content);
    }
}

TEST_F(CameraDbFiles, AUserFileWithRecordsThatAreNotTakenIsNeverOverwritten)
{
    const QByteArray content =
        sample(19).replace("<camera name=\"FC6310", "<camera name=\"a/b FC6310");
    put(path("19/ucmdb.xml"), content);
    CameraModelDb store = makeStore();
    QString error;
    EXPECT_FALSE(loadCameraDatabases(store, error));
    const QString fault = "line 39: camera \"a/b FC6310_8.8_5472x3648\": The camera name is not";
    EXPECT_TRUE(error.contains("ucmdb.xml' contains records that cannot be used: " + fault))
        << qPrintable(error);
    EXPECT_FALSE(store.userData().rigs.empty()) << "what can be used is";
    EXPECT_FALSE(store.setMapping("x", "Mine", true));
    EXPECT_EQ(contentOf(path("19/ucmdb.xml")), content);
}

TEST_F(CameraDbFiles, EditsAreSavedAndComeBack)
{
    CameraModelDb store = makeStore();
    QString error;
    ASSERT_TRUE(loadCameraDatabases(store, error));
    CameraModelFromDB model = testModel(QString::fromUtf8("Kamera Ä"), "7");
    ASSERT_TRUE(store.setCameraModel(model, true));
    ASSERT_TRUE(store.setMapping("x_1.0_2x1", model.params.name, true));

    CameraModelDb again = makeStore();
    ASSERT_TRUE(loadCameraDatabases(again, error)) << qPrintable(error);
    CameraModelFromDB found;
    ASSERT_TRUE(again.findCameraModel(ExifID{"x_1.0_2x1", ""}, "7", found, false));
    EXPECT_TRUE(found.equal(model));
    EXPECT_EQ(found.serialNumber, "7");
    EXPECT_EQ(found.params.source, CameraSource::UserDatabase);
}

TEST_F(CameraDbFiles, WhatCannotBeSavedLeavesTheFileAlone)
{
    CameraModelDb store = makeStore();
    QString error;
    ASSERT_TRUE(loadCameraDatabases(store, error));
    ASSERT_TRUE(store.setCameraModel(testModel("Mine"), true));
    const QByteArray before = contentOf(path("19/ucmdb.xml"));
    const log::Capture log;
    EXPECT_FALSE(store.setCameraModel(testModel("Broken", QString("a\x01") + "b"), true));
    EXPECT_EQ(contentOf(path("19/ucmdb.xml")), before);
    ASSERT_FALSE(log.records().empty());
    EXPECT_TRUE(log.records().back().text.contains("Broken"));

    CameraDbSettings settings = store.settings();
    settings.dataDirectory = path("19/ucmdb.xml"); // a file: no folder can be made below it
    store.reset(settings);
    EXPECT_FALSE(store.setCameraModel(testModel("Mine"), true));
}

TEST_F(CameraDbFiles, WithoutLeaveToEditNothingIsChanged)
{
    put(path("19/ucmdb.xml"), sample(19));
    put(path("other.xml"), sample(19).replace("FC6310", "Other"));
    CameraModelDb store = makeStore();
    store.setUserDBReadOnly(true);
    QString error;
    ASSERT_TRUE(loadCameraDatabases(store, error)) << qPrintable(error);
    const QString before = cameradb::writeTextDB(store.userData());
    for (const bool enabled : {true, false}) {
        store.setUserDBStatus(enabled);
        const log::Capture log;
        EXPECT_FALSE(CameraDbIo(store).addUserXML(path("other.xml"), true));
        EXPECT_FALSE(importUserDatabase(store, path("other.xml"), true, error));
        EXPECT_FALSE(CameraDbIo(store).clearUserXML());
        EXPECT_FALSE(CameraDbIo(store).saveUserXML());
        EXPECT_EQ(cameradb::writeTextDB(store.userData()) == before, enabled);
        EXPECT_EQ(log.records().size(), 3u);
    }
    EXPECT_EQ(contentOf(path("19/ucmdb.xml")), sample(19));
    EXPECT_TRUE(loadCameraDatabases(store, error)) << "a disabled one is no failure";
    EXPECT_TRUE(store.emptyUserDB());
}

TEST_F(CameraDbFiles, ClearingEmptiesTheFile)
{
    put(path("19/ucmdb.xml"), sample(19));
    CameraModelDb store = makeStore();
    QString error;
    ASSERT_TRUE(loadCameraDatabases(store, error)) << qPrintable(error);
    EXPECT_TRUE(CameraDbIo(store).clearUserXML());
    EXPECT_TRUE(store.userData().empty());
    CameraModelDb again = makeStore();
    ASSERT_TRUE(loadCameraDatabases(again, error)) << qPrintable(error);
    EXPECT_TRUE(again.userData().empty());
}

TEST_F(CameraDbFiles, WithoutADataDirectoryOrSettingsNoFileIsMade)
{
    QDir().mkpath(path(""));
    CameraModelDb store = makeStore();
    CameraDbSettings settings = store.settings();
    settings.dataDirectory.clear();
    store.reset(settings);
    const QString workingFolder = QDir::currentPath();
    put(path("17/ucmdb.xml"), sample(17));
    ASSERT_TRUE(QDir::setCurrent(path("")));
    const log::Capture log;
    EXPECT_FALSE(CameraDbIo(store).loadAndSavePreviousUserXML());
    EXPECT_TRUE(QDir::setCurrent(workingFolder));
    EXPECT_FALSE(CameraDbIo(store).loadAndSaveInternalTextDB(QString()));
    EXPECT_FALSE(CameraDbIo(store).saveUserXML());
    EXPECT_EQ(log.records().size(), 3u);
    EXPECT_FALSE(QFile::exists("/19/icmdb.xml"));

    settings = makeStore().settings();
    settings.appSettings.reset();
    store.reset(settings);
    EXPECT_FALSE(CameraDbIo(store).loadAndSaveInternalTextDB(QString()));
    EXPECT_TRUE(log.contains(
        log::Level::Important,
        "Application settings are required for converting camDB from CSV to XML"));
    EXPECT_FALSE(QFile::exists(path("19")));
}

TEST_F(CameraDbFiles, SavingKeepsWhatTheSettingsSayOfTheUserFile)
{
    CameraModelDb store = makeStore();
    const QString key = "cameraDB/19/userCameraDB";
    QSettings& settings = *store.settings().secondSettings;
    for (const QString& value : {path("19/ucmdb.xml"), QString("elsewhere")}) {
        ASSERT_TRUE(CameraDbIo(store).saveUserXML());
        EXPECT_EQ(settings.value(key).toString(), value);
        EXPECT_TRUE(hasDbLastestFormat(path("19/ucmdb.xml")));
        settings.setValue(key, "elsewhere");
    }
}

TEST_F(CameraDbFiles, AnyVersionIsAddedWholeWithoutTouchingTheFile)
{
    const auto import = [](CameraModelDb& store, const QString& file) {
        QString error;
        return importUserDatabase(store, file, false, error);
    };
    const auto add = [](CameraModelDb& store, const QString& file) {
        return CameraDbIo(store).addUserXML(file, false);
    };
    const QString file = m_folder.filePath("added.xml");
    put(file, sample(16));
    CameraModelDb expected = makeStore();
    ASSERT_TRUE(import(expected, file));
    ASSERT_EQ(expected.userData().cameras.size(), 5u);
    for (const int version : {16, 17, 18}) {
        SCOPED_TRACE(version);
        put(file, sample(version));
        for (const auto& way : {+import, +add}) {
            CameraModelDb store = makeStore();
            ASSERT_TRUE(way(store, file));
            EXPECT_EQ(
                cameradb::writeTextDB(store.userData()),
                cameradb::writeTextDB(expected.userData()));
            EXPECT_EQ(contentOf(file), sample(version));
        }
    }
    put(file, sample(19).replace(">19</version>", ">20</version>"));
    CameraModelDb store = makeStore();
    EXPECT_TRUE(add(store, file)) << "a newer one is taken";
    EXPECT_EQ(store.userDbVersion(), 20u);
}

TEST_F(CameraDbFiles, WhatCannotBeImportedIsNamedWithItsLine)
{
    const std::pair<QByteArray, const char*> cases[] = {
        {"<cameraModelDB>\n<version>", "line 2: "},
        {"<cameraModelDB>\n<version>19</version><cameras><a/></cameras></cameraModelDB>",
         "line 2, column "},
        {"<cameraModelDB><version>16</version><lens/></cameraModelDB>", "Error converting"},
        {"<cameraModelDB><camera cameraId='a'><imageWidth>x</imageWidth></camera></cameraModelDB>",
         "after conversion: line "},
    };
    for (const auto& [content, reason] : cases) {
        put(m_folder.filePath("broken.xml"), content);
        CameraModelDb store = makeStore();
        QString error;
        EXPECT_FALSE(importUserDatabase(store, m_folder.filePath("broken.xml"), false, error));
        EXPECT_TRUE(error.startsWith(reason)) << qPrintable(error);
        EXPECT_TRUE(store.emptyUserDB());
    }
}

TEST_F(CameraDbFiles, TheInternalFileIsReadAndExportedOnesAreWrittenUnderALock)
{
    CameraModelDb store = makeStore();
    QString error;
    ASSERT_TRUE(loadCameraDatabases(store, error)) << qPrintable(error);
    ASSERT_TRUE(store.setCameraModel(testModel("Mine"), true));
    const QString exported = path("exported.xml");
    ASSERT_TRUE(CameraDbIo(store).exportUserXML(exported));
    const QString internalFile = path("19/icmdb.xml");
    const auto read = [&] { return CameraDbIo(store).loadXML(internalFile, QString()); };
    const auto write = [&] { return CameraDbIo(store).exportUserXML(exported); };
    EXPECT_TRUE(test::waitsForLock(internalFile, read));
    EXPECT_TRUE(test::waitsForLock(exported, write));
    for (const QString& file : {internalFile, path("19/ucmdb.xml")}) {
        const test::HeldLock held(file);
        EXPECT_TRUE(CameraDbIo(store).loadAndSaveInternalTextDB(QString()));
        EXPECT_TRUE(CameraDbIo(store).saveUserXML());
        EXPECT_TRUE(CameraDbIo(store).loadXML(QString(), path("19/ucmdb.xml")));
    }
}

} // namespace
} // namespace lumo
