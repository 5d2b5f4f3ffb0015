// SPDX-License-Identifier: Apache-2.0
#include "fuzz_target.h"
#include "xmp_packet.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace lumo;
    exif::XmpProperties properties;
    QString error;
    if (!exif::parseXmpPacket(fuzz::toBytes(data, size), properties, error)) {
        fuzz::require(!error.isEmpty(), "a refused packet has a reason");
        fuzz::require(properties.empty(), "a failed read leaves the properties alone");
        return 0;
    }
    static_cast<void>(properties.text("drone-dji:Model"));
    return 0;
}
