// SPDX-License-Identifier: MIT
// What the readers of single objects share: values out of records, Properties70 blocks by tables, errors with a place.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "plugin/fbx/format/affine.h"
#include "plugin/fbx/format/document.h"
#include "plugin/fbx/format/time.h"

namespace tavrilon::fbx {

struct ReadContext {
  const FbxDocument& document;
  ReadLog& log;
  FbxStatus& status;
  /// Files of the newest kind may count 141120000 ticks a second.
  bool coarseTicks = false;

  /// "walk.fbx: byte 1204, Objects/Geometry "Body": what". Always false.
  bool Fail(RecordView object, const std::string& what);
  /// The array in the child `leaf` of `parent`; empty when there is none. False, with the status set, when it is
  /// damaged or too large.
  template <class T>
  bool Array(RecordView parent, std::string_view leaf, std::vector<T>& values) {
    values.clear();
    const RecordView record = parent.Find(leaf);
    if (record.NumProperties() == 0 || record.Array(0, values) || document.GetStatus().IsGood()) return true;
    return status.Fail(document.GetStatus().GetErrorString());
  }
  FbxTime TimeOf(int64_t ticks) const;
};

/// The name of an object, which documents give as "name 00 01 class".
std::string ObjectName(RecordView object);

/// What is no number counts as 0, so that nothing behind the reader meets a NaN.
inline double Finite(double value) { return std::isfinite(value) ? value : 0; }

// Values of a row of a Properties70 block, which stand behind name, type, label and flags.
constexpr size_t kFirstValue = 4;
inline double NumberOf(RecordView row) { return Finite(row.Double(kFirstValue)); }
inline int IntOf(RecordView row) {
  const double value = NumberOf(row);
  return value > -1e9 && value < 1e9 ? static_cast<int>(value) : 0;
}
inline bool BoolOf(RecordView row) { return NumberOf(row) != 0; }
inline std::string TextOf(RecordView row) { return std::string(row.Text(kFirstValue)); }
inline Vector3 VectorOf(RecordView row) {
  return {NumberOf(row), Finite(row.Double(kFirstValue + 1)), Finite(row.Double(kFirstValue + 2))};
}

/// How one named property goes into a value of type T.
template <class T>
struct PropertyRow {
  std::string_view name;
  void (*set)(T& target, RecordView row);
};
/// Applies the Properties70 block of `owner` (an object, or a template of the definitions).
template <class T, size_t N>
void ReadProperties(RecordView owner, const PropertyRow<T> (&rows)[N], T& target) {
  for (const RecordView property : owner.Find("Properties70").Children()) {
    const std::string_view name = property.Text(0);
    for (const PropertyRow<T>& row : rows) {
      if (row.name != name) continue;
      row.set(target, property);
      break;
    }
  }
}

/// 16 numbers of the child `leaf`; false when they are not there, not 16 or not numbers.
bool ReadMatrix(RecordView object, std::string_view leaf, Affine& matrix);

/// Triples out of a flat array; a rest of one or two numbers is left out.
std::vector<Vector3> Triples(const std::vector<double>& numbers);

}  // namespace tavrilon::fbx
