// SPDX-License-Identifier: MIT
#include "app/nearest_name.h"

#include <algorithm>
#include <cctype>

namespace app {

namespace {

char Lower(char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); }

int CommonStart(const std::string& a, const std::string& b) {
  size_t i = 0;
  while (i < a.size() && i < b.size() && Lower(a[i]) == Lower(b[i])) ++i;
  return static_cast<int>(i);
}

}  // namespace

int EditDistance(const std::string& a, const std::string& b) {
  // Three rows of the table: two letters back (for a swap), one letter back, and the present one.
  std::vector<int> before(b.size() + 1), last(b.size() + 1), row(b.size() + 1);
  for (size_t j = 0; j <= b.size(); ++j) last[j] = static_cast<int>(j);
  for (size_t i = 1; i <= a.size(); ++i) {
    row[0] = static_cast<int>(i);
    for (size_t j = 1; j <= b.size(); ++j) {
      const char x = Lower(a[i - 1]), y = Lower(b[j - 1]);
      row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + (x == y ? 0 : 1)});
      const bool swapped = i > 1 && j > 1 && x == Lower(b[j - 2]) && Lower(a[i - 2]) == y;
      if (swapped) row[j] = std::min(row[j], before[j - 2] + 1);
    }
    before = last;
    last = row;
  }
  return last[b.size()];
}

std::string NearestName(const std::string& wanted, const std::vector<std::string>& names) {
  std::string nearest;
  int least = static_cast<int>(wanted.size() + 1) / 2, longest = -1;
  for (const std::string& name : names) {
    const int distance = EditDistance(wanted, name), start = CommonStart(wanted, name);
    if (distance > least || (distance == least && start <= longest)) continue;
    least = distance, longest = start, nearest = name;
  }
  return nearest;
}

std::string Suggestion(const std::string& wanted, const std::vector<std::string>& names) {
  const std::string nearest = NearestName(wanted, names);
  return nearest.empty() ? "" : "; did you mean \"" + nearest + "\"?";
}

}  // namespace app
