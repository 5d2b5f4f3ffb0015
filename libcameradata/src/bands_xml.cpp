// SPDX-License-Identifier: Apache-2.0
#include "lumo/cameradata/bands.h"
#include "lumo/cameradata/xml_values.h"

#include <QDomElement>
#include <QXmlStreamWriter>

namespace lumo {
namespace {

const QString& bandTag()
{
    static const QString tag = QStringLiteral("band");
    return tag;
}

band_t readBand(const QDomElement& element)
{
    const band_t missing; // its fields are the defaults
    band_t band;
    band.name = xml::readValue(element, QStringLiteral("name"), missing.name);
    band.wavelength = xml::readValue(element, QStringLiteral("wavelength"), missing.wavelength);
    band.width = xml::readValue(element, QStringLiteral("width"), missing.width);
    band.weight = xml::readValue(element, QStringLiteral("weight"), missing.weight);
    return band;
}

} // namespace

void bands_t::saveXML(QXmlStreamWriter& writer) const
{
    constexpr int kDigits = 10;
    for (const band_t& band : m_bands) {
        writer.writeStartElement(bandTag());
        xml::writeValue(writer, QStringLiteral("name"), band.name);
        xml::writeValue(writer, QStringLiteral("wavelength"), band.wavelength, kDigits);
        xml::writeValue(writer, QStringLiteral("width"), band.width, kDigits);
        xml::writeValue(writer, QStringLiteral("weight"), band.weight, kDigits);
        writer.writeEndElement();
    }
}

void bands_t::readXML(const QDomElement& element)
{
    std::vector<band_t> bands;
    for (QDomElement child = element.firstChildElement(bandTag()); !child.isNull();
         child = child.nextSiblingElement(bandTag())) {
        bands.push_back(readBand(child));
    }
    m_bands = std::move(bands);
}

} // namespace lumo
