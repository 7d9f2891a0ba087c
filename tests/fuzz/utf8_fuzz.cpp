// SPDX-License-Identifier: MIT
// Any bytes give a text, any text gives well-formed UTF-8, and well-formed bytes come back as they were.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "host/core/wstr.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const std::string again = corvanta::ToUtf8(corvanta::FromUtf8(bytes));
  if (!corvanta::IsUtf8(again)) std::abort();
  if (corvanta::IsUtf8(bytes) && again != bytes) std::abort();
  return 0;
}
