// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/xml/xsd_type_element_index.h"

#include <QFile>
#include <QXmlStreamReader>

#include <algorithm>
#include <array>
#include <stdexcept>

namespace lumo {
namespace {

enum Type : std::size_t { Image, Camera, IndexOptions, OrthoOptions, DenseOptions, InitialOptions };

constexpr std::array<const char*, 6> kTypeNames{"imageType",        "cameraType",
                                                "indexOptionsType", "orthoOptionsType",
                                                "denseOptionsType", "initialOptionsType"};

} // namespace

class XsdTypeElementIndex::State
{
public:
    explicit State(const QString& xsdFile);

    void scan();

    std::array<Positions, kTypeNames.size()> maps;

private:
    void complexType();
    [[nodiscard]] Positions* recordedType();

    QFile m_file;
    QXmlStreamReader m_reader;
};

XsdTypeElementIndex::State::State(const QString& xsdFile)
    : m_file(xsdFile)
{
    if (!m_file.open(QIODevice::ReadOnly)) {
        throw std::runtime_error("Xsd file could not be opened");
    }
    m_reader.setDevice(&m_file);
}

void XsdTypeElementIndex::State::scan()
{
    if (m_reader.readNext() != QXmlStreamReader::StartDocument) {
        throw std::runtime_error("Error parsing XSD. Start of document not found");
    }
    while (!m_reader.atEnd()) {
        if (m_reader.readNext() != QXmlStreamReader::StartElement) {
            continue;
        }
        if (m_reader.name() == QLatin1String("element")) {
            m_reader.skipCurrentElement();
        } else if (m_reader.name() == QLatin1String("complexType")) {
            complexType();
        }
    }
    if (m_reader.hasError()) {
        throw std::runtime_error(QStringLiteral("Error parsing XSD. line %1: %2")
                                     .arg(m_reader.lineNumber())
                                     .arg(m_reader.errorString())
                                     .toStdString());
    }
}

/// The map of the type that starts here; null if it is of no interest.
XsdTypeElementIndex::Positions* XsdTypeElementIndex::State::recordedType()
{
    const QXmlStreamAttributes attributes = m_reader.attributes();
    if (attributes.size() != 1) {
        return nullptr;
    }
    const auto found = std::find_if(kTypeNames.begin(), kTypeNames.end(), [&](const char* name) {
        return attributes.front().value() == QLatin1String(name);
    });
    return found == kTypeNames.end()
               ? nullptr
               : &maps.at(static_cast<std::size_t>(found - kTypeNames.begin()));
}

void XsdTypeElementIndex::State::complexType()
{
    Positions* const positions = recordedType();
    // Depth 1 is the sequence or other group, elements are declared inside of it.
    for (int depth = 0; depth >= 0 && !m_reader.atEnd();) {
        const QXmlStreamReader::TokenType token = m_reader.readNext();
        if (token == QXmlStreamReader::EndElement) {
            --depth;
        } else if (token == QXmlStreamReader::StartElement) {
            ++depth;
            const QXmlStreamAttributes attributes = m_reader.attributes();
            if (positions != nullptr && depth >= 2 && !attributes.isEmpty() &&
                m_reader.name() == QLatin1String("element")) {
                const int position = static_cast<int>(positions->size());
                (*positions)[attributes.front().value().toString()] = position;
            }
        }
    }
}

XsdTypeElementIndex::XsdTypeElementIndex(const QString& xsdFile)
    : m_state(std::make_unique<State>(xsdFile))
{
    m_state->scan();
}

XsdTypeElementIndex::~XsdTypeElementIndex() = default;

const XsdTypeElementIndex::Positions& XsdTypeElementIndex::imageElements() const
{
    return m_state->maps[Image];
}

const XsdTypeElementIndex::Positions& XsdTypeElementIndex::cameraElements() const
{
    return m_state->maps[Camera];
}

const XsdTypeElementIndex::Positions& XsdTypeElementIndex::indexOptionsElements() const
{
    return m_state->maps[IndexOptions];
}

const XsdTypeElementIndex::Positions& XsdTypeElementIndex::orthoOptionsElements() const
{
    return m_state->maps[OrthoOptions];
}

const XsdTypeElementIndex::Positions& XsdTypeElementIndex::denseOptionsElements() const
{
    return m_state->maps[DenseOptions];
}

const XsdTypeElementIndex::Positions& XsdTypeElementIndex::initialOptionsElements() const
{
    return m_state->maps[InitialOptions];
}

} // namespace lumo
