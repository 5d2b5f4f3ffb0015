// SPDX-License-Identifier: Apache-2.0
#include "fuzz_target.h"
#include "lumo/cameradata/xml_document.h"
#include "lumo/core/xml/kpx_conversion_20_21.h"
#include "lumo/foundation/system.h"

#include <QBuffer>

#include <stdexcept>

// A project or a template, as its root says. LUMO_RESOURCES_PARENT is the folder with
// the schemas.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace lumo;
    using Mode = KpxConversion20_21::Mode;
    static const bool once = [] {
        system::setApplicationDirectory(QStringLiteral(LUMO_RESOURCES_PARENT));
        return true;
    }();
    static_cast<void>(once);
    QBuffer input;
    input.setData(fuzz::toBytes(data, size));
    fuzz::require(input.open(QIODevice::ReadOnly), "a buffer opens");
    KpxConversion20_21 step(input.data().contains("lumotmpl") ? Mode::Template : Mode::Project);
    QByteArray result;
    try {
        result = step.convert(&input);
    } catch (const std::runtime_error&) {
        return 0;
    }
    QString error;
    fuzz::require(xml::checkXml(result, error), "a result is XML", error);
    return 0;
}
