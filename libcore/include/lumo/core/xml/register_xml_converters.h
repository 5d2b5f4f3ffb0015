// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/export.h"

namespace lumo {

/// Registers the conversion steps of this library with the factory of
/// IXmlConversion, each under its key. Call it at start-up, before any conversion
/// and before threads start. Further calls change nothing.
///
///     "CamDB16_17"  camera databases up to version 16 to 17
///     "Xslt"        any document, by a stylesheet
///     "Kpx20_21"    projects up to version 2.0 to 2.1
///     "Tmpl20_21"   processing templates up to version 2.0 to 2.1
LUMO_CORE_EXPORT void registerXmlConverters();

} // namespace lumo
