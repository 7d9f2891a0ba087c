// SPDX-License-Identifier: MIT
#include "support/alloc_counter.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "host/core/wstr.h"

namespace {

struct alignas(64) Wide {
  char bytes[64];
};

TEST(AllocCounter, CountsEachKindOfNew) {
  const tests::AllocCounter counter;
  EXPECT_EQ(counter.Count(), 0u);
  const auto single = std::make_unique<int>(1);
  EXPECT_EQ(counter.Count(), 1u);
  const auto array = std::make_unique<int[]>(100);
  EXPECT_EQ(counter.Count(), 2u);
  const auto aligned = std::make_unique<Wide>();
  EXPECT_EQ(counter.Count(), 3u);
}

// What the host's library allocates counts too, or the checks on evaluation would be blind.
TEST(AllocCounter, SeesIntoTheHostLibrary) {
  const tests::AllocCounter counter;
  const corvanta::WStr text = corvanta::FromUtf8("longer than what a text keeps in itself without allocating");
  EXPECT_GE(counter.Count(), 1u);
  EXPECT_FALSE(text.empty());
}

}  // namespace
