// SPDX-License-Identifier: Apache-2.0
#include "lumo/foundation/file.h"

#include "file_private.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryFile>
#include <sys/stat.h>

#include <utility>

namespace lumo::file {

namespace {

QString withoutTrailingSlashes(QString path)
{
    while (path.size() > 1 && path.endsWith(QLatin1Char('/'))) {
        path.chop(1);
    }
    return path;
}

/// As QFileInfo::canonicalFilePath, also where no file exists yet: the folder's links are
/// resolved, and those at the path itself.
QString placeOf(const QString& path)
{
    const QFileInfo target(linkTarget(path));
    const QString folder = target.dir().canonicalPath();
    return folder.isEmpty() ? QDir::cleanPath(target.absoluteFilePath())
                            : join(folder, target.fileName());
}

} // namespace

QString linkTarget(const QString& path)
{
    constexpr int kMaxLinks = 40; // as the kernel allows
    QFileInfo info(path);
    for (int i = 0; i < kMaxLinks && info.isSymLink(); ++i) {
        info.setFile(info.symLinkTarget());
    }
    return info.filePath();
}

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

bool isSame(const QString& a, const QString& b)
{
    // Device and file number, since spellings of a path can differ in more than links:
    // hard links, mounts, letters' case.
    struct stat statusA = {};
    struct stat statusB = {};
    const bool existsA = stat(QFile::encodeName(a).constData(), &statusA) == 0;
    const bool existsB = stat(QFile::encodeName(b).constData(), &statusB) == 0;
    if (existsA && existsB) {
        return statusA.st_dev == statusB.st_dev && statusA.st_ino == statusB.st_ino;
    }
    return existsA == existsB && placeOf(a) == placeOf(b);
}

} // namespace lumo::file
