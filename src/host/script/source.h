// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>

#include "host/core/wstr.h"

namespace corvanta::script {

/// A place in a text, both from 1. Columns count characters; line 0 is "nowhere".
struct Pos {
  uint32_t line = 0, column = 0;
};

/// A script text and the name that messages give it.
struct Source {
  WStr name;
  WStr text;
  /// Line `line` from 1 without its end.
  WStr Line(uint32_t line) const;
};
using SourcePtr = std::shared_ptr<const Source>;

}  // namespace corvanta::script
