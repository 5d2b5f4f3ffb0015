// SPDX-License-Identifier: Apache-2.0
#include "lumo/foundation/file.h"

#include <QByteArray>
#include <QDir>
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
#include <utility>

namespace lumo::file {

namespace {

/// In the folder of the file that it stands for until it is whole.
const auto kTemporaryName = QStringLiteral(".lumo-XXXXXX");

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

QString withoutTrailingSlashes(QString path)
{
    while (path.size() > 1 && path.endsWith(QLatin1Char('/'))) {
        path.chop(1);
    }
    return path;
}

/// What a chain of links at `path` ends at, be it there or not.
QString linkTarget(const QString& path)
{
    constexpr int kMaxLinks = 40; // as the kernel allows
    QFileInfo info(path);
    for (int i = 0; i < kMaxLinks && info.isSymLink(); ++i) {
        info.setFile(info.symLinkTarget());
    }
    return info.filePath();
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
    constexpr qint64 kBlock = 1 << 20;
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

} // namespace

bool exists(const QString& path)
{
    return QFileInfo::exists(path);
}

bool mkdir(const QString& path)
{
    return !path.isEmpty() && QDir().mkpath(path) && QFileInfo(path).isDir();
}

bool readonly(const QString& path)
{
    const QFileInfo info(path);
    if (!info.exists()) {
        return false;
    }
    if (info.isDir()) {
        return !QTemporaryFile(join(path, kTemporaryName)).open();
    }
    return !QFile(path).open(QIODevice::ReadWrite | QIODevice::ExistingOnly);
}

QString dirname(const QString& path)
{
    const QString whole = withoutTrailingSlashes(path);
    const int slash = whole.lastIndexOf(QLatin1Char('/'));
    return slash < 0 ? QStringLiteral(".") : withoutTrailingSlashes(whole.left(slash + 1));
}

QString filename(const QString& path)
{
    const QString whole = withoutTrailingSlashes(path);
    return whole.mid(whole.lastIndexOf(QLatin1Char('/')) + 1);
}

QString join(const QString& folder, const QString& name)
{
    if (folder.isEmpty() || name.isEmpty()) {
        return folder + name;
    }
    int first = 0;
    while (first < name.size() && name[first] == QLatin1Char('/')) {
        ++first;
    }
    const QString start = withoutTrailingSlashes(folder);
    const bool isRoot = start == QLatin1String("/");
    return start + (isRoot ? QString() : QStringLiteral("/")) + name.mid(first);
}

QString cleanup(const QString& path)
{
    QString slashed = path;
    slashed.replace(QLatin1Char('\\'), QLatin1Char('/'));
    return QDir::cleanPath(slashed);
}

bool read(const QString& path, qint64 maxBytes, QByteArray& content, QString& reason)
{
    if (exists(path) && !QFileInfo(path).isFile()) {
        reason = QStringLiteral("not a regular file");
        return false;
    }
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        reason = file.errorString();
        return false;
    }
    if (file.size() > maxBytes) {
        reason = QStringLiteral("larger than %1 MiB").arg(maxBytes >> 20);
        return false;
    }
    QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError) {
        reason = file.errorString();
        return false;
    }
    content = std::move(bytes);
    return true;
}

bool copy(const QString& source, const QString& target, QString& error)
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
           giveName(out, target, in.permissions(), error);
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
