// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/services/proc_fail_code.h"

namespace lumo::text {
namespace {

struct NamedCode
{
    ProcFailCode code;
    const char* name;
};

constexpr NamedCode kCodes[] = {
    {ProcFailCode::None, "FAIL_NONE"},
    {ProcFailCode::Unknown, "FAIL_UNKNOWN"},
    {ProcFailCode::InitGcpcsToOutcs, "FAIL_INIT_GCPCS_TO_OUTCS"},
    {ProcFailCode::InitInvalidOutcs, "FAIL_INIT_INVALID_OUTCS"},
    {ProcFailCode::InitInvalidInputs, "FAIL_INIT_INVALID_INPUTS"},
    {ProcFailCode::InitDisjointImgsGcps, "FAIL_INIT_DISJOINT_IMGS_GCPS"},
    {ProcFailCode::InitOpenImage, "FAIL_INIT_OPEN_IMAGE"},
    {ProcFailCode::InitNormImageOpenRo, "FAIL_INIT_NORM_IMAGE_OPEN_RO"},
    {ProcFailCode::InitNormImageOpenRw, "FAIL_INIT_NORM_IMAGE_OPEN_RW"},
    {ProcFailCode::InitNormImageReadRect, "FAIL_INIT_NORM_IMAGE_READ_RECT"},
    {ProcFailCode::InitNormImageWrite, "FAIL_INIT_NORM_IMAGE_WRITE"},
    {ProcFailCode::InitThumbImageRead, "FAIL_INIT_THUMB_IMAGE_READ"},
    {ProcFailCode::InitAltNotEnoughGeotags, "FAIL_INIT_ALT_NOT_ENOUGH_GEOTAGS"},
    {ProcFailCode::InitAltNoGeomMatch, "FAIL_INIT_ALT_NO_GEOM_MATCH"},
    {ProcFailCode::InitAltStart, "FAIL_INIT_ALT_START"},
    {ProcFailCode::InitRelativePipelineProc, "FAIL_INIT_RELATIVE_PIPELINE_PROC"},
    {ProcFailCode::InitNoCalibCameras, "FAIL_INIT_NO_CALIB_CAMERAS"},
    {ProcFailCode::InitRematch, "FAIL_INIT_REMATCH"},
    {ProcFailCode::InitCalcOrthoArea, "FAIL_INIT_CALC_ORTHO_AREA"},
    {ProcFailCode::InitCalcGsd, "FAIL_INIT_CALC_GSD"},
};

} // namespace

QString toString(const ProcFailCode& code)
{
    for (const NamedCode& known : kCodes) {
        if (known.code == code) {
            return QString::fromLatin1(known.name);
        }
    }
    return QStringLiteral("unknown");
}

} // namespace lumo::text
