// SPDX-License-Identifier: Apache-2.0
#include "fuzz_target.h"
#include "lumo/core/specificSensor/vignetting_text.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace lumo;
    const VignettingData model = string2vignetting(QString::fromUtf8(fuzz::toBytes(data, size)));
    const QString written = vignetting2string(model);
    const VignettingData back = string2vignetting(written);
    fuzz::require(
        back.coefficients.size() == model.coefficients.size(), "no coefficient is lost", written);
    fuzz::require(vignetting2string(back) == written, "a second writing changes nothing", written);
    return 0;
}
