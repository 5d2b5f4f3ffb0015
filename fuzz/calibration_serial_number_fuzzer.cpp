// SPDX-License-Identifier: Apache-2.0
#include "calibration_serial_number.h"
#include "fuzz_target.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace lumo;
    QString error;
    const QString serialNumber =
        exif::findCalibrationSerialNumber(fuzz::toBytes(data, size), error);
    fuzz::require(
        serialNumber.isEmpty() != error.isEmpty(), "there is a number or a reason", error);
    fuzz::require(serialNumber.size() <= 64, "a number is short", serialNumber);
    return 0;
}
