// SPDX-License-Identifier: Apache-2.0
#include "xml/validation/quick_schema.h"

#include <libxml/parser.h>
#include <libxml/xmlreader.h>
#include <libxml/xmlschemas.h>

#include <algorithm>
#include <array>
#include <utility>

namespace lumo::xml {
namespace {

template <auto release>
struct Releaser
{
    template <typename T>
    void operator()(T* object) const
    {
        release(object);
    }
};

using Schema = std::unique_ptr<xmlSchema, Releaser<&xmlSchemaFree>>;
using SchemaParser = std::unique_ptr<xmlSchemaParserCtxt, Releaser<&xmlSchemaFreeParserCtxt>>;
using SchemaValidator = std::unique_ptr<xmlSchemaValidCtxt, Releaser<&xmlSchemaFreeValidCtxt>>;
using Reader = std::unique_ptr<xmlTextReader, Releaser<&xmlFreeTextReader>>;

/// Takes what would otherwise go to the standard error stream.
void ignore(void* /*context*/, xmlError* /*error*/) {}

/// Bytes that may make the library load something. The search finds them in UTF-8
/// only, so the reader is set to this encoding.
template <std::size_t N>
bool containsOneOf(const QByteArray& text, const std::array<const char*, N>& words)
{
    return std::any_of(
        words.begin(), words.end(), [&](const char* word) { return text.contains(word); });
}

Schema compile(const QByteArray& schema)
{
    constexpr std::array<const char*, 4> kLoading{
        "schemaLocation", "include", "import", "redefine"};
    if (schema.contains("<!DOCTYPE") || schema.contains('\0') || containsOneOf(schema, kLoading)) {
        return {};
    }
    const SchemaParser parser(xmlSchemaNewMemParserCtxt(schema.constData(), schema.size()));
    if (!parser) {
        return {};
    }
    xmlSchemaSetParserStructuredErrors(parser.get(), &ignore, nullptr);
    return Schema(xmlSchemaParse(parser.get()));
}

} // namespace

class QuickSchema::Impl
{
public:
    Schema schema; ///< null if it cannot be used
};

QuickSchema::QuickSchema()
    : m_impl(std::make_unique<Impl>())
{}

QuickSchema::QuickSchema(const QByteArray& schema)
    : QuickSchema()
{
    xmlInitParser();
    m_impl->schema = compile(schema);
}

QuickSchema::QuickSchema(QuickSchema&& other) noexcept = default;
QuickSchema& QuickSchema::operator=(QuickSchema&& other) noexcept = default;
QuickSchema::~QuickSchema() = default;

bool QuickSchema::accepts(const QByteArray& document) const
{
    // Depth and sizes were checked, so that the lower limits of this parser can
    // be lifted.
    constexpr int kOptions = XML_PARSE_NONET | XML_PARSE_HUGE;
    constexpr std::array<const char*, 3> kLoading{
        "<!DOCTYPE", "schemaLocation", "noNamespaceSchemaLocation"};
    if (!m_impl->schema || document.contains('\0') || containsOneOf(document, kLoading)) {
        return false;
    }
    const SchemaValidator validator(xmlSchemaNewValidCtxt(m_impl->schema.get()));
    const Reader reader(
        xmlReaderForMemory(document.constData(), document.size(), nullptr, "UTF-8", kOptions));
    if (!validator || !reader) {
        return false;
    }
    xmlSchemaSetValidStructuredErrors(validator.get(), &ignore, nullptr);
    xmlTextReaderSetStructuredErrorHandler(reader.get(), &ignore, nullptr);
    if (xmlTextReaderSchemaValidateCtxt(reader.get(), validator.get(), 0) != 0) {
        return false;
    }
    int more = 1;
    while (more == 1 && xmlTextReaderIsValid(reader.get()) == 1) {
        more = xmlTextReaderRead(reader.get());
    }
    return more == 0 && xmlTextReaderIsValid(reader.get()) == 1;
}

} // namespace lumo::xml
