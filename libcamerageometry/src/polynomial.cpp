// SPDX-License-Identifier: Apache-2.0
#include "polynomial.h"

#include <cstddef>
#include <numeric>

namespace lumo {

namespace {

/// Where the sign, seen as positive or not, changes between two places at
/// which it differs; bisects down to neighbouring numbers.
double signChange(std::span<const double> coefficients, double lower, double upper)
{
    const bool positiveBelow = polynomialValue(coefficients, lower) > 0.0;
    for (;;) {
        const double middle = std::midpoint(lower, upper);
        if (!(lower < middle && middle < upper)) {
            return upper;
        }
        const bool isBelow = (polynomialValue(coefficients, middle) > 0.0) == positiveBelow;
        (isBelow ? lower : upper) = middle;
    }
}

/// All sign changes in [lower, upper], ascending. Between neighbouring extrema
/// there is at most one, and the extrema are the sign changes of the
/// derivative: no root is missed, whatever the degree.
std::vector<double> signChanges(std::span<const double> coefficients, double lower, double upper)
{
    if (coefficients.size() < 2) {
        return {};
    }
    std::vector<double> ends = signChanges(polynomialDerivative(coefficients), lower, upper);
    ends.push_back(upper);
    std::vector<double> result;
    double begin = lower;
    for (const double end : ends) {
        if ((polynomialValue(coefficients, begin) > 0.0) !=
            (polynomialValue(coefficients, end) > 0.0)) {
            result.push_back(signChange(coefficients, begin, end));
        }
        begin = end;
    }
    return result;
}

} // namespace

double polynomialValue(std::span<const double> coefficients, double x)
{
    double value = 0.0;
    for (std::size_t i = coefficients.size(); i > 0; --i) {
        value = value * x + coefficients[i - 1];
    }
    return value;
}

std::vector<double> polynomialDerivative(std::span<const double> coefficients)
{
    std::vector<double> derivative;
    for (std::size_t i = 1; i < coefficients.size(); ++i) {
        derivative.push_back(static_cast<double>(i) * coefficients[i]);
    }
    return derivative;
}

double endOfPositiveRange(std::span<const double> coefficients, double lower, double upper)
{
    if (!(polynomialValue(coefficients, lower) > 0.0)) {
        return lower;
    }
    const std::vector<double> changes = signChanges(coefficients, lower, upper);
    return changes.empty() ? upper : changes.front();
}

} // namespace lumo
