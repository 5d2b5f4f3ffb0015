// SPDX-License-Identifier: Apache-2.0
// The functions of lumo::file that write files.
#include "file_private.h"
#include "lumo/foundation/file.h"

#include <QByteArray>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QTemporaryFile>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <system_error>

namespace lumo::file {

namespace {

constexpr qint64 kBlock =
    1 << 20; // bytes copied or compared at once: files may be larger than memory

QString errnoText(int code)
{
    return QString::fromLocal8Bit(std::generic_category().message(code).c_str());
}

/// Sets "PATH: reason" and returns false.
bool fail(const QString& path, const QString& reason, QString& error)
{
    error = path + QStringLiteral(": ") + reason;
    return false;
}

/// Past the buffer of QFileDevice, which names no reason when a disk fills up
/// in the middle of a write.
bool writeAll(int handle, const QByteArray& content, const QString& path, QString& error)
{
    const char* rest = content.constData();
    const char* const end = rest + content.size();
    while (rest != end) {
        const ssize_t count = write(handle, rest, static_cast<std::size_t>(end - rest));
        if (count < 0 && errno != EINTR) {
            return fail(path, errnoText(errno), error);
        }
        rest += std::max<ssize_t>(count, 0);
    }
    return true;
}

bool flushToDisk(int handle, const QString& path, QString& error)
{
    // Special file systems may know no fsync; they answer EINVAL.
    if (fsync(handle) != 0 && errno != EINVAL) {
        return fail(path, errnoText(errno), error);
    }
    return true;
}

/// Makes a rename in the folder durable. When that fails the rename has still
/// taken place, so it is no failure of the operation.
void flushFolder(const QString& folder)
{
    const int handle =
        open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (handle >= 0) {
        fsync(handle);
        close(handle);
    }
}

/// Gives an open file the owner, group and mode of `old` as far as the process may.
void takeOver(const struct stat& old, int handle)
{
    const bool sameOwner = fchown(handle, old.st_uid, old.st_gid) == 0;
    const bool sameGroup = sameOwner || fchown(handle, static_cast<uid_t>(-1), old.st_gid) == 0;
    // What was meant for the old owner (set-user bit) or group is not for others.
    const mode_t ownerBits = sameOwner ? 07777 : 0777;
    const mode_t groupBits = sameGroup ? 07777 : 07707;
    fchmod(handle, old.st_mode & ownerBits & groupBits);
}

bool copyContent(QFile& source, int target, const QString& targetPath, QString& error)
{
    for (;;) {
        const QByteArray block = source.read(kBlock);
        if (source.error() != QFileDevice::NoError) {
            return fail(source.fileName(), source.errorString(), error);
        }
        if (block.isEmpty()) {
            return true;
        }
        if (!writeAll(target, block, targetPath, error)) {
            return false;
        }
    }
}

/// Makes a file that is whole the one at `target`, where nothing is yet.
bool giveName(
    QTemporaryFile& file, const QString& target, QFileDevice::Permissions permissions,
    QString& error)
{
    if (!file.setPermissions(permissions)) {
        return fail(target, file.errorString(), error);
    }
    if (!flushToDisk(file.handle(), target, error)) {
        return false;
    }
    // Unlike the system's rename this one does not replace what is there.
    if (!file.rename(target)) {
        return fail(
            target, exists(target) ? QStringLiteral("already exists") : file.errorString(), error);
    }
    file.setAutoRemove(false);
    flushFolder(dirname(target));
    return true;
}

bool hasSameContent(const QString& a, const QString& b, bool& same, QString& error)
{
    QFile first(a);
    QFile second(b);
    for (QFile* file : {&first, &second}) {
        if (!file->open(QIODevice::ReadOnly)) {
            return fail(file->fileName(), file->errorString(), error);
        }
    }
    QByteArray block;
    bool equal = true;
    do {
        block = first.read(kBlock);
        equal = block == second.read(kBlock);
        for (const QFile* file : {&first, &second}) {
            if (file->error() != QFileDevice::NoError) {
                return fail(file->fileName(), file->errorString(), error);
            }
        }
    } while (equal && !block.isEmpty());
    same = equal;
    return true;
}

/// Reads back what was copied, from the disk.
bool verify(const QString& source, QTemporaryFile& copied, const QString& target, QString& error)
{
    if (!flushToDisk(copied.handle(), target, error)) {
        return false;
    }
    // Else the pages just written would be compared, not what the disk keeps of them.
    posix_fadvise(copied.handle(), 0, 0, POSIX_FADV_DONTNEED);
    bool same = false;
    if (!hasSameContent(source, copied.fileName(), same, error)) {
        return false;
    }
    return same || fail(
                       target,
                       QStringLiteral("the copy reads back different from %1: another program "
                                      "writes to that file, or the disk is faulty")
                           .arg(source),
                       error);
}

enum class Verification { None, ReadBack };

bool copyTo(const QString& source, const QString& target, Verification verification, QString& error)
{
    const QFileInfo info(source);
    if (info.exists() && !info.isFile()) {
        return fail(source, QStringLiteral("not a regular file"), error);
    }
    QFile in(source);
    if (!in.open(QIODevice::ReadOnly)) {
        return fail(source, in.errorString(), error);
    }
    QTemporaryFile out(join(dirname(target), kTemporaryName));
    if (!out.open()) {
        return fail(target, out.errorString(), error);
    }
    return copyContent(in, out.handle(), target, error) &&
           (verification == Verification::None || verify(source, out, target, error)) &&
           giveName(out, target, in.permissions(), error);
}

} // namespace

bool copy(const QString& source, const QString& target, QString& error)
{
    return copyTo(source, target, Verification::None, error);
}

bool mayBackUp(const QString& path, const QString& backup, QString& error)
{
    if (isSame(path, backup)) {
        return fail(backup, QStringLiteral("the backup would be the file itself"), error);
    }
    if (!exists(backup)) {
        return true;
    }
    bool same = false;
    if (!hasSameContent(path, backup, same, error)) {
        return false;
    }
    return same || fail(backup, QStringLiteral("another file is kept there"), error);
}

bool backUp(const QString& path, const QString& backup, QString& error)
{
    if (!mayBackUp(path, backup, error)) {
        return false;
    }
    if (exists(backup)) {
        return true;
    }
    const QString folder = dirname(backup);
    if (!mkdir(folder)) {
        return fail(folder, QStringLiteral("the folder cannot be made"), error);
    }
    return copyTo(path, backup, Verification::ReadBack, error);
}

bool writeNew(
    const QString& path, const QByteArray& content, QFileDevice::Permissions permissions,
    QString& error)
{
    QTemporaryFile out(join(dirname(path), kTemporaryName));
    if (!out.open()) {
        return fail(path, out.errorString(), error);
    }
    return writeAll(out.handle(), content, path, error) && giveName(out, path, permissions, error);
}

bool replaceAtomically(const QString& path, const QByteArray& content, QString& error)
{
    struct stat old = {};
    const bool existed = stat(QFile::encodeName(path).constData(), &old) == 0;
    if (!existed && errno != ENOENT) {
        return fail(path, errnoText(errno), error);
    }
    if (existed && !S_ISREG(old.st_mode)) {
        return fail(path, QStringLiteral("not a regular file"), error);
    }
    const QString target = linkTarget(path);
    QSaveFile file(target);
    file.setDirectWriteFallback(false);
    if (!file.open(QIODevice::WriteOnly)) {
        return fail(path, file.errorString(), error);
    }
    if (!writeAll(file.handle(), content, path, error)) {
        return false;
    }
    if (existed) {
        takeOver(old, file.handle());
    }
    if (!flushToDisk(file.handle(), path, error)) {
        return false;
    }
    if (!file.commit()) {
        return fail(path, file.errorString(), error);
    }
    flushFolder(dirname(target));
    return true;
}

} // namespace lumo::file
