// SPDX-License-Identifier: MIT
// Lines of memory that the evaluation of something reads, collected so that they can be fetched ahead of it.
#pragma once

#include <cstddef>
#include <vector>

namespace corvanta {

class EvaluationFootprint {
 public:
  /// Addresses only, never read through: a stale one fetches in vain.
  void Add(const void* start, size_t bytes) {
    const auto* from = static_cast<const char*>(start);
    for (size_t i = 0; i < bytes; i += kLine) lines_.push_back(from + i);
  }
  template <class T>
  void Add(const std::vector<T>& table) {
    Add(table.data(), table.size() * sizeof(T));
  }
  void Clear() { lines_.clear(); }
  const std::vector<const char*>& Lines() const { return lines_; }

  static constexpr size_t kLine = 64;

 private:
  std::vector<const char*> lines_;
};

}  // namespace corvanta
