// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

/// The seed of this run's random tests: the environment variable
/// LUMO_TEST_SEED if it is set, else a fresh one. Printed when a test fails,
/// so that the run can be repeated.
std::uint32_t testSeed();
