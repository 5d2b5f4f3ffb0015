// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/cameraInfo/lumo_text_file_io.h"

#include "lumo/core/common/file_lock.h"
#include "lumo/foundation/file.h"
#include "lumo/foundation/log.h"

#include <QFile>
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

/// Removes the empty file that locking had to make, unless it has been filled.
void removeIfEmpty(const QString& path)
{
    if (QFile(path).size() == 0) {
        QFile::remove(path);
    }
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
    }
    return !m_content.isEmpty();
}

bool TextFileIO::writeFile(const QString& path, bool lock)
{
    QFile file(path);
    const bool isNew = !file.exists();
    FileLock fileLock(file);
    if (lock) {
        if (!file.open(QIODevice::ReadWrite)) {
            log::important() << QStringLiteral("Cannot open file '%1' for writing:").arg(path)
                             << file.errorString();
            return false;
        }
        if (!fileLock.tryLock(kLockTimeoutMs)) {
            log::important() << QStringLiteral("Unable to lock file '%1'").arg(path);
            return false;
        }
    }
    QString error;
    if (!file::replaceAtomically(path, m_content.toUtf8(), error)) {
        log::important() << QStringLiteral("Cannot open file '%1' for writing:").arg(path) << error;
        if (lock && isNew) {
            removeIfEmpty(path);
        }
        return false;
    }
    return true;
}

} // namespace lumo
