// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/xml/xml_conversion.h"

namespace lumo {

/// A conversion step performed by a stylesheet.
///
/// A stylesheet whose root has version="1.0" runs in libxslt, any other as
/// XSLT 2.0 in Qt's engine. Neither engine can reach the network or any file except
/// the stylesheet itself: document() fails. xsl:import and xsl:include fail in
/// libxslt and do nothing in Qt's engine. xsl:message does nothing in Qt's engine.
/// Documents that xml::checkXml refuses are refused here too.
class LUMO_CORE_EXPORT XsltConverter : public IXmlConversion
{
public:
    XsltConverter();
    ~XsltConverter() override;

    void setXsdFile(const QString& xsdFile) override; ///< kept, not used
    void setXslFile(const QString& xslFile) override;

    /// \returns a UTF-8 XML declaration, a line feed, and the result
    /// \throws ConversionError "Cannot transform XML using XSLT"; the reason is
    ///     logged as a warning, too
    [[nodiscard]] QByteArray convert(QIODevice* input) override;

    /// Lists the changes that the stylesheet declares and that apply to the input. A
    /// stylesheet declares its changes below its root, by elements "change:renamed",
    /// "change:moved", "change:rewritten" and "change:dropped" with the attributes
    /// `what` and `into` of a ConversionChange.
    /// \param input  must have passed xml::checkXml
    /// \returns none if the stylesheet cannot be read
    [[nodiscard]] std::vector<ConversionChange> changesOf(const QByteArray& input) const override;

private:
    QString m_xslFile;
    QString m_xsdFile;
};

} // namespace lumo
