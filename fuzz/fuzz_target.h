// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QString>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

/// What libFuzzer calls, again and again in one process: it must keep nothing
/// from one input to the next. The result 0 takes the input into the corpus.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace lumo::fuzz {

/// A copy, as libFuzzer's own buffer ends without the NUL that Qt expects.
inline QByteArray toBytes(const std::uint8_t* data, std::size_t size)
{
    return QByteArray(reinterpret_cast<const char*>(data), static_cast<int>(size));
}

/// Ends the process, which libFuzzer takes for a finding, unless `holds`.
inline void require(bool holds, const char* what, const QString& detail = QString())
{
    if (!holds) {
        static_cast<void>(std::fprintf(stderr, "does not hold: %s %s\n", what, qPrintable(detail)));
        std::abort();
    }
}

} // namespace lumo::fuzz
