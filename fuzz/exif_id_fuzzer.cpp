// SPDX-License-Identifier: Apache-2.0
#include "fuzz_target.h"
#include "lumo/cameradata/exif_info.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace lumo;
    const QString identifier = QString::fromUtf8(fuzz::toBytes(data, size));
    const QStringList parts = tokenizeExifId(identifier);
    fuzz::require(!parts.isEmpty(), "there is always a part", identifier);
    int length = 0;
    for (const QString& part : parts) {
        length += part.size();
    }
    fuzz::require(length <= identifier.size(), "parts are of the text", identifier);
    return 0;
}
