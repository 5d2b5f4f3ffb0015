// SPDX-License-Identifier: Apache-2.0
#include "fuzz_target.h"
#include "specificSensor/tiff_rows.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace lumo;
    constexpr quint32 kHeight = 12; // a small picture, so that inputs are small
    const QByteArray before = fuzz::toBytes(data, size);
    QByteArray tiff = before;
    QString error;
    if (!cutTiffRows(tiff, kHeight, {3, 7}, error)) {
        fuzz::require(!error.isEmpty(), "a refused file has a reason");
        fuzz::require(tiff == before, "a refused file is left alone");
        return 0;
    }
    fuzz::require(tiff.size() == before.size(), "the file keeps its length");
    // The result is a picture of 7 rows, of which all can be kept.
    fuzz::require(cutTiffRows(tiff, 7, {0, 7}, error), "the result can be read", error);
    return 0;
}
