// SPDX-License-Identifier: MIT
#include "host/io/detail/param_io.h"

#include <algorithm>
#include <cmath>

namespace corvanta {
namespace {

using namespace scene_format;

enum class Form { Number, Whole, Vector, Matrix, Text, Target };

Form FormOf(ParamType type) {
  if (IsTextType(type)) return Form::Text;
  if (IsTargetType(type)) return Form::Target;
  if (IsIntType(type)) return Form::Whole;
  switch (type) {
    case ParamType::Point2:
    case ParamType::Point3:
    case ParamType::Colour:
      return Form::Vector;
    case ParamType::Matrix3:
      return Form::Matrix;
    default:
      return Form::Number;
  }
}

bool IsKnownType(ParamType type) {
  switch (type) {
    case ParamType::String:
    case ParamType::Index:
    case ParamType::Point3:
    case ParamType::Bool:
    case ParamType::World:
    case ParamType::Int:
    case ParamType::Colour:
    case ParamType::Percent:
    case ParamType::Angle:
    case ParamType::Time:
    case ParamType::Float:
    case ParamType::Point2:
    case ParamType::FileName:
    case ParamType::Node:
    case ParamType::RefTarg:
    case ParamType::Matrix3:
      return true;
    default:
      return false;
  }
}

/// Least bytes of a value of each form in a file.
size_t LeastSize(Form form) {
  switch (form) {
    case Form::Vector:
      return sizeof(Point3);
    case Form::Matrix:
      return sizeof(Point3) * 4;
    default:
      return sizeof(uint32_t);
  }
}

/// Counts places in the lists as CollectBlockTargets fills them.
struct Places {
  uint32_t strong = 0, weak = 0;
};

void WriteVector(const Point3& p, ISave& save) { save.Write(p); }

void WriteConstant(const ParamBlock2& block, const ParamRow& row, int tab, Places* places, ISave& save) {
  // Empty entries have a place too: whether a target is in the file is known only where it is numbered.
  if (row.Is(kWeak)) return save.Write(++places->weak);
  if (IsTargetType(row.type)) return save.Write(++places->strong);
  const FPValue value = block.GetConstant(row.id, tab);
  switch (FormOf(row.type)) {
    case Form::Text:
      return save.WriteWStr(value.ToWStr());
    case Form::Whole:
      return save.Write(value.ToInt());
    case Form::Vector:
      if (const auto* p2 = value.As<Point2>()) return WriteVector({p2->x, p2->y, 0}, save);
      return WriteVector(value.ToPoint3(), save);
    case Form::Matrix: {
      const Matrix3 m = value.As<Matrix3>() ? *value.As<Matrix3>() : Matrix3();
      for (int i = 0; i < 4; ++i) WriteVector(m.GetRow(i), save);
      return;
    }
    default:
      return save.Write(value.ToFloat());
  }
}

void WriteRow(const ParamBlock2& block, const ParamRow& row, Places* places, ISave& save) {
  const int count = block.Count(row.id);
  bool animated = false;
  for (int k = 0; k < count && row.Is(kAnimatable); ++k) animated |= block.GetController(row.id, k) != nullptr;
  save.BeginChunk(static_cast<uint16_t>(row.id));
  save.Write(static_cast<uint8_t>(row.type));
  save.Write(static_cast<uint8_t>((row.Is(kTab) ? kRowTab : 0) | (animated ? kRowControllers : 0) |
                                  (row.Is(kWeak) ? kRowWeak : 0)));
  save.Write(static_cast<uint32_t>(count));
  for (int k = 0; k < count; ++k) {
    WriteConstant(block, row, k, places, save);
    if (animated) save.Write(block.GetController(row.id, k) ? ++places->strong : uint32_t{0});
  }
  save.EndChunk();
}

bool AllFinite(const float* values, int count) {
  return std::all_of(values, values + count, [](float f) { return std::isfinite(f); });
}

/// One row being read.
struct RowReader {
  ParamBlock2& block;
  ILoad& load;
  const BlockTargets& targets;
  const ParamRow& row;
  ParamType type;
  uint8_t flags;

  /// The object at a place that the stream tells; null for place 0 and after an error.
  ReferenceTarget* ReadPlace(bool weak) {
    uint32_t place = 0;
    load.Read(place);
    const auto& list = weak ? targets.weak : targets.strong;
    if (place > list.size()) load.Fail("a parameter refers to entry " + std::to_string(place) + " of a shorter list");
    return place == 0 || place > list.size() ? nullptr : list[place - 1];
  }

  void ReadTarget(int tab) {
    ReferenceTarget* target = ReadPlace(flags & kRowWeak);
    if (!target || !IsTargetType(row.type)) return;
    // What was only watched was not looked at for loops among references: it cannot become one.
    if ((flags & kRowWeak) && !row.Is(kWeak)) return;
    if (row.type == ParamType::Node && !target->AsNode()) {
      load.Fail("a parameter for a node refers to something else");
      return;
    }
    block.LoadTarget(row.id, tab, target);
  }

  /// Numbers with which nothing can be computed become the row's default.
  void ReadNumbers(int tab, int count) {
    float values[12];
    load.Read(values, sizeof(float) * static_cast<size_t>(count));
    if (load.Status() != IOResult::OK || !AllFinite(values, count)) return;
    if (count == 12 && row.type == ParamType::Matrix3) {
      Matrix3 m;
      for (int i = 0; i < 4; ++i) m.SetRow(i, {values[i * 3], values[i * 3 + 1], values[i * 3 + 2]});
      block.LoadConstant(row.id, tab, m);
    } else if (count == 3 && FormOf(row.type) == Form::Vector) {
      block.LoadConstant(row.id, tab, Point3{values[0], values[1], values[2]});
    } else if (count == 1 && (FormOf(row.type) == Form::Number || FormOf(row.type) == Form::Whole)) {
      block.LoadConstant(row.id, tab, values[0]);
    }
  }

  void ReadWhole(int tab) {
    int32_t value;
    load.Read(value);
    if (load.Status() != IOResult::OK) return;
    const Form form = FormOf(row.type);
    if (row.type == ParamType::Bool)
      block.LoadConstant(row.id, tab, value != 0);
    else if (form == Form::Whole || form == Form::Number)
      block.LoadConstant(row.id, tab, value);
  }

  void ReadConstant(int tab) {
    switch (FormOf(type)) {
      case Form::Text: {
        WStr text;
        if (load.ReadWStr(text) == IOResult::OK && IsTextType(row.type)) block.LoadConstant(row.id, tab, text);
        return;
      }
      case Form::Target:
        return ReadTarget(tab);
      case Form::Whole:
        return ReadWhole(tab);
      case Form::Vector:
        return ReadNumbers(tab, 3);
      case Form::Matrix:
        return ReadNumbers(tab, 12);
      case Form::Number:
        return ReadNumbers(tab, 1);
    }
  }

  bool FitsRow(const Control& control) const {
    const SClass_ID super = control.SuperClassID();
    if (FormOf(row.type) == Form::Vector) return super == kPoint3ControlSuper || super == kPositionControlSuper;
    return super == kFloatControlSuper;
  }

  void ReadController(int tab) {
    ReferenceTarget* target = ReadPlace(false);
    if (!target || !row.Is(kAnimatable)) return;
    Control* control = target->AsControl();
    if (control && FitsRow(*control))
      block.LoadController(row.id, tab, control);
    else
      load.Fail("a parameter is driven by an object that is no controller for it");
  }

  void ReadEntries() {
    uint32_t count = 0;
    if (load.ReadCount(count, LeastSize(FormOf(type))) != IOResult::OK) return;
    if (row.Is(kTab)) block.LoadCount(row.id, static_cast<int>(std::min<uint32_t>(count, INT32_MAX)));
    const int kept = std::min<int>(block.Count(row.id), static_cast<int>(count));
    for (int k = 0; k < kept && load.Status() == IOResult::OK; ++k) {
      ReadConstant(k);
      if (flags & kRowControllers) ReadController(k);
    }
  }
};

}  // namespace

void CollectBlockTargets(const ParamBlock2& block, std::vector<ReferenceTarget*>* strong,
                         std::vector<ReferenceTarget*>* weak) {
  ForEachStoredEntry(block, [&](const ParamRow& row, int k) {
    if (row.Is(kWeak)) {
      weak->push_back(block.GetWeakRaw(row.id, k));
    } else if (IsTargetType(row.type)) {
      strong->push_back(block.GetConstant(row.id, k).ToTarget());
    }
    if (!row.Is(kAnimatable)) return;
    if (Control* control = block.GetController(row.id, k)) strong->push_back(control);
  });
}

void WriteParams(const ParamBlock2& block, ISave& save) {
  Places places;
  for (const ParamRow& row : block.GetDesc().rows)
    if (!row.Is(kTransient)) WriteRow(block, row, &places, save);
}

void ReadParams(ParamBlock2& block, ILoad& load, const BlockTargets& targets) {
  while (load.OpenChunk() == IOResult::OK) {
    const ParamRow* row = block.GetParamDef(static_cast<ParamID>(load.CurChunkID()));
    uint8_t type = 0, flags = 0;
    load.Read(type);
    load.Read(flags);
    if (row && !row->Is(kTransient) && IsKnownType(static_cast<ParamType>(type)))
      RowReader{block, load, targets, *row, static_cast<ParamType>(type), flags}.ReadEntries();
    load.CloseChunk();
  }
}

}  // namespace corvanta
