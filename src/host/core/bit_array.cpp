// SPDX-License-Identifier: MIT
#include "host/core/bit_array.h"

#include <bit>
#include <cstddef>

namespace corvanta {

namespace {
std::size_t WordsFor(int count) { return (static_cast<std::size_t>(count) + 63) / 64; }
}  // namespace

void BitArray::SetCount(int count) {
  count_ = count > 0 ? count : 0;
  words_.resize(WordsFor(count_));
  ClearTail();
}

void BitArray::Set(int i, bool on) {
  if (i < 0) return;
  if (i >= count_) SetCount(i + 1);
  const uint64_t bit = uint64_t{1} << (i % 64);
  uint64_t& word = words_[static_cast<std::size_t>(i) / 64];
  word = on ? word | bit : word & ~bit;
}

void BitArray::SetAll(bool on) {
  for (uint64_t& word : words_) word = on ? ~uint64_t{0} : 0;
  ClearTail();
}

void BitArray::Invert() {
  for (uint64_t& word : words_) word = ~word;
  ClearTail();
}

int BitArray::NumberSet() const {
  int n = 0;
  for (const uint64_t word : words_) n += std::popcount(word);
  return n;
}

void BitArray::Assign(int count, std::vector<uint64_t> words) {
  words_ = std::move(words);
  SetCount(count);
}

void BitArray::ClearTail() {
  if (count_ % 64 && !words_.empty()) words_.back() &= (uint64_t{1} << (count_ % 64)) - 1;
}

}  // namespace corvanta
