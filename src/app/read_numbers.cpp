// SPDX-License-Identifier: MIT
#include "app/read_numbers.h"

#include <charconv>
#include <cmath>

namespace app {

std::vector<float> ReadNumbers(const std::string& text) {
  std::vector<float> numbers;
  const char* at = text.data();
  const char* const end = at + text.size();
  while (true) {
    float number = 0;
    const std::from_chars_result read = std::from_chars(at, end, number);
    if (read.ec != std::errc() || !std::isfinite(number)) return {};
    numbers.push_back(number);
    if (read.ptr == end) return numbers;
    if (*read.ptr != ',') return {};
    at = read.ptr + 1;
  }
}

std::string WriteNumber(float number) {
  char text[40];
  return {text, std::to_chars(text, text + sizeof text, number).ptr};
}

bool ReadAssignment(const std::string& text, std::string& name, std::string& value) {
  const size_t equals = text.find('=');
  if (equals == std::string::npos || equals == 0) return false;
  name = text.substr(0, equals);
  value = text.substr(equals + 1);
  return true;
}

}  // namespace app
