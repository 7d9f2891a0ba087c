// SPDX-License-Identifier: MIT
// How reading and writing of FBX files fail: one status with a text that names the file and the place.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace tavrilon::fbx {

/// Good until something fails; the first failure stays.
class FbxStatus {
 public:
  bool IsGood() const { return error_.empty(); }
  /// "walk.fbx: byte 1204, Objects/Geometry/Vertices: the array ends early". Empty while all is well.
  const std::string& GetErrorString() const { return error_; }
  /// Keeps the first text; always false, so that `return status.Fail(...)` reads well.
  bool Fail(std::string text) {
    if (error_.empty()) error_ = std::move(text);
    return false;
  }
  void Clear() { error_.clear(); }

 private:
  std::string error_;
};

/// What was read but not understood, or changed on the way: one line a finding, for the user's log. Findings of one
/// kind are told once with a count, and no file can make the log grow without bound.
class ReadLog {
 public:
  /// `kind` is a sentence ("Lights come in as point helpers"), `where` names an object; the first few names are kept.
  void Note(const std::string& kind, const std::string& where);
  /// "Lights come in as point helpers: Sun, Lamp and 12 more".
  std::vector<std::string> Lines() const;
  bool IsEmpty() const { return findings_.empty(); }

 private:
  struct Finding {
    std::string kind;
    std::vector<std::string> names;
    int count = 0;
  };
  std::vector<Finding> findings_;
};

}  // namespace tavrilon::fbx
