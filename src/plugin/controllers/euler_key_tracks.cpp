// SPDX-License-Identifier: MIT
#include "plugin/controllers/euler_key_tracks.h"

#include <algorithm>

namespace tavrilon {

using namespace corvanta;

std::vector<TimeValue> KeyTracks::Times() const {
  std::vector<TimeValue> times;
  ForEach([&](const Control& c) {
    for (int i = 0; i < c.NumKeys(); ++i) times.push_back(c.GetKeyTime(i));
  });
  std::sort(times.begin(), times.end());
  times.erase(std::unique(times.begin(), times.end()), times.end());
  return times;
}

bool KeyTracks::LastKeyBefore(TimeValue t, TimeValue& time) const {
  bool found = false;
  ForEach([&](const Control& c) {
    TimeValue key = 0;
    if (!c.GetNextKeyTime(t, false, key)) return;
    time = found ? std::max(time, key) : key;
    found = true;
  });
  return found;
}

}  // namespace tavrilon
