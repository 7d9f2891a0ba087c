// SPDX-License-Identifier: MIT
#include "plugin/fbx/format/read_values.h"

#include <algorithm>

namespace tavrilon::fbx {

namespace {
constexpr std::string_view kSeparator("\0\1", 2);
constexpr double kCoarseTicksPerSecond = 141120000;
}  // namespace

bool ReadContext::Fail(RecordView object, const std::string& what) {
  return status.Fail(document.FileName() + ": " + object.Place() + " \"" + ObjectName(object) + "\": " + what);
}

FbxTime ReadContext::TimeOf(int64_t ticks) const {
  return coarseTicks ? FbxTime::FromSeconds(static_cast<double>(ticks) / kCoarseTicksPerSecond) : FbxTime{ticks};
}

std::string ObjectName(RecordView object) {
  const std::string_view text = object.Text(1);
  return std::string(text.substr(0, text.find(kSeparator)));
}

bool ReadMatrix(RecordView object, std::string_view leaf, Affine& matrix) {
  std::vector<double> numbers;
  if (!object.Find(leaf).Array(0, numbers) || numbers.size() != 16) return false;
  std::array<double, 16> file{};
  std::copy(numbers.begin(), numbers.end(), file.begin());
  const Affine read = FromFile(file);
  if (!IsFinite(read)) return false;
  matrix = read;
  return true;
}

std::vector<Vector3> Triples(const std::vector<double>& numbers) {
  std::vector<Vector3> triples(numbers.size() / 3);
  for (size_t i = 0; i < triples.size(); ++i) {
    triples[i] = {Finite(numbers[i * 3]), Finite(numbers[i * 3 + 1]), Finite(numbers[i * 3 + 2])};
  }
  return triples;
}

}  // namespace tavrilon::fbx
