// SPDX-License-Identifier: Apache-2.0
#include "fuzz_target.h"
#include "lumo/core/xml/lumo_xml_validator.h"

#include <QBuffer>
#include <QCoreApplication>

// Documents against the shipped schema.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace lumo;
    static int argc = 0;
    static const QCoreApplication application(argc, nullptr); // the network access asks for it
    static xml::XmlValidator validator;
    static const bool loaded = validator.loadXsd(QStringLiteral(LUMO_SCHEMA));
    fuzz::require(loaded, "the schema loads");
    QBuffer input;
    input.setData(fuzz::toBytes(data, size));
    fuzz::require(input.open(QIODevice::ReadOnly), "a buffer opens");
    static_cast<void>(validator.validateXml(input));
    return 0;
}
