// SPDX-License-Identifier: MIT
// Random edits of the scene on show: one function a primitive, each a row of a table. An edit is a row and a seed, and
// does something sensible with whatever scene it meets, so that any part of a story is a story again.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tavrilon::scene_tests {

/// SplitMix64 (Steele, Lea and Flood, 2014): stories must be the same on every library.
class Dice {
 public:
  explicit Dice(uint64_t seed) : state_(seed) {}
  uint64_t Next() {
    uint64_t z = state_ += 0x9E3779B97F4A7C15;
    z = (z ^ z >> 30) * 0xBF58476D1CE4E5B9;
    z = (z ^ z >> 27) * 0x94D049BB133111EB;
    return z ^ z >> 31;
  }
  /// 0 to n - 1.
  int Int(int n) { return static_cast<int>(Next() % static_cast<uint64_t>(n)); }
  bool OneIn(int n) { return Int(n) == 0; }
  float Float(float from, float to) { return from + (to - from) * static_cast<float>(Next() >> 40) / 16777216.0f; }
  template <class List>
  auto Pick(const List& list) {
    return list[static_cast<size_t>(Int(static_cast<int>(list.size())))];
  }

 private:
  uint64_t state_;
};

struct EditRow {
  const char* name;
  /// Share among the edits.
  int weight;
  /// Gives what was done, for the reader of a story; empty when there was nothing to do it to.
  std::string (*run)(Dice& dice);
};

/// Edits of everything but built rigs.
const std::vector<EditRow>& SceneEdits();
/// The same with rigs of all types that are built, posed and reset.
const std::vector<EditRow>& RigEdits();

}  // namespace tavrilon::scene_tests
