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
    /// Not, but isHarmless() holds: libxml2's own limit of the depth does instead,
    /// which is the same.
    ByParser,
};

/// Whether libxml2's own limits are enough to parse a document safely: it has no
/// document type, so no entities, no long text, and no tag with very many
/// attributes, for which the parser's time grows with the square. Looks at bytes only, so that
/// it takes a hundredth of the time of xml::checkXml; may say no to a good one.
[[nodiscard]] bool isHarmless(const QByteArray& document);

/// Transforms a document. The stylesheet must have been through xml::checkXml.
/// \param[out] result  UTF-8 without XML declaration; untouched on failure
/// \param[out] error  the reason on failure, else untouched
[[nodiscard]] bool transformWithLibxslt(
    const Stylesheet& stylesheet, const QByteArray& document, Guard guard, QByteArray& result,
    QString& error);
/// Likewise, of a document that has been through xml::checkXml.
[[nodiscard]] bool transformWithXmlQuery(
    const Stylesheet& stylesheet, const QByteArray& document, QByteArray& result, QString& error);

} // namespace lumo::xml
