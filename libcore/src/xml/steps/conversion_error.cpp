// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/xml/conversion_error.h"

#include <utility>

namespace lumo {

ConversionError::ConversionError(const char* text, QString reason)
    : std::runtime_error(text)
    , m_reason(std::move(reason))
{}

ConversionError::~ConversionError() = default;

QString faultText(const std::exception& fault)
{
    const QString text = QString::fromUtf8(fault.what());
    const auto* const conversion = dynamic_cast<const ConversionError*>(&fault);
    return conversion == nullptr ? text : text + QStringLiteral(": ") + conversion->reason();
}

} // namespace lumo
