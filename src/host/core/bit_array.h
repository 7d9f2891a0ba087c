// SPDX-License-Identifier: MIT
// Growable bits.
#pragma once

#include <cstdint>
#include <vector>

namespace corvanta {

class BitArray {
 public:
  explicit BitArray(int count = 0) { SetCount(count); }

  int Count() const { return count_; }
  /// New bits are clear.
  void SetCount(int count);
  /// False beyond the end.
  bool Get(int i) const { return i >= 0 && i < count_ && (words_[i / 64] >> (i % 64) & 1); }
  /// Grows to hold `i`; a negative index is ignored.
  void Set(int i, bool on = true);
  void SetAll(bool on);
  void Invert();
  int NumberSet() const;
  bool operator==(const BitArray&) const = default;

  const std::vector<uint64_t>& Words() const { return words_; }
  /// Bits beyond `count` in the last word are cleared.
  void Assign(int count, std::vector<uint64_t> words);

 private:
  void ClearTail();
  int count_ = 0;
  std::vector<uint64_t> words_;
};

}  // namespace corvanta
