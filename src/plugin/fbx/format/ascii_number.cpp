// SPDX-License-Identifier: MIT
#include "plugin/fbx/format/ascii_number.h"

#include <charconv>
#include <limits>

namespace tavrilon::fbx {

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

struct Special {
  std::string_view begins;
  double value;
};
constexpr Special kSpecials[] = {{"1.#INF", kInfinity}, {"1.#IND", kNan}, {"1.#QNAN", kNan}, {"1.#SNAN", kNan}};

std::optional<double> ReadSpecial(std::string_view word) {
  for (const Special& special : kSpecials)
    if (word.substr(0, special.begins.size()) == special.begins) return special.value;
  return std::nullopt;
}

// Of a number that no double holds: too small if its exponent is negative, or if it has none and begins with 0.
double OutOfRange(std::string_view word) {
  const size_t exponent = word.find_first_of("eE");
  const bool small = exponent == word.npos ? word[0] == '0' || word[0] == '.' : word[exponent + 1] == '-';
  return small ? 0 : kInfinity;
}

}  // namespace

std::optional<AsciiNumber> ReadAsciiNumber(std::string_view word) {
  AsciiNumber number;
  if (word.size() > 1 && word[0] == '+' && word[1] != '-') word.remove_prefix(1);
  const char* const end = word.data() + word.size();
  const auto whole = std::from_chars(word.data(), end, number.whole);
  if (whole.ptr == end && whole.ec == std::errc()) {
    number.isInt = true;
    number.real = static_cast<double>(number.whole);
    return number;
  }
  number.whole = 0;
  const auto real = std::from_chars(word.data(), end, number.real);
  if (real.ptr == end && real.ec == std::errc()) return number;
  const bool negative = !word.empty() && word[0] == '-';
  if (negative) word.remove_prefix(1);
  if (real.ptr == end && real.ec == std::errc::result_out_of_range)
    number.real = OutOfRange(word);
  else if (const std::optional<double> special = ReadSpecial(word))
    number.real = *special;
  else
    return std::nullopt;
  if (negative) number.real = -number.real;
  return number;
}

}  // namespace tavrilon::fbx
