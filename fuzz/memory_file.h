// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "fuzz_target.h"

#include <sys/mman.h>
#include <unistd.h>

namespace lumo::fuzz {

/// A file in memory, with a path, for readers that take nothing else.
class MemoryFile
{
public:
    MemoryFile(const std::uint8_t* data, std::size_t size)
        : m_descriptor(memfd_create("lumo-fuzz", MFD_CLOEXEC))
    {
        require(m_descriptor >= 0, "a file in memory can be made");
        require(
            write(m_descriptor, data, size) == static_cast<ssize_t>(size),
            "a file in memory can be written");
    }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;
    ~MemoryFile() { close(m_descriptor); }

    [[nodiscard]] QString path() const
    {
        return QStringLiteral("/proc/self/fd/%1").arg(m_descriptor);
    }

private:
    int m_descriptor;
};

} // namespace lumo::fuzz
