// SPDX-License-Identifier: Apache-2.0
#include "held_lock.h"
#include "lumo/core/cameraInfo/lumo_text_file_io.h"
#include "lumo/foundation/log.h"
#include "xml_test_tools.h"

#include <QDir>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>

namespace lumo {
namespace {

class TextFile : public testing::Test
{
protected:
    QString path(const QString& name) const { return m_folder.filePath(name); }

    QTemporaryDir m_folder;
    TextFileIO m_io;
};

TEST_F(TextFile, WhatCannotBeReadIsSaidAndNothingIsHeld)
{
    test::writeFile(path("good"), "\xc3\xa4");
    test::writeFile(path("a byte"), "a\xff");
    test::writeFile(path("empty"), "");
    ASSERT_TRUE(QDir(m_folder.path()).mkdir("folder"));
    const std::pair<QString, QString> cases[] = {
        {"a byte", "Unable to read file '%1' it is not encoded in UTF-8"},
        {"empty", "Unable to read file '%1' it is empty"},
        {"missing", "Unable to open file '%1' No such file or directory"},
        {"folder", "Unable to open file '%1' file to open is a directory"},
    };
    for (const auto& [name, message] : cases) {
        ASSERT_TRUE(m_io.readFile(path("good"), true));
        EXPECT_EQ(m_io.content(), QString(QChar(0xe4)));
        const log::Capture log;
        EXPECT_FALSE(m_io.readFile(path(name), false));
        EXPECT_TRUE(m_io.content().isEmpty());
        ASSERT_EQ(log.records().size(), 1u);
        EXPECT_EQ(log.records()[0].text, message.arg(path(name)));
    }
    EXPECT_FALSE(QFile::exists(path("good.lock")));
}

TEST_F(TextFile, WhatCannotBeWrittenIsSaidAndTheFileKeepsItsContent)
{
    m_io.content() = QString(2000, 'x');
    ASSERT_TRUE(QDir(m_folder.path()).mkdir("folder"));
    for (const char* name : {"no folder/file", "folder"}) {
        const log::Capture log;
        EXPECT_FALSE(m_io.writeFile(path(name), false));
        ASSERT_EQ(log.records().size(), 1u);
        const QString start = "Cannot open file '" + path(name) + "' for writing: ";
        EXPECT_TRUE(log.records()[0].text.startsWith(start));
        EXPECT_EQ(log.records()[0].text.count(path(name)), 1);
    }

    test::writeFile(path("file"), "old");
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    const rlimit small{1000, before.rlim_max};
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    const log::Capture log;
    EXPECT_FALSE(m_io.writeFile(path("file"), true)) << "as on a full disk";
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &before), 0);
    std::signal(SIGXFSZ, handler);
    ASSERT_EQ(log.records().size(), 1u);
    EXPECT_EQ(log.records()[0].text, "Cannot write file '" + path("file") + "': File too large");
    EXPECT_EQ(test::readFile(path("file")), "old");
}

TEST_F(TextFile, ALockIsTakenWhereItIsAskedFor)
{
    const QString file = test::writeFile(path("file"), "content");
    EXPECT_TRUE(test::waitsForLock(file, [&] { return m_io.readFile(file, true); }));
    EXPECT_TRUE(test::waitsForLock(file, [&] { return m_io.writeFile(file, true); }));
    const test::HeldLock held(file);
    EXPECT_TRUE(m_io.readFile(file, false));
    EXPECT_TRUE(m_io.writeFile(file, false));
}

TEST_F(TextFile, ALockThatCannotBeHadIsAFailure)
{
    // The lock file's name is too long, which needs no waiting.
    const QString file = test::writeFile(path(QString(253, 'x')), "old");
    const log::Capture log;
    EXPECT_FALSE(m_io.readFile(file, true));
    m_io.content() = "new";
    EXPECT_FALSE(m_io.writeFile(file, true));
    EXPECT_EQ(test::readFile(file), "old");
    ASSERT_EQ(log.records().size(), 2u);
    for (const log::Record& record : log.records()) {
        EXPECT_EQ(record.text, "Unable to lock file '" + file + "'");
    }
}

TEST_F(TextFile, AFolderThatMayOnlyBeReadNeedsNoLock)
{
    constexpr uid_t kNobody = 65534;
    const QString file = test::writeFile(path("file"), "content");
    ASSERT_EQ(chmod(QFile::encodeName(file), 0644), 0);
    ASSERT_EQ(chmod(QFile::encodeName(m_folder.path()), 0555), 0);
    const bool root = geteuid() == 0; // whom rights do not stop
    ASSERT_TRUE(!root || seteuid(kNobody) == 0);
    EXPECT_TRUE(m_io.readFile(file, true));
    EXPECT_FALSE(m_io.writeFile(file, true));
    if (root) {
        ASSERT_EQ(seteuid(0), 0);
        prctl(PR_SET_DUMPABLE, 1); // the change took it away; leak checks need it
    }
    ASSERT_EQ(chmod(QFile::encodeName(m_folder.path()), 0755), 0); // so that it can be removed
}

} // namespace
} // namespace lumo
