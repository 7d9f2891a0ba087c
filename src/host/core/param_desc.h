// SPDX-License-Identifier: MIT
// Parameter tables. A block is declared once, as rows: scripts, files, spinners, undo and the reference page read them.
#pragma once

#include <span>
#include <vector>

#include "host/core/fp_value.h"

namespace corvanta {

using ParamID = int16_t;
class ParamBlock2;

/// The numbers are stored in files. Angles are radians, percent values fractions.
enum class ParamType : uint8_t {
  None = 0,
  String = 1,
  Index = 2,
  Point3 = 3,
  Bool = 4,
  World = 5,
  Int = 6,
  Colour = 7,
  Percent = 8,
  Angle = 9,
  Time = 10,
  Float = 11,
  Point2 = 12,
  FileName = 13,
  Node = 17,
  RefTarg = 18,
  Matrix3 = 20,
};
bool IsFloatType(ParamType type);
bool IsIntType(ParamType type);
bool IsTextType(ParamType type);
bool IsTargetType(ParamType type);

enum ParamFlags : uint16_t {
  kNone = 0,
  kAnimatable = 1,
  /// A tab of values, of size 0 unless `ParamRow::tabSize` tells another.
  kTab = 2,
  /// The target is watched, not referred to.
  kWeak = 4,
  kReadOnly = 8,
  kTransient = 16,
  /// The accessor's Get supplies the value.
  kAccessorGet = 32,
};

struct ParamDefault {
  float f[3] = {0, 0, 0};
  const wchar_t* text = L"";
  constexpr ParamDefault() = default;
  constexpr ParamDefault(float v) : f{v, 0, 0} {}                    // NOLINT
  constexpr ParamDefault(int v) : f{static_cast<float>(v), 0, 0} {}  // NOLINT
  constexpr ParamDefault(bool v) : f{v ? 1.0f : 0.0f, 0, 0} {}       // NOLINT
  constexpr ParamDefault(float x, float y, float z) : f{x, y, z} {}
  constexpr ParamDefault(const wchar_t* t) : text(t) {}  // NOLINT
};

/// In the units that users see (percent, degrees). Spinners clamp to it; writes by code do not.
struct ParamRange {
  float min = 0, max = 0;
  constexpr bool IsGiven() const { return min != max; }
};

enum class TabChange { Appended, Inserted, Deleted, Resized, EntryLost };

/// Hooks of a parameter. They run for code, script, UI, undo and redo alike; see Hold::UndoRunning.
class PBAccessor {
 public:
  virtual ~PBAccessor() = default;
  virtual void Get(FPValue& value, ReferenceTarget* owner, ParamID id, int tab, TimeValue t, Interval& valid) {}
  /// After every write.
  virtual void Set(ParamBlock2& block, ReferenceTarget* owner, ParamID id, int tab, TimeValue t) {}
  virtual void TabChanged(TabChange change, ParamBlock2& block, ReferenceTarget* owner, ParamID id, int tab,
                          int count) {}
};

class PBValidator {
 public:
  virtual ~PBValidator() = default;
  /// Called before a UI or script write of a target.
  virtual bool Validate(ReferenceTarget* owner, ParamID id, ReferenceTarget* candidate) = 0;
};

struct ParamRow {
  ParamID id;
  /// Script name; empty hides the parameter from scripts.
  const wchar_t* name;
  ParamType type;
  uint16_t flags = kNone;
  ParamDefault def = {};
  ParamRange range = {};
  const wchar_t* label = L"";
  /// Rollup that shows it; -1 for none.
  int map = 0;
  PBAccessor* accessor = nullptr;
  PBValidator* validator = nullptr;
  int tabSize = 0;

  bool Is(ParamFlags flag) const { return (flags & flag) != 0; }
  ParamDimension Dimension() const;
};

/// The descriptor of a block: one static object a class, its rows in the order that scripts show.
class ParamBlockDesc2 {
 public:
  ParamBlockDesc2(int blockId, const wchar_t* name, std::span<const ParamRow> rows);

  int blockId;
  const wchar_t* name;
  std::span<const ParamRow> rows;

  int Count() const { return static_cast<int>(rows.size()); }
  /// Position of an ID in the rows; -1 when absent.
  int IDtoIndex(ParamID id) const { return id >= 0 && id < static_cast<int>(index_.size()) ? index_[id] : -1; }
  /// By script name, case ignored; null when none.
  const ParamRow* FindByName(const WStr& scriptName) const;

 private:
  std::vector<int16_t> index_;
};

}  // namespace corvanta
