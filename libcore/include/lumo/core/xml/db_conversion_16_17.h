// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/xml/xml_conversion.h"

namespace lumo {

/// Camera databases up to format version 16 to version 17: gathers the entries,
/// which were direct children of the root, in sections, and gives elements and
/// attributes their new names.
class LUMO_CORE_EXPORT DbConversion16_17 : public IXmlConversion
{
public:
    DbConversion16_17();
    ~DbConversion16_17() override;

    /// The input is validated against this schema first; empty: it is not.
    void setXsdFile(const QString& xsdFile) override;
    void setXslFile(const QString& xslFile) override; ///< does nothing

    /// \returns UTF-8 without XML declaration, indented by 4 blanks
    /// \throws std::runtime_error "XSD validation failed" with the schema's path,
    ///     or "Error converting user camera database file (16->17): " with the reason
    [[nodiscard]] QByteArray convert(QIODevice* input) override;

private:
    QString m_xsdFile;
};

} // namespace lumo
