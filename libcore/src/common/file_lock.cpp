// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/common/file_lock.h"

#include <QFile>

namespace lumo {

FileLock::FileLock(const QFile& file)
    : m_file(file)
    , m_lock(file.fileName() + QStringLiteral(".lock"))
{
    // A holder that was killed is found by its process number, at once. One that
    // was killed before it wrote that number left an empty file, which only its
    // age shows it. A holder that is alive may take longer: its file is also locked
    // in the system, and then not removed.
    constexpr int kUnfinishedAfterMs = 1000;
    m_lock.setStaleLockTime(kUnfinishedAfterMs);
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
