// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/xml/register_xml_converters.h"

#include "lumo/core/xml/db_conversion_16_17.h"
#include "lumo/core/xml/kpx_conversion_20_21.h"
#include "lumo/core/xml/xml_conversion.h"
#include "lumo/core/xml/xslt_converter.h"

namespace lumo {
namespace {

template <typename Step>
std::unique_ptr<IXmlConversion> make()
{
    return std::make_unique<Step>();
}

template <KpxConversion20_21::Mode mode>
std::unique_ptr<IXmlConversion> makeKpx()
{
    return std::make_unique<KpxConversion20_21>(mode);
}

} // namespace

void registerXmlConverters()
{
    auto& factory = extensibleFactoryInstance<IXmlConversion>();
    factory.registerCreator("CamDB16_17", &make<DbConversion16_17>);
    factory.registerCreator("Xslt", &make<XsltConverter>);
    factory.registerCreator("Kpx20_21", &makeKpx<KpxConversion20_21::Mode::Project>);
    factory.registerCreator("Tmpl20_21", &makeKpx<KpxConversion20_21::Mode::Template>);
}

} // namespace lumo
