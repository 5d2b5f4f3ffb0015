// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/export.h"

#include <QLockFile>

class QFile;

namespace lumo {

/// An advisory lock on a file, by a file "<file>.lock" beside it. A lock that a killed
/// process left behind is taken over.
///
/// The QFile must outlive the lock. The destructor releases the lock.
class LUMO_CORE_EXPORT FileLock
{
public:
    explicit FileLock(const QFile& file);

    /// \param timeoutMs  how long (ms) to wait for another process to release the
    ///     lock; negative: without limit
    /// \returns false at once if the file is not open or the lock file cannot be
    ///     created; false after the time if another process keeps the lock
    [[nodiscard]] bool tryLock(int timeoutMs);
    void unlock();

    /// Whether the last tryLock() failed because the lock file cannot be created, as
    /// in a read-only folder.
    [[nodiscard]] bool notPermitted() const;

private:
    const QFile& m_file;
    QLockFile m_lock;
};

} // namespace lumo
