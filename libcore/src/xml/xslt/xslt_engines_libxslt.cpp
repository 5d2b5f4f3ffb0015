// SPDX-License-Identifier: Apache-2.0
// transformWithLibxslt(): XSLT 1.0.
#include "lumo/foundation/log.h"
#include "xml/xslt/xslt_engines.h"

#include <libxml/parser.h>
#include <libxml/tree.h>
#include <libxml/xmlsave.h>
#include <libxslt/security.h>
#include <libxslt/transform.h>
#include <libxslt/xslt.h>
#include <libxslt/xsltInternals.h>
#include <libxslt/xsltutils.h>

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <memory>

namespace lumo::xml {
namespace {

/// A smart pointer to a structure that `release` frees.
template <typename T, auto release>
struct Releaser
{
    void operator()(T* object) const { release(object); }
};
template <typename T, auto release>
using Owned = std::unique_ptr<T, Releaser<T, release>>;

using Document = Owned<xmlDoc, &xmlFreeDoc>;
using Parser = Owned<xmlParserCtxt, &xmlFreeParserCtxt>;
using Program = Owned<xsltStylesheet, &xsltFreeStylesheet>;
using Context = Owned<xsltTransformContext, &xsltFreeTransformContext>;
using Security = Owned<xsltSecurityPrefs, &xsltFreeSecurityPrefs>;

/// Collects the messages of libxml2 and libxslt on this thread while it lives. The
/// libraries send some messages to global handlers, by default to the standard error
/// stream.
class Messages
{
public:
    Messages();
    Messages(const Messages&) = delete;
    Messages& operator=(const Messages&) = delete;
    ~Messages();

    QString text;

    /// In the shape of the handlers; drops what no object of this thread collects.
    static void append(void* context, const char* format, ...);

private:
    static thread_local Messages* current;

    xmlGenericErrorFunc m_formerHandler = xmlGenericError;
    void* m_formerContext = xmlGenericErrorContext;
};

thread_local Messages* Messages::current = nullptr;

Messages::Messages()
{
    static const bool once = [] {
        xmlInitParser();
        xsltInit();
        xsltSetGenericErrorFunc(nullptr, &Messages::append); // global, unlike libxml2's
        return true;
    }();
    static_cast<void>(once);
    xmlSetGenericErrorFunc(nullptr, &Messages::append);
    current = this;
}

Messages::~Messages()
{
    current = nullptr;
    xmlSetGenericErrorFunc(m_formerContext, m_formerHandler);
}

void Messages::append(void* /*context*/, const char* format, ...)
{
    std::array<char, 1024> message{};
    std::va_list arguments;
    va_start(arguments, format);
    // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized): it is started above
    std::vsnprintf(message.data(), message.size(), format, arguments);
    va_end(arguments);
    if (current != nullptr) {
        current->text += QString::fromUtf8(message.data());
    }
}

Document parse(const QByteArray& text, const QByteArray& name, Guard guard, QString& error)
{
    // Where sizes and depth were checked before, the parser's own limits, which
    // are lower, can be lifted.
    const int options = XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING |
                        (guard == Guard::Checked ? XML_PARSE_HUGE : 0);
    const Parser parser(xmlNewParserCtxt());
    if (!parser) {
        throw std::bad_alloc();
    }
    Document document(xmlCtxtReadMemory(
        parser.get(), text.constData(), text.size(), name.constData(), nullptr, options));
    if (!document) {
        const xmlError* reason = xmlCtxtGetLastError(parser.get());
        error = reason != nullptr ? QStringLiteral("line %1: %2")
                                        .arg(reason->line)
                                        .arg(QString::fromUtf8(reason->message).trimmed())
                                  : QStringLiteral("it cannot be parsed");
    }
    return document;
}

bool equal(const xmlChar* text, const char* other)
{
    return text != nullptr && std::strcmp(reinterpret_cast<const char*>(text), other) == 0;
}

bool importsOthers(const xmlDoc* stylesheet)
{
    constexpr const char* xsl = "http://www.w3.org/1999/XSL/Transform";
    for (const xmlNode* node = xmlDocGetRootElement(stylesheet)->children; node != nullptr;
         node = node->next) {
        if (node->type == XML_ELEMENT_NODE && node->ns != nullptr && equal(node->ns->href, xsl) &&
            (equal(node->name, "import") || equal(node->name, "include"))) {
            return true;
        }
    }
    return false;
}

Program compile(const Stylesheet& stylesheet, QString& error)
{
    Document document = parse(stylesheet.text, stylesheet.path.toUtf8(), Guard::Checked, error);
    if (!document) {
        return {};
    }
    if (importsOthers(document.get())) {
        error = QStringLiteral("xsl:import and xsl:include are not allowed");
        return {};
    }
    Program program(xsltParseStylesheetDoc(document.get()));
    if (!program) {
        error = QStringLiteral("it is not a valid stylesheet");
        return {};
    }
    static_cast<void>(document.release()); // the program owns it now
    return program;
}

/// Forbids everything that would leave the two documents at hand.
Security noAccess()
{
    Security security(xsltNewSecurityPrefs());
    for (const xsltSecurityOption option :
         {XSLT_SECPREF_READ_FILE, XSLT_SECPREF_WRITE_FILE, XSLT_SECPREF_CREATE_DIRECTORY,
          XSLT_SECPREF_READ_NETWORK, XSLT_SECPREF_WRITE_NETWORK}) {
        xsltSetSecurityPrefs(security.get(), option, &xsltSecurityForbid);
    }
    return security;
}

Document apply(xsltStylesheet* program, xmlDoc* input, QString& error)
{
    const Security security = noAccess();
    const Context context(xsltNewTransformContext(program, input));
    if (!security || !context || xsltSetCtxtSecurityPrefs(security.get(), context.get()) != 0) {
        error = QStringLiteral("the transformation cannot be set up");
        return {};
    }
    Document result(
        xsltApplyStylesheetUser(program, input, nullptr, nullptr, nullptr, context.get()));
    if (!result || context->state != XSLT_STATE_OK) {
        error = QStringLiteral("the transformation failed");
        return {};
    }
    return result;
}

int appendBytes(void* target, const char* bytes, int count)
{
    static_cast<QByteArray*>(target)->append(bytes, count);
    return count;
}

bool serialise(const xmlDoc* document, QByteArray& result)
{
    constexpr int options = XML_SAVE_FORMAT | XML_SAVE_NO_DECL | XML_SAVE_AS_XML;
    QByteArray text;
    xmlSaveCtxt* const save = xmlSaveToIO(&appendBytes, nullptr, &text, "UTF-8", options);
    if (save == nullptr) {
        return false;
    }
    bool good = true;
    for (xmlNode* node = document->children; node != nullptr; node = node->next) {
        if (node->type != XML_DTD_NODE) {
            good = xmlSaveTree(save, node) >= 0 && xmlSaveFlush(save) >= 0 && good;
            text.append('\n');
        }
    }
    good = xmlSaveClose(save) >= 0 && good;
    if (good) {
        result = text;
    }
    return good;
}

bool transform(
    const Stylesheet& stylesheet, const QByteArray& document, Guard guard, QByteArray& result,
    QString& reason)
{
    const Program program = compile(stylesheet, reason);
    const Document input =
        program ? parse(document, QByteArrayLiteral("input"), guard, reason) : Document();
    const Document output = input ? apply(program.get(), input.get(), reason) : Document();
    return output && serialise(output.get(), result);
}

} // namespace

bool isHarmless(const QByteArray& document)
{
    // What a search for bytes sees is what the parser sees in UTF-8 only.
    const QByteArray declaration = document.left(document.indexOf("?>")).toLower();
    const bool isUtf8 = !declaration.contains("encoding") || declaration.contains("utf-8");
    if (!isUtf8 || document.contains('\0') || document.contains("<!DOCTYPE")) {
        return false;
    }
    // Each attribute has an "=", and no attribute value contains a "<". So the number of
    // "=" up to the next "<" is at least the number of the element's attributes.
    constexpr std::ptrdiff_t kMostAttributes = 1000;
    constexpr std::ptrdiff_t kLongestText = 1 << 20;
    const char* const end = document.constData() + document.size();
    const char* tag = std::find(document.constData(), end, '<');
    while (tag != end) {
        const char* const next = std::find(tag + 1, end, '<');
        if (next - tag > kLongestText || std::count(tag, next, '=') > kMostAttributes) {
            return false;
        }
        tag = next;
    }
    return true;
}

bool transformWithLibxslt(
    const Stylesheet& stylesheet, const QByteArray& document, Guard guard, QByteArray& result,
    QString& error)
{
    const Messages messages;
    QString reason;
    const bool done = transform(stylesheet, document, guard, result, reason);
    const QString said = messages.text.simplified();
    if (!done) {
        error = QStringLiteral("%1: %2 %3").arg(stylesheet.path, reason, said).trimmed();
    } else if (!said.isEmpty()) {
        log::debug() << stylesheet.path << said;
    }
    return done;
}

} // namespace lumo::xml
