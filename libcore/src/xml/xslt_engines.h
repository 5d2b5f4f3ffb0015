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

/// Transforms a document. Neither it nor the stylesheet may be nested so deep,
/// or contain entities such, that xml::checkXml refuses them.
/// \param[out] result  UTF-8 without XML declaration; untouched on failure
/// \param[out] error  the reason on failure, else untouched
[[nodiscard]] bool transformWithLibxslt(
    const Stylesheet& stylesheet, const QByteArray& document, QByteArray& result, QString& error);
/// Likewise.
[[nodiscard]] bool transformWithXmlQuery(
    const Stylesheet& stylesheet, const QByteArray& document, QByteArray& result, QString& error);

} // namespace lumo::xml
