// SPDX-License-Identifier: Apache-2.0
#include "lumo/foundation/file.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <csignal>

namespace lumo::file {

namespace {

void put(const QString& path, const QByteArray& content, mode_t mode = 0644)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_EQ(file.write(content), content.size());
    file.close();
    ASSERT_EQ(chmod(QFile::encodeName(path), mode), 0);
}

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(unreadable)");
}

struct stat statusOf(const QString& path)
{
    struct stat status = {};
    EXPECT_EQ(stat(QFile::encodeName(path), &status), 0) << qPrintable(path);
    return status;
}

/// Runs as a user without privileges while it lives, so that rights count
/// although the tests may be run by root.
class Unprivileged
{
public:
    Unprivileged()
        : m_changed(geteuid() == 0 && seteuid(kNobody) == 0)
    {}
    Unprivileged(const Unprivileged&) = delete;
    Unprivileged& operator=(const Unprivileged&) = delete;
    ~Unprivileged()
    {
        if (m_changed) {
            EXPECT_EQ(seteuid(0), 0);
            prctl(PR_SET_DUMPABLE, 1); // the change took it away; leak checks need it
        }
    }

private:
    static constexpr uid_t kNobody = 65534;
    bool m_changed;
};

/// Makes a write beyond so many bytes of a file fail while it lives, as a full
/// disk does.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t bytes)
        : m_handler(std::signal(SIGXFSZ, SIG_IGN))
    {
        getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit limit = {bytes, m_before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;
    ~FileSizeLimit()
    {
        setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handler);
    }

private:
    rlimit m_before = {};
    void (*m_handler)(int);
};

class FileTest : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_folder.isValid());
        ASSERT_EQ(chmod(QFile::encodeName(m_folder.path()), 0755), 0);
    }

    [[nodiscard]] QString at(const char* name) const { return m_folder.filePath(name); }

    /// All there is in the folder, hidden files too.
    [[nodiscard]] QStringList names() const
    {
        return QDir(m_folder.path())
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    }

private:
    QTemporaryDir m_folder;
};

} // namespace

TEST(FilePath, IsTakenApartAndJoined)
{
    const std::array<const char*, 3> cases[] = {
        {"a/b.txt", "a", "b.txt"},
        {"/a/b/c", "/a/b", "c"},
        {"b.txt", ".", "b.txt"},
        {"/b", "/", "b"},
        {"a/b/", "a", "b"},
        {"a//b", "a", "b"},
        {"/", "/", ""},
    };
    for (const auto& [path, folder, name] : cases) {
        EXPECT_EQ(dirname(path), QString(folder)) << path;
        EXPECT_EQ(filename(path), QString(name)) << path;
    }
    EXPECT_EQ(join("a", "b"), QStringLiteral("a/b"));
    EXPECT_EQ(join("a//", "/b"), QStringLiteral("a/b"));
    EXPECT_EQ(join("/", "b"), QStringLiteral("/b"));
    EXPECT_EQ(join("", "b"), QStringLiteral("b"));
    EXPECT_EQ(join("", "/b"), QStringLiteral("/b"));
    EXPECT_EQ(join("a", ""), QStringLiteral("a"));
    EXPECT_EQ(cleanup("D:\\data\\/17//./x/../ucmdb.xml"), QStringLiteral("D:/data/17/ucmdb.xml"));
}

TEST_F(FileTest, MkdirMakesParentsAndFailsBelowAFile)
{
    EXPECT_TRUE(mkdir(at("a/b/c")));
    EXPECT_TRUE(mkdir(at("a/b/c")));
    EXPECT_TRUE(exists(at("a/b/c")));
    put(at("file"), "x");
    EXPECT_FALSE(mkdir(at("file")));
    EXPECT_FALSE(mkdir(at("file/sub")));
    EXPECT_FALSE(mkdir(QString()));
}

TEST_F(FileTest, ReadonlyTellsWhatThisProcessCannotWrite)
{
    put(at("open"), "abc", 0666);
    put(at("closed"), "abc", 0444);
    ASSERT_TRUE(mkdir(at("openFolder")) && mkdir(at("closedFolder")));
    ASSERT_EQ(chmod(QFile::encodeName(at("openFolder")), 0777), 0);
    ASSERT_EQ(chmod(QFile::encodeName(at("closedFolder")), 0555), 0);
    {
        const Unprivileged user;
        EXPECT_FALSE(readonly(at("open")));
        EXPECT_TRUE(readonly(at("closed")));
        EXPECT_FALSE(readonly(at("openFolder")));
        EXPECT_TRUE(readonly(at("closedFolder")));
    }
    EXPECT_FALSE(readonly(at("nothing")));
    EXPECT_TRUE(readonly(QStringLiteral("/proc"))) << "rights do not tell it, for root";
    EXPECT_EQ(contentOf(at("open")), "abc");
    EXPECT_TRUE(
        QDir(at("openFolder")).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot));
}

TEST_F(FileTest, CopyKeepsContentAndMode)
{
    const QByteArray content = QByteArray("0123456789").repeated(300000); // several blocks
    put(at("source"), content, 0750);
    QString error;
    ASSERT_TRUE(copy(at("source"), at("target"), error)) << qPrintable(error);
    EXPECT_TRUE(error.isEmpty());
    EXPECT_EQ(contentOf(at("target")), content);
    EXPECT_EQ(statusOf(at("target")).st_mode & 07777, mode_t(0750));
    EXPECT_EQ(names(), QStringList({"source", "target"}));
}

TEST_F(FileTest, CopyThatFailsLeavesNothingAndSaysWhy)
{
    put(at("source"), QByteArray(100000, 'x'));
    put(at("taken"), "old");
    ASSERT_TRUE(QFile::link(at("nothing"), at("dangling")));
    const QStringList before = names();
    const auto expectFailure = [&](const QString& source, const QString& target,
                                   const QString& text) {
        QString error;
        EXPECT_FALSE(copy(source, target, error));
        EXPECT_TRUE(error.startsWith(text)) << qPrintable(error) << " is not " << qPrintable(text);
        EXPECT_EQ(names(), before);
    };
    expectFailure(at("missing"), at("new"), at("missing") + ": No such file");
    expectFailure(dirname(at("source")), at("new"), dirname(at("source")) + ": not a regular file");
    expectFailure(at("source"), at("taken"), at("taken") + ": already exists");
    expectFailure(at("source"), at("dangling"), at("dangling") + ": ");
    expectFailure(at("source"), at("missing/new"), at("missing/new") + ": No such file");
    {
        const FileSizeLimit full(1000);
        expectFailure(at("source"), at("new"), at("new") + ": File too large");
    }
    EXPECT_EQ(contentOf(at("taken")), "old");
    EXPECT_FALSE(exists(at("nothing")));
}

TEST_F(FileTest, IsSameSeesThroughLinksAndSpellings)
{
    ASSERT_TRUE(mkdir(at("sub")));
    put(at("file"), "x");
    put(at("twin"), "x");
    ASSERT_EQ(link(QFile::encodeName(at("file")), QFile::encodeName(at("hardLink"))), 0);
    ASSERT_TRUE(QFile::link(at("file"), at("link")) && QFile::link(at("link"), at("chain")));
    ASSERT_TRUE(QFile::link(at("sub"), at("subLink")) && QFile::link(at("new"), at("dangling")));
    const struct
    {
        const char* a;
        const char* b;
        bool same;
    } cases[] = {
        {"file", "sub/..//./file", true},
        {"file", "chain", true},
        {"file", "hardLink", true},
        {"sub", "subLink", true},
        {"file", "twin", false},
        {"file", "new", false},
        {"new", "file", false},
        {"new", "other", false},
        {"new", "sub/../new", true},
        {"new", "dangling", true},
        {"sub/new", "subLink/new", true},
        {"sub/new", "new", false},
        {"missing/a", "missing//a", true},
        {"missing/a", "missing/b", false},
    };
    for (const auto& [a, b, same] : cases) {
        EXPECT_EQ(isSame(at(a), at(b)), same) << a << ' ' << b;
    }
    EXPECT_TRUE(isSame(QDir::current().relativeFilePath(at("file")), at("file")));
}

TEST_F(FileTest, BackUpMakesOneBackupAndNeverReplacesAFile)
{
    const QByteArray content = QByteArray("0123456789").repeated(300000); // several blocks
    put(at("file"), content, 0640);
    const QString backup = at("a/b/backup");
    QString error;
    EXPECT_TRUE(mayBackUp(at("file"), backup, error));
    EXPECT_FALSE(exists(at("a")));
    for (int run = 0; run < 2; ++run) { // the second finds the first one's backup
        ASSERT_TRUE(backUp(at("file"), backup, error)) << qPrintable(error);
        EXPECT_EQ(contentOf(backup), content);
        EXPECT_EQ(statusOf(backup).st_mode & 07777, mode_t(0640));
        EXPECT_EQ(QDir(at("a/b")).entryList(QDir::AllEntries | QDir::Hidden).size(), 3);
    }
    EXPECT_TRUE(error.isEmpty());
}

TEST_F(FileTest, BackUpRefusesWhatWouldBeNone)
{
    const QByteArray content = QByteArray(1 << 20, 'x') + "1"; // differs in the second block
    put(at("file"), content);
    put(at("other"), QByteArray(content).replace('1', '2'));
    put(at("shorter"), content.left(1 << 20));
    ASSERT_EQ(link(QFile::encodeName(at("file")), QFile::encodeName(at("hardLink"))), 0);
    ASSERT_TRUE(QFile::link(at("file"), at("link")) && mkdir(at("folder")));
    const QStringList before = names();
    const auto expectFailure = [&](const QString& path, const QString& backup,
                                   const QString& reason) {
        QString error;
        EXPECT_FALSE(backUp(path, backup, error));
        EXPECT_TRUE(error.contains(": " + reason)) << qPrintable(error);
        EXPECT_EQ(names(), before);
    };
    for (const char* other : {"other", "shorter"}) {
        expectFailure(at("file"), at(other), "another file is kept there");
    }
    for (const char* itself : {"file", "hardLink", "link"}) {
        expectFailure(at("file"), at(itself), "the backup would be the file itself");
    }
    expectFailure(at("file"), at("folder"), "");
    expectFailure(at("missing"), at("new"), "No such file");
    expectFailure(at("folder"), at("new"), "not a regular file");
    expectFailure(at("file"), at("file/sub/new"), "the folder cannot be made");
    // A file that reads different each time, as one does that is written to meanwhile.
    expectFailure("/proc/sys/kernel/random/uuid", at("new"), "the copy reads back different");
    EXPECT_EQ(contentOf(at("other")).back(), '2');
}

TEST_F(FileTest, ReplaceMakesAFileAndThenReplacesItWithModeAndOwnerKept)
{
    QString error;
    ASSERT_TRUE(replaceAtomically(at("file"), "first", error)) << qPrintable(error);
    EXPECT_EQ(contentOf(at("file")), "first");

    if (geteuid() == 0) {
        ASSERT_EQ(chown(QFile::encodeName(at("file")), 1234, 2345), 0);
    }
    ASSERT_EQ(chmod(QFile::encodeName(at("file")), 0604), 0);
    const auto before = statusOf(at("file"));
    ASSERT_TRUE(replaceAtomically(at("file"), QByteArray(), error)) << qPrintable(error);
    const auto after = statusOf(at("file"));
    EXPECT_EQ(after.st_size, 0);
    EXPECT_EQ(after.st_mode, before.st_mode);
    EXPECT_EQ(after.st_uid, before.st_uid);
    EXPECT_EQ(after.st_gid, before.st_gid);
    EXPECT_NE(after.st_ino, before.st_ino) << "written in place";
    EXPECT_TRUE(error.isEmpty());
    EXPECT_EQ(names(), QStringList({"file"}));
}

TEST_F(FileTest, ReplaceFollowsLinks)
{
    ASSERT_TRUE(mkdir(at("sub")));
    put(at("sub/file"), "old");
    ASSERT_EQ(symlink("sub/file", QFile::encodeName(at("link"))), 0); // relative to its folder
    ASSERT_TRUE(QFile::link(at("link"), at("linkToLink")));
    ASSERT_TRUE(QFile::link(at("sub/new"), at("dangling")));
    QString error;
    ASSERT_TRUE(replaceAtomically(at("linkToLink"), "new", error)) << qPrintable(error);
    ASSERT_TRUE(replaceAtomically(at("dangling"), "made", error)) << qPrintable(error);
    EXPECT_TRUE(QFileInfo(at("linkToLink")).isSymLink() && QFileInfo(at("link")).isSymLink());
    EXPECT_EQ(contentOf(at("sub/file")), "new");
    EXPECT_EQ(contentOf(at("sub/new")), "made");
}

TEST_F(FileTest, ReplaceThatFailsLeavesAllAsItWas)
{
    put(at("file"), "old");
    ASSERT_TRUE(mkdir(at("folder")));
    ASSERT_TRUE(QFile::link(at("loop"), at("loop")));
    ASSERT_EQ(mkfifo(QFile::encodeName(at("pipe")), 0666), 0);
    const QStringList before = names();
    const auto expectFailure = [&](const QString& path, const char* reason) {
        QString error;
        EXPECT_FALSE(replaceAtomically(path, QByteArray(100000, 'x'), error));
        EXPECT_EQ((path + ": " + reason).toStdString(), error.toStdString());
        EXPECT_EQ(names(), before);
    };
    expectFailure(at("folder"), "not a regular file");
    expectFailure(at("pipe"), "not a regular file");
    expectFailure(at("loop"), "Too many levels of symbolic links");
    expectFailure(at("file/new"), "Not a directory");
    expectFailure(at("missing/new"), "No such file or directory");
    {
        const FileSizeLimit full(1000);
        expectFailure(at("file"), "File too large");
        expectFailure(at("new"), "File too large");
    }
    {
        const Unprivileged user; // the folder belongs to another, or its rights go
        ASSERT_TRUE(
            geteuid() != statusOf(at(".")).st_uid || chmod(QFile::encodeName(at(".")), 0555) == 0);
        expectFailure(at("new"), "Permission denied");
    }
    chmod(QFile::encodeName(at(".")), 0755);
    EXPECT_EQ(contentOf(at("file")), "old");
    QString error;
    EXPECT_FALSE(replaceAtomically(QString(), "x", error));
    EXPECT_FALSE(error.isEmpty());
}

} // namespace lumo::file
