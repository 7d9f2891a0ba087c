// SPDX-License-Identifier: MIT
#pragma once

#include "host/script/parser.h"

namespace corvanta::script {

/// One level of nesting while it lives; throws when the text is nested too deeply.
class Parser::Nesting {
 public:
  explicit Nesting(Parser& parser);
  Nesting(const Nesting&) = delete;
  Nesting& operator=(const Nesting&) = delete;
  ~Nesting();

 private:
  Parser& parser_;
};

}  // namespace corvanta::script
