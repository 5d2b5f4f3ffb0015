// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/export.h"

namespace lumo {

/// Registers the conversion steps of this library with the factory of
/// IXmlConversion, each under its key. To be called at start-up, before any
/// conversion; calling it again changes nothing.
///
///     "CamDB16_17"  camera databases up to version 16 to 17
///     "Xslt"        what a stylesheet does
///     "Kpx20_21"    projects up to version 2.0 to 2.1
///     "Tmpl20_21"   processing templates up to version 2.0 to 2.1
LUMO_CORE_EXPORT void registerXmlConverters();

} // namespace lumo
