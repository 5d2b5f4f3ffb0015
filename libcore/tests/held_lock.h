// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/common/file_lock.h"

#include <QFile>
#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <optional>

namespace lumo::test {

/// Holds the lock of an existing file while it lives.
class HeldLock
{
public:
    explicit HeldLock(const QString& path)
        : m_file(path)
        , m_lock(m_file)
    {
        EXPECT_TRUE(m_file.open(QIODevice::ReadOnly) && m_lock.tryLock(0)) << qPrintable(path);
    }

private:
    QFile m_file;
    FileLock m_lock;
};

/// Whether an operation is not done while the file's lock is held, and is afterwards.
template <typename Operation>
bool waitsForLock(const QString& path, Operation operation)
{
    constexpr std::chrono::milliseconds kLongerThanItTakes(300);
    std::optional<HeldLock> held(path);
    std::future<bool> done = std::async(std::launch::async, operation);
    const bool waited = done.wait_for(kLongerThanItTakes) == std::future_status::timeout;
    held.reset();
    return done.get() && waited;
}

} // namespace lumo::test
