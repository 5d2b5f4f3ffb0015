// SPDX-License-Identifier: Apache-2.0
#include "fuzz_target.h"
#include "sensor_size_rows.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace lumo;
    exif::SensorSizes sizes;
    QString error;
    if (!exif::parseSensorSizes(fuzz::toBytes(data, size), sizes, error)) {
        fuzz::require(error.startsWith(QLatin1String("line ")), "an error names the line", error);
        fuzz::require(sizes.isEmpty(), "a failed read leaves the table alone");
    }
    return 0;
}
