// SPDX-License-Identifier: Apache-2.0
#include "lumo/exif/camera_from_exif.h"
#include "lumo/exif/read_exif.h"
#include "memory_file.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace lumo;
    const fuzz::MemoryFile file(data, size);
    ExifInfo info;
    QString error;
    if (!exif::readExif(file.path(), info, error)) {
        fuzz::require(!error.isEmpty(), "a refused file has a reason");
        return 0;
    }
    CameraData camera;
    static_cast<void>(exif::getCamera(info, camera, nullptr, error));
    return 0;
}
