// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QString>

namespace lumo::xml {

struct Stylesheet
{
    QByteArray text;
    QString path; ///< for messages and as the base of relative addresses
};

/// Whether a document has been through xml::checkXml.
enum class Guard {
    Checked,
    /// Not checked, but isHarmless() is true. libxml2's own limit of the depth, which
    /// equals that of xml::checkXml, then protects the parser.
    ByParser,
};

/// Whether libxml2's own limits are enough to parse a document safely. The document
/// must have no document type (so no entities), no long text, and no tag with very
/// many attributes, because the parser's time grows with the square of their number.
/// Looks at bytes only, which takes a hundredth of the time of xml::checkXml. May
/// return false for a harmless document, never true for a harmful one.
[[nodiscard]] bool isHarmless(const QByteArray& document);

/// Transforms a document. The stylesheet must have been through xml::checkXml.
/// \param[out] result  UTF-8 without XML declaration; untouched on failure
/// \param[out] error  the reason on failure, else untouched
[[nodiscard]] bool transformWithLibxslt(
    const Stylesheet& stylesheet, const QByteArray& document, Guard guard, QByteArray& result,
    QString& error);
/// Transforms a document as XSLT 2.0 in Qt's engine. Stylesheet and document must have
/// been through xml::checkXml.
/// \param[out] result  UTF-8 without XML declaration; untouched on failure
/// \param[out] error  the reason on failure, else untouched
[[nodiscard]] bool transformWithXmlQuery(
    const Stylesheet& stylesheet, const QByteArray& document, QByteArray& result, QString& error);

} // namespace lumo::xml
