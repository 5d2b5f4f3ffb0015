// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QStringList>

#include <cmath>

namespace lumo::exif {

/// A relative standard deviation put together from independent causes, with their names.
class RelativeError
{
public:
    /// \param share  relative standard deviation of this cause, 0.01 for 1 %
    RelativeError& add(double share, const QString& cause)
    {
        constexpr double kWorthNaming = 0.002;
        m_variance += share * share;
        if (share >= kWorthNaming) {
            m_causes.append(QStringLiteral("%1 %2 %").arg(cause).arg(100.0 * share, 0, 'f', 1));
        }
        return *this;
    }
    [[nodiscard]] double sigma() const { return std::sqrt(m_variance); }
    [[nodiscard]] QString reason() const { return m_causes.join(QStringLiteral(", ")); }

private:
    double m_variance = 0.0;
    QStringList m_causes;
};

/// The standard deviation of a number that was rounded to multiples of `step`.
[[nodiscard]] inline double roundingSigma(double step)
{
    return step / std::sqrt(12.0);
}

/// The step to which a number looks rounded: 1, 0.1, 0.01 or 0.001.
[[nodiscard]] inline double roundingStep(double number)
{
    constexpr double kFinest = 0.001;
    double step = 1.0;
    while (step > 1.5 * kFinest &&
           std::abs(number / step - std::round(number / step)) > 1e-4 / step) {
        step /= 10.0;
    }
    return step;
}

} // namespace lumo::exif
