// SPDX-License-Identifier: MIT
#include "app/command_line.h"

#include <cstdio>

namespace app {

int Fail(std::string_view problem) {
  std::fprintf(stderr, "tavrilon: %.*s\n", static_cast<int>(problem.size()), problem.data());
  return kFailed;
}

}  // namespace app
