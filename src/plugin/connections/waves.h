// SPDX-License-Identifier: MIT
// Waves over a phase counted in periods; all lie in -1..1. Plain arithmetic.
#pragma once

#include "plugin/connections/connection_params.h"

namespace tavrilon {

/// Sine, triangle and saw are 0 and rise at a whole phase; square is 1 in the first half of a period and -1 in the
/// second. Noise is smooth, goes through one value a period that depends on the period's number and `seed` alone, and
/// does not repeat. A phase that is not finite gives 0.
float WaveAt(float_wave::Wave wave, double phase, int seed = 0);

}  // namespace tavrilon
