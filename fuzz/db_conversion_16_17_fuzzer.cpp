// SPDX-License-Identifier: Apache-2.0
#include "fuzz_target.h"
#include "lumo/cameradata/xml_document.h"
#include "lumo/core/xml/db_conversion_16_17.h"

#include <QBuffer>

#include <stdexcept>

// Without the schema: it would stop most inputs, and has a target of its own.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace lumo;
    QBuffer input;
    input.setData(fuzz::toBytes(data, size));
    fuzz::require(input.open(QIODevice::ReadOnly), "a buffer opens");
    QByteArray result;
    try {
        result = DbConversion16_17().convert(&input);
    } catch (const std::runtime_error&) {
        return 0;
    }
    QString error;
    fuzz::require(xml::checkXml(result, error), "a result is XML", error);
    return 0;
}
