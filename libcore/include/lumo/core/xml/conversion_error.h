// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/export.h"

#include <QString>

#include <stdexcept>

namespace lumo {

/// A failed conversion. what() is a fixed text, the same for all inputs; reason()
/// describes the fault in this input.
class LUMO_CORE_EXPORT ConversionError : public std::runtime_error
{
public:
    ConversionError(const char* text, QString reason);
    ~ConversionError() override;

    /// Why, with the file or the line of the document where there is one.
    [[nodiscard]] const QString& reason() const { return m_reason; }

private:
    QString m_reason;
};

/// The text of an exception; for a ConversionError followed by ": " and its reason.
[[nodiscard]] LUMO_CORE_EXPORT QString faultText(const std::exception& fault);

} // namespace lumo
