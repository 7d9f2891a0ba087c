// SPDX-License-Identifier: MIT
// A folder for one test, removed with what it holds.
#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <string>
#include <vector>

#include "host/core/wstr.h"

namespace corvanta {

class TempFolder {
 public:
  TempFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "tavrilon-test-XXXXXX").string();
    path_ = mkdtemp(pattern.data());
  }
  ~TempFolder() {
    std::error_code ignored;
    std::filesystem::permissions(path_, std::filesystem::perms::owner_all, ignored);
    std::filesystem::remove_all(path_, ignored);
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  const std::filesystem::path& Path() const { return path_; }
  WStr File(const WStr& name) const { return FromUtf8(path_.string()) + L"/" + name; }
  size_t CountEntries() const {
    const auto entries = std::filesystem::directory_iterator(path_);
    return std::distance(begin(entries), end(entries));
  }

 private:
  std::filesystem::path path_;
};

}  // namespace corvanta
