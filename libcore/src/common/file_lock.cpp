// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/common/file_lock.h"

#include <QFile>

namespace lumo {

FileLock::FileLock(const QFile& file)
    : m_file(file)
    , m_lock(file.fileName() + QStringLiteral(".lock"))
{
    // A holder that is alive may take long; one that is not is found by its
    // process number, whatever the time.
    m_lock.setStaleLockTime(0);
}

bool FileLock::tryLock(int timeoutMs)
{
    return m_file.isOpen() && m_lock.tryLock(timeoutMs);
}

void FileLock::unlock()
{
    m_lock.unlock();
}

bool FileLock::notPermitted() const
{
    return m_lock.error() == QLockFile::PermissionError;
}

} // namespace lumo
