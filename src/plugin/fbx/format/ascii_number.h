// SPDX-License-Identifier: MIT
// Private to this folder: numbers as they stand in ASCII files.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace tavrilon::fbx {

/// A whole number, or one with a point or an exponent.
struct AsciiNumber {
  bool isInt = false;
  int64_t whole = 0;  // set if isInt
  double real = 0;    // always set
};

/// Reads all of `word`: "-12", "+1.5e-3", "inf", "nan", and the forms "1.#INF", "-1.#IND", "1.#QNAN" that some
/// run-times print. Whole numbers beyond 64 bits come as real ones; real ones beyond a double as infinity or 0. Nothing
/// for anything else.
std::optional<AsciiNumber> ReadAsciiNumber(std::string_view word);

}  // namespace tavrilon::fbx
