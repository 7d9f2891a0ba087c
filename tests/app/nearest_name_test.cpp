// SPDX-License-Identifier: MIT
#include "app/nearest_name.h"

#include <gtest/gtest.h>

namespace {

struct Distance {
  const char *a, *b;
  int distance;
};

const Distance kDistances[] = {
    {"", "", 0},           {"", "abc", 3},        {"kitten", "sitting", 3}, {"form", "from", 1},
    {"Biped", "biped", 0}, {"bipde", "biped", 1}, {"hand", "hnd", 1},       {"ca", "abc", 3},
};

TEST(NearestName, DistanceEitherWay) {
  for (const Distance& d : kDistances) {
    SCOPED_TRACE(std::string(d.a) + " " + d.b);
    EXPECT_EQ(app::EditDistance(d.a, d.b), d.distance);
    EXPECT_EQ(app::EditDistance(d.b, d.a), d.distance);
  }
}

TEST(NearestName, PrefersTheSameStart) {
  EXPECT_EQ(app::NearestName("fingr", {"fangs", "fingers", "finger_bones"}), "fingers");
  EXPECT_EQ(app::NearestName("xyz", {"fangs", "fingers"}), "");
  EXPECT_EQ(app::NearestName("xyz", {}), "");
  EXPECT_EQ(app::Suggestion("xyz", {"fangs"}), "");
}

}  // namespace
