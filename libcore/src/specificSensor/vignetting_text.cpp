// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/specificSensor/vignetting_text.h"

#include "lumo/cameradata/written_digits.h"
#include "lumo/foundation/text.h"

#include <QStringList>

#include <sstream>
#include <string>
#include <vector>

namespace lumo {

QString vignetting2string(const VignettingData& vignetting)
{
    QStringList parts;
    const Eigen::MatrixXd& coefficients = vignetting.coefficients;
    for (Eigen::Index i = 0; i < coefficients.size(); ++i) {
        parts.append(QString::number(coefficients.data()[i], 'g', writtendigits::kVignetting));
    }
    return parts.join(QLatin1Char(','));
}

VignettingData string2vignetting(const QString& text)
{
    std::vector<double> values;
    std::istringstream stream(text.toStdString());
    for (std::string token; std::getline(stream, token, ',');) {
        values.push_back(text::fromString<double>(QString::fromStdString(token)));
    }
    VignettingData result;
    result.type = VignettingType::Polynomial;
    result.coefficients =
        Eigen::Map<Eigen::VectorXd>(values.data(), static_cast<Eigen::Index>(values.size()));
    return result;
}

} // namespace lumo
