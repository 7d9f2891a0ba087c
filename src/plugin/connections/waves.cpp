// SPDX-License-Identifier: MIT
#include "plugin/connections/waves.h"

#include <cmath>
#include <cstdint>

namespace tavrilon {

namespace {

constexpr double kTurn = 6.283185307179586;

// The finaliser of SplitMix64 (Steele, Lea and Flood, "Fast splittable pseudorandom number generators", 2014).
uint64_t Mixed(uint64_t z) {
  z += 0x9E3779B97F4A7C15;
  z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9;
  z = (z ^ (z >> 27)) * 0x94D049BB133111EB;
  return z ^ (z >> 31);
}

// -1..1 for a whole number.
double LatticeValue(double whole, int seed) {
  // Phases far out share their values rather than overflow.
  const auto index = static_cast<int64_t>(std::fmod(whole, 9007199254740992.0));
  const uint64_t bits = Mixed(static_cast<uint64_t>(index) ^ Mixed(static_cast<uint32_t>(seed)));
  return static_cast<double>(bits >> 11) / 4503599627370496.0 - 1;  // 53 bits over 2^52
}

double Noise(double phase, int seed) {
  const double whole = std::floor(phase), u = phase - whole;
  const double a = LatticeValue(whole, seed), b = LatticeValue(whole + 1, seed);
  return a + (b - a) * u * u * (3 - 2 * u);
}

double Value(float_wave::Wave wave, double phase, int seed) {
  const double u = phase - std::floor(phase);
  switch (wave) {
    case float_wave::Wave::Sine:
      return std::sin(u * kTurn);
    case float_wave::Wave::Triangle:
      return u < 0.25 ? 4 * u : u < 0.75 ? 2 - 4 * u : 4 * u - 4;
    case float_wave::Wave::Square:
      return u < 0.5 ? 1 : -1;
    case float_wave::Wave::Saw:
      return u < 0.5 ? 2 * u : 2 * u - 2;
    case float_wave::Wave::Noise:
      return Noise(phase, seed);
  }
  return 0;
}

}  // namespace

float WaveAt(float_wave::Wave wave, double phase, int seed) {
  return std::isfinite(phase) ? static_cast<float>(Value(wave, phase, seed)) : 0;
}

}  // namespace tavrilon
