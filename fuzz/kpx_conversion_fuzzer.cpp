// SPDX-License-Identifier: Apache-2.0
#include "fuzz_target.h"
#include "lumo/core/xml/lumo_xml_validator.h"
#include "lumo/core/xml/param_converter.h"
#include "lumo/core/xml/register_xml_converters.h"
#include "lumo/foundation/file.h"
#include "lumo/foundation/system.h"
#include "memory_file.h"

#include <stdexcept>

// A project or a template of any version, through all of its steps.
// LUMO_RESOURCES_PARENT is the folder with schemas and stylesheets.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace lumo;
    static const int target = [] {
        registerXmlConverters();
        system::setApplicationDirectory(QStringLiteral(LUMO_RESOURCES_PARENT));
        return file::filename(getCurrentXsdPath()).toInt();
    }();
    QByteArray result;
    try {
        const fuzz::MemoryFile file(data, size);
        ParamConverter converter(file.path(), target);
        QString error;
        if (!converter.needsConversion() || !converter.convertInMemory(result, error)) {
            fuzz::require(
                !error.contains(QLatin1String("of format version")),
                "steps are planned from the version that the stylesheets see", error);
            return 0;
        }
    } catch (const std::runtime_error&) {
        return 0;
    }
    const fuzz::MemoryFile file(
        reinterpret_cast<const std::uint8_t*>(result.constData()),
        static_cast<std::size_t>(result.size()));
    fuzz::require(
        !ParamConverter(file.path(), target).needsConversion(),
        "a result is of the target version");
    return 0;
}
