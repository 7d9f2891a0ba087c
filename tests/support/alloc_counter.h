// SPDX-License-Identifier: MIT
// Shows that a piece of code allocates nothing.
#pragma once

#include <cstddef>

namespace tests {

/// Counts this thread's allocations by operator new, in the test and in the libraries that it links, from the
/// counter's making on (under AddressSanitizer: every malloc).
///
///   AllocCounter counter;
///   control->GetValue(time, value, valid);
///   EXPECT_EQ(counter.Count(), 0u);
class AllocCounter {
 public:
  AllocCounter();
  std::size_t Count() const;

 private:
  std::size_t start_;
};

}  // namespace tests
