// SPDX-License-Identifier: MIT
// Reading, writing and the bookkeeping of references. Tabs are in param_tabs.cpp, undo in param_undo.cpp.
#include "host/core/param_block.h"

#include <cassert>
#include <cstring>

#include "host/core/detail/param_cells.h"
#include "host/core/remap.h"

namespace corvanta {

ParamBlock2::ParamBlock2(const ParamBlockDesc2& desc) : desc_(&desc) {
  cells_.resize(static_cast<size_t>(desc.Count()));
  for (int i = 0; i < desc.Count(); ++i) {
    const ParamRow& row = Row(i);
    if (row.Is(kTab)) {
      if (tabs_.empty()) tabs_.resize(cells_.size());
      tabs_[static_cast<size_t>(i)] = std::make_unique<TabCells>();
      ResizeTab(i, row.tabSize);
    } else {
      InitCell(row, cells_[static_cast<size_t>(i)], i, 0);
    }
  }
}

ParamBlock2::~ParamBlock2() {
  for (int i = 0; i < desc_->Count(); ++i) {
    if (Row(i).Is(kTab))
      ResizeTab(i, 0);
    else
      ClearCell(Row(i), cells_[static_cast<size_t>(i)]);
  }
}

// Cells.

void ParamBlock2::InitCell(const ParamRow& row, Cell& cell, int index, int tab) {
  cell = Cell();
  cell.viaAccessor = row.Is(kAccessorGet);
  cell.isTarget = IsTargetType(row.type);
  cell.isWeak = row.Is(kWeak);
  const ParamDefault& def = row.def;
  if (row.type == ParamType::Matrix3) {
    cell.isMatrix = true;
    cell.matrix = new Matrix3;
  } else if (IsTextType(row.type)) {
    cell.text = new WStr(def.text);
  } else if (row.Is(kWeak)) {
    cell.weak = new RefTargMonitor(this);
    cell.weak->tag = index << 16 | tab;
  } else if (IsTargetType(row.type)) {
    cell.target = nullptr;
  } else if (IsIntType(row.type)) {
    cell.i = static_cast<int>(def.f[0]);
  } else {
    std::memcpy(cell.p, def.f, sizeof cell.p);
  }
}

void ParamBlock2::ClearCell(const ParamRow& row, Cell& cell) {
  if (IsTextType(row.type)) {
    delete std::exchange(cell.text, nullptr);
  } else if (row.type == ParamType::Matrix3) {
    delete std::exchange(cell.matrix, nullptr);
  } else if (row.Is(kWeak)) {
    delete cell.weak;
    cell.weak = nullptr;
  } else if (IsTargetType(row.type) && cell.target) {
    DropLink(std::exchange(cell.target, nullptr));
  }
  if (cell.control) DropLink(std::exchange(cell.control, nullptr));
}

const ParamBlock2::Cell* ParamBlock2::TabCell(int index, int tab) const {
  const std::vector<Cell>& cells = tabs_[static_cast<size_t>(index)]->cells;
  if (tab < 0 || tab >= static_cast<int>(cells.size())) throw CorvantaSDK::Util::TabOutOfRangeException();
  return &cells[static_cast<size_t>(tab)];
}

template <class F>
bool ParamBlock2::ForEachCell(F&& f) const {
  for (int i = 0; i < desc_->Count(); ++i) {
    if (!Row(i).Is(kTab)) {
      if (f(i, 0, const_cast<Cell&>(cells_[static_cast<size_t>(i)]))) return true;
      continue;
    }
    std::vector<Cell>& cells = tabs_[static_cast<size_t>(i)]->cells;
    for (size_t k = 0; k < cells.size(); ++k)
      if (f(i, static_cast<int>(k), cells[k])) return true;
  }
  return false;
}

const ParamRow* ParamBlock2::GetParamDef(ParamID id) const {
  const int index = IDtoIndex(id);
  return index < 0 ? nullptr : &Row(index);
}

// Reads.

float ParamBlock2::SlowFloat(ParamID id, int tab, const Cell& cell, TimeValue t, Interval& valid) const {
  const ParamRow& row = *GetParamDef(id);
  if (cell.viaAccessor && row.accessor) {
    FPValue value(cell.f);
    row.accessor->Get(value, owner_, id, tab, t, valid);
    return value.ToFloat();
  }
  float value = cell.f;
  if (cell.control) cell.control->GetValue(t, value, valid, CTRL_ABSOLUTE);
  return value;
}

int ParamBlock2::SlowInt(ParamID id, int tab, const Cell& cell, TimeValue t, Interval& valid) const {
  const ParamRow& row = *GetParamDef(id);
  if (cell.viaAccessor && row.accessor) {
    FPValue value(cell.i);
    row.accessor->Get(value, owner_, id, tab, t, valid);
    return value.ToInt();
  }
  if (!cell.control) return cell.i;
  float value = 0;
  cell.control->GetValue(t, value, valid, CTRL_ABSOLUTE);
  return row.type == ParamType::Bool ? value >= 0.5f : FPValue(std::floor(value + 0.5f)).ToInt();
}

Point3 ParamBlock2::GetPoint3(ParamID id, TimeValue t, int tab) const {
  Interval ignored = FOREVER;
  return GetPoint3(id, t, ignored, tab);
}

Point3 ParamBlock2::GetPoint3(ParamID id, TimeValue t, Interval& valid, int tab) const {
  const Cell* cell = Find(id, tab);
  if (!cell) return {};
  Point3 value{cell->p[0], cell->p[1], cell->p[2]};
  if (cell->control) cell->control->GetValue(t, value, valid, CTRL_ABSOLUTE);
  return value;
}

Point2 ParamBlock2::GetPoint2(ParamID id, TimeValue t, int tab) const {
  const Point3 p = GetPoint3(id, t, tab);
  return {p.x, p.y};
}

Colour ParamBlock2::GetColour(ParamID id, TimeValue t, int tab) const {
  const Point3 p = GetPoint3(id, t, tab);
  return {p.x, p.y, p.z};
}

const Matrix3 ParamBlock2::kIdentity;

const WStr& ParamBlock2::GetStr(ParamID id, TimeValue, int tab) const {
  static const WStr empty;
  const ParamRow* row = GetParamDef(id);
  if (!row || !IsTextType(row->type)) return empty;
  return *Find(id, tab)->text;
}

ReferenceTarget* ParamBlock2::SlowTarget(ParamID id, int tab, ReferenceTarget* stored, TimeValue t) const {
  const ParamRow& row = *GetParamDef(id);
  if (!row.accessor) return stored;
  FPValue value = TargetValue(stored);
  Interval valid = FOREVER;
  row.accessor->Get(value, owner_, id, tab, t, valid);
  return value.ToTarget();
}

ReferenceTarget* ParamBlock2::GetWeakRaw(ParamID id, int tab) const {
  const ParamRow* row = GetParamDef(id);
  return row && row->Is(kWeak) ? Find(id, tab)->weak->RawTarget() : nullptr;
}

FPValue ParamBlock2::GetValue(ParamID id, TimeValue t, int tab) const {
  const ParamRow* row = GetParamDef(id);
  if (!row) return {};
  switch (row->type) {
    case ParamType::Bool:
      return GetInt(id, t, tab) != 0;
    case ParamType::Int:
    case ParamType::Index:
      return GetInt(id, t, tab);
    case ParamType::Time:
      return FPTime{GetInt(id, t, tab)};
    case ParamType::Point3:
      return GetPoint3(id, t, tab);
    case ParamType::Point2:
      return GetPoint2(id, t, tab);
    case ParamType::Colour:
      return GetColour(id, t, tab);
    case ParamType::Matrix3:
      return GetMatrix3(id, t, tab);
    case ParamType::String:
    case ParamType::FileName:
      return GetStr(id, t, tab);
    case ParamType::Node:
    case ParamType::RefTarg:
      return TargetValue(GetReferenceTarget(id, t, tab));
    default:
      return GetFloat(id, t, tab);
  }
}

FPValue ParamBlock2::GetConstant(ParamID id, int tab) const {
  const ParamRow* row = GetParamDef(id);
  if (!row) return {};
  const Cell& cell = *Find(id, tab);
  switch (row->type) {
    case ParamType::Bool:
      return cell.i != 0;
    case ParamType::Int:
    case ParamType::Index:
    case ParamType::Time:
      return cell.i;
    case ParamType::Point3:
      return Point3{cell.p[0], cell.p[1], cell.p[2]};
    case ParamType::Point2:
      return Point2{cell.p[0], cell.p[1]};
    case ParamType::Colour:
      return Colour{cell.p[0], cell.p[1], cell.p[2]};
    case ParamType::Matrix3:
      return GetMatrix3(id, 0, tab);
    case ParamType::String:
    case ParamType::FileName:
      return *cell.text;
    case ParamType::Node:
    case ParamType::RefTarg:
      return TargetValue(row->Is(kWeak) ? cell.weak->RawTarget() : cell.target);
    default:
      return cell.f;
  }
}

// Writes.

// An animated parameter passes the value on; with animate on, an animatable one gets its controller first, holding the
// present constant.
bool ParamBlock2::WriteThroughController(int index, int tab, Cell& cell, TimeValue t, ValueRef value) {
  const ParamRow& row = Row(index);
  if (!cell.control && row.Is(kAnimatable) && Animating()) {
    const bool vector = value.Is(ValueKind::Point3);
    const Ref<Control> made(vector ? NewDefaultPoint3Controller() : NewDefaultFloatController());
    if (made) {
      Point3 p{cell.p[0], cell.p[1], cell.p[2]};
      float f = IsIntType(row.type) ? static_cast<float>(cell.i) : cell.f;
      SuspendAnimate();
      vector ? made->SetValue(t, p) : made->SetValue(t, f);
      ResumeAnimate();
      SetController(row.id, made.Get(), tab);
    }
  }
  if (!cell.control) return false;
  cell.control->SetValue(t, value, true, CTRL_ABSOLUTE);
  if (row.accessor) row.accessor->Set(*this, owner_, row.id, tab, t);
  return true;
}

bool ParamBlock2::SetValue(ParamID id, TimeValue t, float value, int tab) {
  const ParamRow* row = GetParamDef(id);
  if (!row) return false;
  const bool asInt = IsIntType(row->type);
  if (!asInt && !IsFloatType(row->type)) return false;
  const int index = IDtoIndex(id);
  Cell& cell = *FindForWrite(id, tab);
  if (WriteThroughController(index, tab, cell, t, value)) return true;
  Record(index, tab, cell);
  if (asInt)
    cell.i = row->type == ParamType::Bool ? value != 0 : FPValue(value).ToInt();
  else
    cell.f = value;
  Changed(index, tab, t);
  return true;
}

bool ParamBlock2::SetValue(ParamID id, TimeValue t, int value, int tab) {
  const ParamRow* row = GetParamDef(id);
  if (!row) return false;
  if (!IsIntType(row->type)) return SetValue(id, t, static_cast<float>(value), tab);
  const int index = IDtoIndex(id);
  Cell& cell = *FindForWrite(id, tab);
  float asFloat = static_cast<float>(value);
  if (WriteThroughController(index, tab, cell, t, asFloat)) return true;
  Record(index, tab, cell);
  cell.i = row->type == ParamType::Bool ? value != 0 : value;
  Changed(index, tab, t);
  return true;
}

bool ParamBlock2::SetValue(ParamID id, TimeValue t, const Point3& value, int tab) {
  const ParamRow* row = GetParamDef(id);
  if (!row || (row->type != ParamType::Point3 && row->type != ParamType::Colour && row->type != ParamType::Point2))
    return false;
  const int index = IDtoIndex(id);
  Cell& cell = *FindForWrite(id, tab);
  Point3 copy = value;
  if (WriteThroughController(index, tab, cell, t, copy)) return true;
  Record(index, tab, cell);
  std::memcpy(cell.p, &value, sizeof cell.p);
  Changed(index, tab, t);
  return true;
}

bool ParamBlock2::SetValue(ParamID id, TimeValue t, const Point2& value, int tab) {
  return SetValue(id, t, Point3{value.x, value.y, 0}, tab);
}

bool ParamBlock2::SetValue(ParamID id, TimeValue t, const Colour& value, int tab) {
  return SetValue(id, t, Point3{value.r, value.g, value.b}, tab);
}

bool ParamBlock2::SetValue(ParamID id, TimeValue t, const Matrix3& value, int tab) {
  const ParamRow* row = GetParamDef(id);
  if (!row || row->type != ParamType::Matrix3) return false;
  const int index = IDtoIndex(id);
  Cell& cell = *FindForWrite(id, tab);
  Record(index, tab, cell);
  *cell.matrix = value;
  Changed(index, tab, t);
  return true;
}

bool ParamBlock2::SetValue(ParamID id, TimeValue t, const WStr& value, int tab) {
  const ParamRow* row = GetParamDef(id);
  if (!row || !IsTextType(row->type)) return false;
  const int index = IDtoIndex(id);
  Cell& cell = *FindForWrite(id, tab);
  Record(index, tab, cell);
  *cell.text = value;
  Changed(index, tab, t);
  return true;
}

bool ParamBlock2::SetValue(ParamID id, TimeValue t, ReferenceTarget* value, int tab) {
  const ParamRow* row = GetParamDef(id);
  if (!row || !IsTargetType(row->type)) return false;
  if (value && row->type == ParamType::Node && !value->AsNode()) return false;
  const int index = IDtoIndex(id);
  Cell& cell = *FindForWrite(id, tab);
  if (value && !row->Is(kWeak) && cell.target != value && value->TestForLoop(this)) return false;
  Record(index, tab, cell);
  StoreTarget(index, tab, value);
  Changed(index, tab, t);
  return true;
}

bool ParamBlock2::StoreTarget(int index, int tab, ReferenceTarget* target) {
  const ParamRow& row = Row(index);
  Cell& cell = *FindForWrite(row.id, tab);
  if (row.Is(kWeak)) {
    cell.weak->SetTarget(target);
    return true;
  }
  ReferenceTarget* old = std::exchange(cell.target, target);
  if (old == target) return true;
  if (target) AddLink(target);
  if (old) DropLink(old);
  return true;
}

bool ParamBlock2::SetFPValue(ParamID id, TimeValue t, const FPValue& value, int tab) {
  const ParamRow* row = GetParamDef(id);
  if (!row) return false;
  if (IsTextType(row->type)) return value.As<WStr>() && SetValue(id, t, *value.As<WStr>(), tab);
  if (IsTargetType(row->type)) {
    if (!value.IsVoid() && !value.As<Ref<ReferenceTarget>>()) return false;
    return SetValue(id, t, value.ToTarget(), tab);
  }
  switch (row->type) {
    case ParamType::Matrix3:
      return value.As<Matrix3>() && SetValue(id, t, *value.As<Matrix3>(), tab);
    case ParamType::Point2:
      return value.As<Point2>() && SetValue(id, t, *value.As<Point2>(), tab);
    case ParamType::Point3:
    case ParamType::Colour:
      return (value.As<Point3>() || value.As<Colour>()) && SetValue(id, t, value.ToPoint3(), tab);
    default:
      break;
  }
  if (const auto* f = value.As<float>()) return SetValue(id, t, *f, tab);
  if (value.As<int>() || value.As<bool>() || value.As<FPTime>()) return SetValue(id, t, value.ToInt(), tab);
  return false;
}

// The hook first, then the dependents: what they ask for is then up to date.
void ParamBlock2::Changed(int index, int tab, TimeValue t, bool tellAccessor) {
  const ParamRow& row = Row(index);
  if (tellAccessor && row.accessor) row.accessor->Set(*this, owner_, row.id, tab, t);
  if (silent_ > 0) return;
  lastChanged_ = {row.id, tab};
  lastSender_ = nullptr;
  NotifyDependents();
}

// Animation.

Control* ParamBlock2::GetController(ParamID id, int tab) const {
  const Cell* cell = Find(id, tab);
  return cell ? cell->control : nullptr;
}

bool ParamBlock2::SetController(ParamID id, Control* control, int tab) {
  const ParamRow* row = GetParamDef(id);
  if (!row || (control && (!row->Is(kAnimatable) || control->TestForLoop(this)))) return false;
  const int index = IDtoIndex(id);
  Cell& cell = *FindForWrite(id, tab);
  if (cell.control == control) return true;
  Record(index, tab, cell);
  Control* old = std::exchange(cell.control, control);
  if (control) AddLink(control);
  if (old) DropLink(old);
  Changed(index, tab, 0, false);
  return true;
}

int ParamBlock2::GetAnimNum(ParamID id, int tab) const {
  int n = 0;
  const int index = IDtoIndex(id);
  const bool found = ForEachCell([&](int i, int k, Cell&) {
    if (!Row(i).Is(kAnimatable)) return false;
    if (i == index && k == tab) return true;
    ++n;
    return false;
  });
  return found ? n : -1;
}

std::pair<ParamID, int> ParamBlock2::AnimNumToParam(int animNum) const {
  std::pair<ParamID, int> place{-1, 0};
  ForEachCell([&](int i, int k, Cell&) {
    if (!Row(i).Is(kAnimatable) || animNum-- > 0) return false;
    place = {Row(i).id, k};
    return true;
  });
  return place;
}

int ParamBlock2::NumSubs() const {
  int n = 0;
  ForEachCell([&](int i, int, Cell&) {
    n += Row(i).Is(kAnimatable);
    return false;
  });
  return n;
}

Animatable* ParamBlock2::SubAnim(int i) {
  const auto [id, tab] = AnimNumToParam(i);
  return id < 0 ? nullptr : GetController(id, tab);
}

WStr ParamBlock2::SubAnimName(int i) {
  const auto [id, tab] = AnimNumToParam(i);
  const ParamRow* row = GetParamDef(id);
  return row ? (*row->label ? row->label : row->name) : WStr();
}

bool ParamBlock2::CanAssignController(int subAnim) { return AnimNumToParam(subAnim).first >= 0; }

bool ParamBlock2::AssignController(Control* control, int subAnim) {
  const auto [id, tab] = AnimNumToParam(subAnim);
  if (id < 0 || !SetController(id, control, tab)) return false;
  NotifyDependents(FOREVER, PART_ALL, REFMSG_CONTROLREF_CHANGE);
  return true;
}

ParamDimension ParamBlock2::GetParamDimension(int subAnim) {
  const ParamRow* row = GetParamDef(AnimNumToParam(subAnim).first);
  return row ? row->Dimension() : ParamDimension::Plain;
}

// References.

/// One place of the block that can hold a strong reference.
struct ParamBlock2::RefPlace {
  int index = -1, tab = 0;
  Cell* cell = nullptr;
  bool isControl = false;
};

namespace {
bool HoldsTarget(const ParamRow& row) { return IsTargetType(row.type) && !row.Is(kWeak); }
}  // namespace

ParamBlock2::RefPlace ParamBlock2::PlaceOf(int which) const {
  RefPlace place;
  ForEachCell([&](int i, int k, Cell& cell) {
    if (HoldsTarget(Row(i)) && which-- == 0) {
      place = {i, k, &cell, false};
      return true;
    }
    if (Row(i).Is(kAnimatable) && which-- == 0) {
      place = {i, k, &cell, true};
      return true;
    }
    return false;
  });
  return place;
}

int ParamBlock2::NumRefs() const {
  int n = 0;
  ForEachCell([&](int i, int, Cell&) {
    n += HoldsTarget(Row(i)) + Row(i).Is(kAnimatable);
    return false;
  });
  return n;
}

ReferenceTarget* ParamBlock2::GetReference(int which) const {
  const RefPlace place = PlaceOf(which);
  if (!place.cell) return nullptr;
  return place.isControl ? place.cell->control : place.cell->target;
}

void ParamBlock2::SetReference(int which, ReferenceTarget* target) {
  const RefPlace place = PlaceOf(which);
  if (!place.cell) return;
  if (place.isControl)
    place.cell->control = target ? target->AsControl() : nullptr;
  else
    place.cell->target = target;
}

int ParamBlock2::FindReference(const ReferenceTarget* target, int from) const {
  int n = 0, found = kNotFound;
  ForEachCell([&](int i, int, Cell& cell) {
    if (HoldsTarget(Row(i)) && n++ >= from && cell.target == target) found = n - 1;
    if (found == kNotFound && Row(i).Is(kAnimatable) && n++ >= from && cell.control == target) found = n - 1;
    return found != kNotFound;
  });
  return found;
}

// The first entry that holds `target`, as a reference or as its controller.
std::pair<ParamID, int> ParamBlock2::EntryOf(const ReferenceTarget* target) const {
  std::pair<ParamID, int> entry{-1, 0};
  ForEachCell([&](int i, int k, const Cell& cell) {
    const bool isTarget = cell.isTarget && !cell.isWeak && cell.target == target;
    if (!isTarget && cell.control != target) return false;
    entry = {Row(i).id, k};
    return true;
  });
  return entry;
}

std::pair<ParamID, int> ParamBlock2::LastChanged() const { return lastSender_ ? EntryOf(lastSender_) : lastChanged_; }

RefResult ParamBlock2::NotifyRefChanged(const Interval&, ReferenceTarget* target, PartID&, RefMessage message, bool) {
  lastSender_ = target;
  if (message == REFMSG_TARGET_DELETED) {
    const auto [id, tab] = EntryOf(target);
    const ParamRow* row = GetParamDef(id);
    if (row && row->accessor && IsTargetType(row->type))
      row->accessor->TabChanged(TabChange::EntryLost, *this, owner_, id, tab, 1);
  }
  return silent_ > 0 ? REF_STOP : REF_SUCCEED;
}

void ParamBlock2::LinkAdded(ReferenceMaker* maker) {
  if (!owner_) owner_ = maker->AsTarget();
}

void ParamBlock2::LinkDropped(ReferenceMaker* maker) {
  if (owner_ == maker) owner_ = nullptr;
}

void ParamBlock2::MonitoredNotice(RefTargMonitor& monitor, const RefNotice& notice) {
  const int index = monitor.tag >> 16, tab = monitor.tag & 0xFFFF;
  if (auto* listener = dynamic_cast<WeakParamOwner*>(owner_))
    listener->WeakTargetNotice(*this, Row(index).id, tab, notice);
  if (notice.message == REFMSG_TARGET_DELETED) Changed(index, tab, 0, false);
}

void ParamBlock2::AddFootprint(EvaluationFootprint& footprint) const {
  footprint.Add(cells_);
  for (const auto& tab : tabs_)
    if (tab) footprint.Add(tab->cells);
}

// Weak links of a clone go to the clone of their target when the target was cloned with it, else to the target itself.
ReferenceTarget* ParamBlock2::Clone(RemapDir& remap) {
  auto* clone = new ParamBlock2(*desc_);
  remap.AddEntry(this, clone);
  ForEachCell([&](int i, int k, Cell& cell) {
    const ParamRow& row = Row(i);
    if (row.Is(kTab) && clone->Count(row.id) <= k) clone->ResizeTab(i, Count(row.id));
    Cell& to = *clone->FindForWrite(row.id, k);
    if (row.Is(kWeak)) {
      to.weak->SetTarget(cell.weak->RawTarget());
    } else if (IsTextType(row.type)) {
      *to.text = *cell.text;
    } else if (HoldsTarget(row)) {
      clone->StoreTarget(i, k, remap.CloneRef(cell.target));
    } else if (row.type == ParamType::Matrix3) {
      *to.matrix = *cell.matrix;
    } else {
      std::memcpy(to.p, cell.p, sizeof to.p);
    }
    if (cell.control) clone->LoadController(row.id, k, remap.CloneRef(cell.control)->AsControl());
    return false;
  });
  remap.AddPostPatchProc([clone](RemapDir& map) {
    clone->ForEachCell([&](int i, int, Cell& cell) {
      if (clone->Row(i).Is(kWeak) && cell.weak->RawTarget())
        if (ReferenceTarget* mapped = map.Find(cell.weak->RawTarget())) cell.weak->SetTarget(mapped);
      return false;
    });
  });
  return clone;
}

// Loading.

void ParamBlock2::LoadTarget(ParamID id, int tab, ReferenceTarget* target) {
  const ParamRow* row = GetParamDef(id);
  if (row && IsTargetType(row->type)) StoreTarget(IDtoIndex(id), tab, target);
}

void ParamBlock2::LoadController(ParamID id, int tab, Control* control) {
  Cell* cell = FindForWrite(id, tab);
  if (!cell || cell->control == control) return;
  Control* old = std::exchange(cell->control, control);
  if (control) AddLink(control);
  if (old) DropLink(old);
}

void ParamBlock2::LoadConstant(ParamID id, int tab, const FPValue& value) {
  const ParamRow* row = GetParamDef(id);
  if (!row) return;
  Cell& cell = *FindForWrite(id, tab);
  if (IsTextType(row->type)) {
    *cell.text = value.ToWStr();
  } else if (IsTargetType(row->type)) {
    StoreTarget(IDtoIndex(id), tab, value.ToTarget());
  } else if (row->type == ParamType::Matrix3) {
    if (const auto* m = value.As<Matrix3>()) *cell.matrix = *m;
  } else if (IsIntType(row->type)) {
    cell.i = value.ToInt();
  } else if (const auto* p2 = value.As<Point2>()) {
    cell.p[0] = p2->x, cell.p[1] = p2->y;
  } else if (value.As<Point3>() || value.As<Colour>()) {
    const Point3 p = value.ToPoint3();
    std::memcpy(cell.p, &p, sizeof cell.p);
  } else {
    cell.f = value.ToFloat();
  }
}

void ParamBlock2::LoadCount(ParamID id, int count) {
  const ParamRow* row = GetParamDef(id);
  if (row && row->Is(kTab)) ResizeTab(IDtoIndex(id), count);
}

}  // namespace corvanta
