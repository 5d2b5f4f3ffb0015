// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

#include <stdexcept>
#include <utility>

namespace lumo::xml {

/// What XsltConverter throws. Its text is the same for all failures.
class XsltError : public std::runtime_error
{
public:
    explicit XsltError(QString reason)
        : std::runtime_error("Cannot transform XML using XSLT")
        , m_reason(std::move(reason))
    {}

    /// Why, with the stylesheet or the line of the document.
    [[nodiscard]] const QString& reason() const { return m_reason; }

private:
    QString m_reason;
};

} // namespace lumo::xml
