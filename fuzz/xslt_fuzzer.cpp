// SPDX-License-Identifier: Apache-2.0
#include "fuzz_target.h"
#include "lumo/cameradata/xml_document.h"
#include "lumo/core/xml/xslt_converter.h"

#include <QBuffer>

#include <stdexcept>

// LUMO_STYLESHEET is the step's, by its path.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace lumo;
    QBuffer input;
    input.setData(fuzz::toBytes(data, size));
    fuzz::require(input.open(QIODevice::ReadOnly), "a buffer opens");
    XsltConverter converter;
    converter.setXslFile(QStringLiteral(LUMO_STYLESHEET));
    QByteArray result;
    try {
        result = converter.convert(&input);
    } catch (const std::runtime_error&) {
        return 0;
    }
    // Without an element that the step knows its result is a declaration only.
    QString error;
    fuzz::require(
        result.count('<') <= 1 || xml::checkXml(result, error), "a result is XML",
        error + QString::fromUtf8(result));
    return 0;
}
