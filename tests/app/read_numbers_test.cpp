// SPDX-License-Identifier: MIT
#include "app/read_numbers.h"

#include <gtest/gtest.h>

namespace {

TEST(ReadNumbers, WholeTextOrNothing) {
  EXPECT_EQ(app::ReadNumbers("1,-2.5,3e-2"), (std::vector<float>{1, -2.5f, 0.03f}));
  for (const char* text : {"", ",", "1,", ",1", "1,,2", "1 ", " 1", "1;2", "nan", "inf", "1e99", "0x10", "1,a", "--1"})
    EXPECT_TRUE(app::ReadNumbers(text).empty()) << text;
}

TEST(ReadNumbers, WritingGivesTheNumberBack) {
  for (float number : {0.0f, 1.0f, -0.1f, 1e-7f, 16777216.0f, 3.4e38f})
    EXPECT_EQ(app::ReadNumbers(app::WriteNumber(number)), std::vector<float>{number});
}

TEST(ReadNumbers, Assignments) {
  std::string name, value;
  EXPECT_TRUE(app::ReadAssignment("a=b=c", name, value));
  EXPECT_EQ(name + "|" + value, "a|b=c");
  EXPECT_TRUE(app::ReadAssignment("a=", name, value));
  EXPECT_EQ(value, "");
  for (const char* text : {"", "a", "=b"}) EXPECT_FALSE(app::ReadAssignment(text, name, value)) << text;
}

}  // namespace
