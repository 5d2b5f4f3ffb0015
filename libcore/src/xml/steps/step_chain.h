// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/xml/xml_conversion.h"

#include <QByteArray>
#include <QString>

#include <functional>
#include <memory>
#include <vector>

namespace lumo::xml {

/// A conversion step that has not been created yet.
struct ChainStep
{
    QString label; ///< for the log
    /// Returns null, with the reason, if the step cannot be created.
    std::function<std::unique_ptr<IXmlConversion>(QString& reason)> create;
};

/// What a caller of runChain() may want to know; each may be empty.
struct ChainListener
{
    /// Called with the index of each step before it is created.
    std::function<void(std::size_t index)> starting;
    /// Called after each step with what it changed. Without it no step keeps its input,
    /// which for a large document is half of the memory.
    std::function<void(std::size_t index, std::vector<ConversionChange>&& changes)> finished;
};

/// Runs each step on the result of the one before, in memory, and logs the labels.
/// \param[in,out] document  on success the result, else unspecified
/// \param[out] error  why a step could not be created, else untouched
/// \returns false if a step could not be created
/// \throws what a step throws, which is std::runtime_error if it cannot convert
[[nodiscard]] bool runChain(
    const std::vector<ChainStep>& steps, const ChainListener& listener, QByteArray& document,
    QString& error);

} // namespace lumo::xml
