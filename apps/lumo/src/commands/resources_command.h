// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "show/output.h"

#include <optional>
#include <vector>

namespace lumo::program {

/// Limits that the user sets instead of those found; at least 1 each.
struct ResourceRequest
{
    std::optional<int> maxCPUs;
    std::optional<int> maxRamGB;
    std::vector<int> disabledGpus; ///< from 0
};

/// `lumo resources`: CPUs, memory and GPUs for processing, and what set each.
[[nodiscard]] ExitCode showResources(const ResourceRequest& request, const CommonOptions& options);

} // namespace lumo::program
