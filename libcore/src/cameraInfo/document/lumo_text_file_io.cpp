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

/// Locks the file that is to be replaced. One that does not exist yet has no
/// content that another process could be at; making it for the lock's sake would
/// show others an empty file.
bool lockExisting(QFile& file, FileLock& lock)
{
    if (!file.open(QIODevice::ReadWrite | QIODevice::ExistingOnly)) {
        if (!file.exists()) {
            return true;
        }
        log::important()
            << QStringLiteral("Cannot open file '%1' for writing:").arg(file.fileName())
            << file.errorString();
        return false;
    }
    if (!lock.tryLock(kLockTimeoutMs)) {
        log::important() << QStringLiteral("Unable to lock file '%1'").arg(file.fileName());
        return false;
    }
    return true;
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
    m_content.clear();
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        log::important() << QStringLiteral("Unable to open file '%1'").arg(path)
                         << file.errorString();
        return false;
    }
    FileLock fileLock(file);
    if (lock && !fileLock.tryLock(kLockTimeoutMs) && !fileLock.notPermitted()) {
        log::important() << QStringLiteral("Unable to lock file '%1'").arg(path);
        return false;
    }
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError) {
        log::important() << QStringLiteral("Unable to read file '%1'").arg(path)
                         << file.errorString();
        return false;
    }
    if (!decodeUtf8(bytes, m_content)) {
        m_content.clear();
        log::important() << QStringLiteral("File '%1' is not UTF-8").arg(path);
        return false;
    }
    if (m_content.isEmpty()) {
        log::important() << QStringLiteral("File '%1' is empty").arg(path);
        return false;
    }
    return true;
}

bool TextFileIO::writeFile(const QString& path, bool lock)
{
    QFile file(path);
    FileLock fileLock(file);
    if (lock && !lockExisting(file, fileLock)) {
        return false;
    }
    QString error;
    if (!file::replaceAtomically(path, m_content.toUtf8(), error)) {
        const QString name = path + QStringLiteral(": ");
        log::important() << (openable(path) ? QStringLiteral("Cannot write file '%1':")
                                            : QStringLiteral("Cannot open file '%1' for writing:"))
                                .arg(path)
                         << (error.startsWith(name) ? error.mid(name.size()) : error);
        return false;
    }
    return true;
}

} // namespace lumo
