// SPDX-License-Identifier: MIT
#include "host/anim/list_control.h"

#include <algorithm>

#include "host/anim/entries_restore.h"
#include "host/anim/value_ops.h"
#include "host/core/remap.h"

namespace corvanta {

IListControl* GetListControl(Animatable* anim) {
  return anim ? dynamic_cast<IListControl*>(anim->GetInterface(kListControlInterface)) : nullptr;
}

ListControl::ListControl(const ListClass& row, bool loading) : row_(row) {
  if (!loading) BindReference(0, row.firstEntry());
}

FPInterface* ListControl::GetInterface(const Interface_ID& id) {
  return id == kListControlInterface ? static_cast<IListControl*>(this) : CompositeControl::GetInterface(id);
}

// --- evaluation

void ListControl::Apply(TimeValue t, int from, int to, ValueRef value, Interval& valid) const {
  for (int i = from; i < to; ++i)
    if (Control* entry = Part(i)) entry->GetValue(t, value, valid, CTRL_RELATIVE);
}

Matrix3 ListControl::MatrixOf(TimeValue t, int from, int to) const {
  Matrix3 m;
  Interval ignored = FOREVER;
  Apply(t, from, to, m, ignored);
  return m;
}

// Absolute values of positions, rotations and scales are read off the matrix that the entries make of the identity.
void ListControl::GetValue(TimeValue t, ValueRef value, Interval& valid, GetSetMethod method) {
  const int count = NumParts();
  if (method == CTRL_ABSOLUTE && count == 1 && entries_[0])
    return entries_[0]->GetValue(t, value, valid, CTRL_ABSOLUTE);
  if (method == CTRL_ABSOLUTE && value.Is(ValueKind::Float)) value.Float() = 0;
  if (method == CTRL_RELATIVE || value.Is(ValueKind::Float) || value.Is(ValueKind::Matrix3))
    return Apply(t, 0, count, value, valid);
  Matrix3 m;
  Apply(t, 0, count, m, valid);
  if (value.Is(ValueKind::Point3)) {
    value.Point3() = m.GetTrans();
  } else if (value.Is(ValueKind::Quat)) {
    value.Quat() = QuatFromMatrix(Orthogonalize(m));
  } else {
    const AffineParts parts = decomp_affine(m);
    value.Scale() = {parts.k * parts.f, parts.u};
  }
}

// --- writing

// With L what the entries after the active one make, R what those before make, and X the active one: the whole is
// L * X * R. A wanted whole V needs X = Inverse(L) * V * Inverse(R), and a turn A of the whole is the turn R * A *
// Inverse(R) of X.
void ListControl::SetValue(TimeValue t, ValueRef value, bool commit, GetSetMethod method) {
  Control* entry = Part(active_);
  if (locked_ || !entry) return;
  const int count = NumParts();
  if (value.Is(ValueKind::Packet)) {
    SetXFormPacket& packet = value.Packet();
    packet.tmParent = MatrixOf(t, 0, active_) * packet.tmParent;
    if (packet.command == XFORM_SET) packet.tmAxis = Inverse(MatrixOf(t, active_ + 1, count)) * packet.tmAxis;
    return entry->SetValue(t, value, commit, method);
  }
  if (count == 1 || (method == CTRL_RELATIVE && !value.Is(ValueKind::AngAxis)))
    return entry->SetValue(t, value, commit, method);
  if (value.Is(ValueKind::Float)) {
    float others = 0;
    Interval ignored = FOREVER;
    Apply(t, 0, active_, others, ignored);
    Apply(t, active_ + 1, count, others, ignored);
    float own = value.Float() - others;
    return entry->SetValue(t, own, commit, method);
  }
  const Matrix3 before = MatrixOf(t, 0, active_), after = MatrixOf(t, active_ + 1, count);
  if (value.Is(ValueKind::AngAxis)) {
    AngAxis aa = value.AngAxis();
    aa.axis = VectorTransform(Inverse(before), aa.axis);
    return entry->SetValue(t, aa, commit, method);
  }
  if (value.Is(ValueKind::Point3)) {
    Point3 own = value.Point3() - before.GetTrans() - after.GetTrans();
    return entry->SetValue(t, own, commit, method);
  }
  if (value.Is(ValueKind::Quat)) {
    Quat own = Inverse(QuatFromMatrix(after)) * Normalize(value.Quat()) * Inverse(QuatFromMatrix(before));
    return entry->SetValue(t, own, commit, method);
  }
  const AffineParts parts = decomp_affine(Inverse(after) * MakeMatrix(value.Scale()) * Inverse(before));
  ScaleValue own{parts.k * parts.f, parts.u};
  entry->SetValue(t, own, commit, method);
}

void ListControl::Copy(Control* from) {
  if (!from || from == this || from->SuperClassID() != SuperClassID()) return;
  SetLocked(false);
  State s = ListState();
  if (IListControl* list = GetListControl(from)) {
    s = {};
    for (int i = 0; i < list->GetListCount(); ++i) {
      ReferenceTarget* entry = list->GetEntry(i) ? CloneRefHierarchy(list->GetEntry(i)) : nullptr;
      s.entries.emplace_back(entry ? entry->AsControl() : nullptr);
      s.names.push_back(list->GetName(i));
    }
    s.active = list->GetActive();
  } else if (ReferenceTarget* entry = CloneRefHierarchy(from)) {
    s.entries.insert(s.entries.begin(), Ref<Control>(entry->AsControl()));
    s.names.insert(s.names.begin(), WStr());
    s.active = 0;
  }
  Change(s);
  if (const ILockedTrack* lock = GetLockedTrack(from)) SetLocked(lock->GetLocked());
}

// --- entries

WStr ListControl::GetName(int i) const {
  if (i < 0 || i >= NumParts()) return {};
  if (i < static_cast<int>(names_.size()) && !names_[static_cast<size_t>(i)].empty())
    return names_[static_cast<size_t>(i)];
  return entries_[static_cast<size_t>(i)] ? entries_[static_cast<size_t>(i)]->GetClassName() : WStr();
}

ListControl::State ListControl::ListState() const {
  State s;
  for (Control* entry : entries_) s.entries.emplace_back(entry);
  s.names = names_;
  s.names.resize(entries_.size());
  s.active = active_;
  return s;
}

void ListControl::PutListState(const State& state) {
  const State keep = ListState();  // nothing dies between two places
  for (int i = 0; i < NumParts(); ++i) BindReference(i, nullptr);
  entries_.assign(state.entries.size(), nullptr);
  for (size_t i = 0; i < state.entries.size(); ++i) BindReference(static_cast<int>(i), state.entries[i].Get());
  names_ = state.names;
  active_ = state.active;
  NotifyDependents(FOREVER, PART_ALL, REFMSG_SUBANIM_STRUCTURE);
  NotifyDependents();
}

void ListControl::Change(const State& state) {
  if (theHold.Holding()) theHold.Put(std::make_unique<EntriesRestore<ListControl, State>>(this));
  PutListState(state);
}

bool ListControl::MayHold(Control* control) const {
  return control && control->SuperClassID() == row_.superClass && !control->TestForLoop(const_cast<ListControl*>(this));
}

void ListControl::SetName(int i, const WStr& name) {
  if (locked_ || i < 0 || i >= NumParts()) return;
  State s = ListState();
  s.names[static_cast<size_t>(i)] = name;
  Change(s);
}

void ListControl::SetActive(int i) {
  if (locked_ || i < 0 || i >= NumParts() || i == active_) return;
  State s = ListState();
  s.active = i;
  Change(s);
}

bool ListControl::ReplaceEntry(int i, Control* control) {
  if (locked_ || i < 0 || i >= NumParts() || !MayHold(control)) return false;
  State s = ListState();
  s.entries[static_cast<size_t>(i)] = Ref<Control>(control);
  Change(s);
  return true;
}

bool ListControl::Append(Control* control) {
  if (locked_ || !MayHold(control)) return false;
  State s = ListState();
  s.entries.emplace_back(control);
  s.names.emplace_back();
  Change(s);
  return true;
}

bool ListControl::Delete(int i) {
  if (locked_ || i < 0 || i >= NumParts()) return false;
  State s = ListState();
  s.entries.erase(s.entries.begin() + i);
  s.names.erase(s.names.begin() + i);
  if (s.active > i || s.active >= static_cast<int>(s.entries.size())) s.active = std::max(0, s.active - 1);
  Change(s);
  return true;
}

void ListControl::SetReference(int which, ReferenceTarget* target) {
  if (which < 0) return;
  if (which >= NumParts()) {
    if (!target) return;
    entries_.resize(static_cast<size_t>(which) + 1, nullptr);
  }
  entries_[static_cast<size_t>(which)] = target ? target->AsControl() : nullptr;
}

// --- cloning, chunks

void ListControl::CopyStateFrom(ReferenceTarget& source, RemapDir&) {
  const auto& from = static_cast<ListControl&>(source);
  entries_.resize(from.entries_.size());
  names_ = from.names_;
  active_ = from.active_;
  locked_ = from.locked_;
}

IOResult ListControl::Save(ISave& save) {
  save.BeginChunk(kListChunk);
  save.Write(int32_t{active_});
  save.Write(static_cast<uint32_t>(entries_.size()));
  for (size_t i = 0; i < entries_.size(); ++i) save.WriteWStr(i < names_.size() ? names_[i] : WStr());
  save.EndChunk();
  return SaveLock(save);
}

IOResult ListControl::Load(ILoad& load) {
  while (load.OpenChunk() == IOResult::OK) {
    if (load.CurChunkID() == kListChunk) {
      int32_t active = 0;
      uint32_t count = 0;
      load.Read(active);
      load.ReadCount(count, sizeof(uint32_t));
      entries_.assign(count, nullptr);
      names_.assign(count, {});
      for (WStr& name : names_) load.ReadWStr(name);
      active_ = std::clamp(active, 0, std::max(0, static_cast<int>(count) - 1));
    } else if (load.CurChunkID() == kLockChunk) {
      int32_t on = 0;
      load.Read(on);
      locked_ = on != 0;
    }
    load.CloseChunk();
  }
  return load.Status();
}

}  // namespace corvanta
