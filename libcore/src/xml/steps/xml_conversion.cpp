// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/xml/xml_conversion.h"

namespace lumo {

IXmlConversion::IXmlConversion() = default;
IXmlConversion::IXmlConversion(const IXmlConversion&) = default;
IXmlConversion& IXmlConversion::operator=(const IXmlConversion&) = default;
IXmlConversion::~IXmlConversion() = default;

std::vector<ConversionChange> IXmlConversion::changesOf(const QByteArray& /*input*/) const
{
    return {};
}

template class ExtensibleFactory<IXmlConversion>;

template <>
ExtensibleFactory<IXmlConversion>& extensibleFactoryInstance<IXmlConversion>()
{
    static ExtensibleFactory<IXmlConversion> theOne;
    return theOne;
}

} // namespace lumo
