// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/export.h"

#include <QLockFile>

class QFile;

namespace lumo {

/// An advisory lock beside a file, "<file>.lock". A lock that a process left
/// behind when it was killed is taken over.
///
/// The file must outlive the lock; a held lock is released by the destructor.
class LUMO_CORE_EXPORT FileLock
{
public:
    explicit FileLock(const QFile& file);

    /// \param timeoutMs  how long to wait for another holder; negative: for ever
    /// \returns false at once if the file is not open or no lock file can be
    ///     made, and after the time if another process holds the lock
    [[nodiscard]] bool tryLock(int timeoutMs);
    void unlock();

    /// Whether the last failure was that no lock file can be made, as in a folder
    /// that may only be read.
    [[nodiscard]] bool notPermitted() const;

private:
    const QFile& m_file;
    QLockFile m_lock;
};

} // namespace lumo
