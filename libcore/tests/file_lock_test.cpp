// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/common/file_lock.h"

#include <QDateTime>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace lumo {
namespace {

TEST(FileLock, NeedsAnOpenFileAndExcludesOthers)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath("data"));
    FileLock lock(file);
    EXPECT_FALSE(lock.tryLock(0));
    EXPECT_FALSE(QFile::exists(folder.filePath("data.lock")));
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    EXPECT_TRUE(lock.tryLock(0));
    EXPECT_TRUE(QFile::exists(folder.filePath("data.lock")));
    {
        FileLock other(file);
        EXPECT_FALSE(other.tryLock(10));
        EXPECT_FALSE(other.notPermitted());
    }
    lock.unlock();
    FileLock other(file);
    EXPECT_TRUE(other.tryLock(0));
}

TEST(FileLock, OneThatAKilledProcessLeftIsTakenOver)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath("data"));
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    const pid_t child = fork();
    if (child == 0) {
        FileLock lock(file);
        _exit(lock.tryLock(0) ? 0 : 1); // without releasing it
    }
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_EQ(status, 0);
    ASSERT_TRUE(QFile::exists(folder.filePath("data.lock")));
    FileLock lock(file);
    EXPECT_TRUE(lock.tryLock(5000));
}

TEST(FileLock, OneThatAProcessLeftBeforeItWroteItsNumberIsTakenOver)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath("data"));
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    QFile left(folder.filePath("data.lock"));
    ASSERT_TRUE(left.open(QIODevice::WriteOnly));
    left.close();
    EXPECT_TRUE(FileLock(file).tryLock(5000));
}

TEST(FileLock, OneThatIsHeldIsNotTakenOverHoweverOldItIs)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath("data"));
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    FileLock lock(file);
    ASSERT_TRUE(lock.tryLock(0));
    QFile held(folder.filePath("data.lock"));
    ASSERT_TRUE(held.open(QIODevice::ReadWrite));
    ASSERT_TRUE(held.setFileTime(
        QDateTime::currentDateTimeUtc().addDays(-1), QFileDevice::FileModificationTime));
    EXPECT_FALSE(FileLock(file).tryLock(1500));
}

} // namespace
} // namespace lumo
