// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/xml/xml_conversion.h"

namespace lumo {

/// Converts camera databases up to format version 16 to version 17. Moves the
/// entries, which were direct children of the root, into sections, and renames
/// elements and attributes.
class LUMO_CORE_EXPORT DbConversion16_17 : public IXmlConversion
{
public:
    DbConversion16_17();
    ~DbConversion16_17() override;

    /// Sets the schema that convert() validates its input against; an empty path
    /// skips the validation.
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
