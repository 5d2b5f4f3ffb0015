// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/cameraInfo/lumo_text_file_io.h"

#include "lumo/core/common/file_lock.h"
#include "lumo/foundation/file.h"
#include "lumo/foundation/log.h"

#include <QFile>
#include <QFileInfo>
#include <QTextCodec>

namespace lumo {
namespace {

constexpr int kLockTimeoutMs = 5000;

bool decodeUtf8(const QByteArray& bytes, QString& text)
{
    QTextCodec::ConverterState state;
    text = QTextCodec::codecForName("UTF-8")->toUnicode(bytes.constData(), bytes.size(), &state);
    return state.invalidChars == 0 && state.remainingChars == 0;
}

/// Logs `what` with the detail, and makes both the error.
bool fail(const QString& path, const QString& what, const QString& detail, QString& error)
{
    log::important() << what.arg(path) << detail;
    error = path + QStringLiteral(": ") + detail;
    return false;
}

bool failToLock(const QString& path, QString& error)
{
    log::important() << QStringLiteral("Unable to lock file '%1'").arg(path);
    error = path + QStringLiteral(": cannot be locked; another program may be using it");
    return false;
}

/// Locks the file that is to be replaced. One that does not exist yet has no
/// content that another process could be at; making it for the lock's sake would
/// show others an empty file.
bool lockExisting(QFile& file, FileLock& lock, QString& error)
{
    if (!file.open(QIODevice::ReadWrite | QIODevice::ExistingOnly)) {
        return !file.exists() ||
               fail(
                   file.fileName(), QStringLiteral("Cannot open file '%1' for writing:"),
                   file.errorString(), error);
    }
    return lock.tryLock(kLockTimeoutMs) || failToLock(file.fileName(), error);
}

/// Whether a file could be opened for writing at `path`, be it there or not.
bool openable(const QString& path)
{
    if (file::exists(path)) {
        return !QFileInfo(path).isDir() && !file::readonly(path);
    }
    const QString folder = file::dirname(path);
    return file::exists(folder) && !file::readonly(folder);
}

} // namespace

bool TextFileIO::readFile(const QString& path, bool lock)
{
    QString unused;
    return readFile(path, lock, unused);
}

bool TextFileIO::readFile(const QString& path, bool lock, QString& error)
{
    m_content.clear();
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        return fail(path, QStringLiteral("Unable to open file '%1'"), file.errorString(), error);
    }
    FileLock fileLock(file);
    if (lock && !fileLock.tryLock(kLockTimeoutMs) && !fileLock.notPermitted()) {
        return failToLock(path, error);
    }
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError) {
        return fail(path, QStringLiteral("Unable to read file '%1'"), file.errorString(), error);
    }
    if (!decodeUtf8(bytes, m_content)) {
        m_content.clear();
        return fail(
            path, QStringLiteral("Unable to read file '%1'"),
            QStringLiteral("it is not encoded in UTF-8"), error);
    }
    const QString unreadable = QStringLiteral("Unable to read file '%1'");
    return !m_content.isEmpty() || fail(path, unreadable, QStringLiteral("it is empty"), error);
}

bool TextFileIO::writeFile(const QString& path, bool lock)
{
    QString unused;
    return writeFile(path, lock, unused);
}

bool TextFileIO::writeFile(const QString& path, bool lock, QString& error)
{
    QFile file(path);
    FileLock fileLock(file);
    if (lock && !lockExisting(file, fileLock, error)) {
        return false;
    }
    QString reason;
    if (file::replaceAtomically(path, m_content.toUtf8(), reason)) {
        return true;
    }
    const QString name = path + QStringLiteral(": ");
    const QString what = openable(path) ? QStringLiteral("Cannot write file '%1':")
                                        : QStringLiteral("Cannot open file '%1' for writing:");
    return fail(path, what, reason.startsWith(name) ? reason.mid(name.size()) : reason, error);
}

} // namespace lumo
