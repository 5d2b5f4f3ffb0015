// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/xml/xsd_type_element_index.h"
#include "memory_file.h"

#include <stdexcept>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace lumo;
    const fuzz::MemoryFile file(data, size);
    try {
        const XsdTypeElementIndex index(file.path());
        for (const auto& [name, position] : index.imageElements()) {
            fuzz::require(position >= 0, "positions count from 0", name);
        }
    } catch (const std::runtime_error&) {
        return 0;
    }
    return 0;
}
