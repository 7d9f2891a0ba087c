// SPDX-License-Identifier: MIT
// Parameter blocks. What evaluation reads lies in one contiguous row of cells: the constant, and the controller when
// the parameter is animated.
#pragma once

#include <concepts>
#include <memory>
#include <utility>

#include "host/core/control.h"
#include "host/core/monitor.h"
#include "host/core/param_desc.h"

namespace corvanta {

class ParamBlock2;
using IParamBlock2 = ParamBlock2;

/// Told by an owner whose blocks have weak slots: a watched target changed or went.
class WeakParamOwner {
 public:
  virtual ~WeakParamOwner() = default;
  virtual void WeakTargetNotice(ParamBlock2& block, ParamID id, int tab, const RefNotice& notice) = 0;
};

class ParamBlock2 final : public ReferenceTarget, private MonitorClient {
 public:
  /// All parameters at their defaults. `desc` must outlive the block.
  explicit ParamBlock2(const ParamBlockDesc2& desc);
  ~ParamBlock2() override;

  static constexpr Class_ID kClassId{kHostClassWord, 0x100};
  SClass_ID SuperClassID() const override { return kParamBlockSuper; }
  Class_ID ClassID() const override { return kClassId; }
  WStr GetClassName() const override { return L"ParamBlock2"; }

  const ParamBlockDesc2& GetDesc() const { return *desc_; }
  /// The object whose block this is: its first dependent.
  ReferenceTarget* GetOwner() const { return owner_; }
  int NumParams() const { return desc_->Count(); }
  int IDtoIndex(ParamID id) const { return desc_->IDtoIndex(id); }
  /// Null for an unknown ID.
  const ParamRow* GetParamDef(ParamID id) const;

  // Reads. An unknown ID gives 0, an empty text, identity or null; a tab index beyond the end throws the Tab exception.
  // `valid` is narrowed by the controller of an animated parameter.
  float GetFloat(ParamID id, TimeValue t = 0, int tab = 0) const {
    Interval ignored = FOREVER;
    return GetFloat(id, t, ignored, tab);
  }
  float GetFloat(ParamID id, TimeValue t, Interval& valid, int tab = 0) const {
    const Cell* cell = Find(id, tab);
    if (!cell) return 0;
    if (!cell->control && !cell->viaAccessor) return cell->f;
    return SlowFloat(id, tab, *cell, t, valid);
  }
  int GetInt(ParamID id, TimeValue t = 0, int tab = 0) const {
    Interval ignored = FOREVER;
    return GetInt(id, t, ignored, tab);
  }
  int GetInt(ParamID id, TimeValue t, Interval& valid, int tab = 0) const {
    const Cell* cell = Find(id, tab);
    if (!cell) return 0;
    if (!cell->control && !cell->viaAccessor) return cell->i;
    return SlowInt(id, tab, *cell, t, valid);
  }
  bool GetBool(ParamID id, TimeValue t = 0, int tab = 0) const { return GetInt(id, t, tab) != 0; }
  bool GetBool(ParamID id, TimeValue t, Interval& valid, int tab = 0) const { return GetInt(id, t, valid, tab) != 0; }
  TimeValue GetTime(ParamID id, TimeValue t = 0, int tab = 0) const { return GetInt(id, t, tab); }
  Point3 GetPoint3(ParamID id, TimeValue t = 0, int tab = 0) const;
  Point3 GetPoint3(ParamID id, TimeValue t, Interval& valid, int tab = 0) const;
  Point2 GetPoint2(ParamID id, TimeValue t = 0, int tab = 0) const;
  Colour GetColour(ParamID id, TimeValue t = 0, int tab = 0) const;
  /// The stored matrix itself; valid until the next write.
  const Matrix3& GetMatrix3(ParamID id, TimeValue t = 0, int tab = 0) const {
    const Cell* cell = Find(id, tab);
    return cell && cell->isMatrix ? *cell->matrix : kIdentity;
  }
  const WStr& GetStr(ParamID id, TimeValue t = 0, int tab = 0) const;
  INode* GetINode(ParamID id, TimeValue t = 0, int tab = 0) const {
    ReferenceTarget* target = GetReferenceTarget(id, t, tab);
    return target ? target->AsNode() : nullptr;
  }
  ReferenceTarget* GetReferenceTarget(ParamID id, TimeValue t = 0, int tab = 0) const {
    const Cell* cell = Find(id, tab);
    if (!cell || !cell->isTarget) return nullptr;
    ReferenceTarget* stored = cell->isWeak ? cell->weak->Target() : cell->target;
    return cell->viaAccessor ? SlowTarget(id, tab, stored, t) : stored;
  }
  /// Any type; an Int for Bool rows comes as bool.
  FPValue GetValue(ParamID id, TimeValue t = 0, int tab = 0) const;

  // Writes. Undoable. False for an unknown ID or a value of another kind. Numbers convert among one another.
  // An animated parameter writes through its controller; with animate on one is made first.
  bool SetValue(ParamID id, TimeValue t, float value, int tab = 0);
  bool SetValue(ParamID id, TimeValue t, int value, int tab = 0);
  /// A template, so that no pointer turns into a bool.
  template <std::same_as<bool> B>
  bool SetValue(ParamID id, TimeValue t, B value, int tab = 0) {
    return SetValue(id, t, value ? 1 : 0, tab);
  }
  bool SetValue(ParamID id, TimeValue t, const Point3& value, int tab = 0);
  bool SetValue(ParamID id, TimeValue t, const Point2& value, int tab = 0);
  bool SetValue(ParamID id, TimeValue t, const Colour& value, int tab = 0);
  bool SetValue(ParamID id, TimeValue t, const Matrix3& value, int tab = 0);
  bool SetValue(ParamID id, TimeValue t, const WStr& value, int tab = 0);
  bool SetValue(ParamID id, TimeValue t, const wchar_t* value, int tab = 0) {
    return SetValue(id, t, WStr(value), tab);
  }
  /// Null clears. A target that depends on the block's owner is refused.
  bool SetValue(ParamID id, TimeValue t, ReferenceTarget* value, int tab = 0);
  bool SetValue(ParamID id, TimeValue t, std::nullptr_t, int tab = 0) {
    return SetValue(id, t, static_cast<ReferenceTarget*>(nullptr), tab);
  }
  bool SetFPValue(ParamID id, TimeValue t, const FPValue& value, int tab = 0);

  // Tabs. Undoable. Count is 1 for a parameter that is no tab, 0 for an unknown ID.
  int Count(ParamID id) const {
    const int index = desc_->IDtoIndex(id);
    if (index < 0) return 0;
    return tabs_.empty() || !tabs_[index] ? 1 : static_cast<int>(tabs_[index]->cells.size());
  }
  bool SetCount(ParamID id, int count);
  /// Appends a default entry and writes `value` into it.
  template <class T>
  bool Append(ParamID id, const T& value) {
    const int n = Count(id);
    return SetCount(id, n + 1) && SetValue(id, 0, value, n);
  }
  bool Insert(ParamID id, int at, const FPValue& value);
  bool Delete(ParamID id, int at, int count = 1);
  /// Puts the tab as it is on the hold, for an owner that then fills it while the hold is suspended.
  void RecordTab(ParamID id);

  // Animation.
  Control* GetController(ParamID id, int tab = 0) const;
  /// Undoable. Null makes the parameter a constant again.
  bool SetController(ParamID id, Control* control, int tab = 0);
  /// Sub-animatable number of a parameter; -1 when it is not animatable.
  int GetAnimNum(ParamID id, int tab = 0) const;
  /// The parameter and tab index of a sub-animatable; {-1, 0} beyond the end.
  std::pair<ParamID, int> AnimNumToParam(int animNum) const;

  /// Off: writes happen silently. Nests by counter.
  void EnableNotifications(bool on) { silent_ += on ? -1 : 1; }
  /// The parameter and tab index of the change that is being told; valid inside NotifyRefChanged.
  std::pair<ParamID, int> LastChanged() const;
  /// The target or controller in an entry whose message is being passed on; null for a write to the block itself. Valid
  /// inside NotifyRefChanged.
  ReferenceTarget* LastSender() const { return lastSender_; }

  // Animatable, ReferenceMaker, ReferenceTarget.
  int NumSubs() const override;
  Animatable* SubAnim(int i) override;
  WStr SubAnimName(int i) override;
  bool CanAssignController(int subAnim) override;
  bool AssignController(Control* control, int subAnim) override;
  ParamDimension GetParamDimension(int subAnim) override;
  int NumRefs() const override;
  ReferenceTarget* GetReference(int which) const override;
  RefResult NotifyRefChanged(const Interval& interval, ReferenceTarget* target, PartID& part, RefMessage message,
                             bool propagate) override;
  int FindReference(const ReferenceTarget* target, int from = kCustAttribRef) const override;
  ReferenceTarget* Clone(RemapDir& remap) override;
  void AddFootprint(EvaluationFootprint& footprint) const override;

  // What files keep of one entry: see SaveEntry and LoadEntry of the scene file.
  /// Weak slots: the watched target, also one that lives only in undo.
  ReferenceTarget* GetWeakRaw(ParamID id, int tab = 0) const;
  /// Sets an entry's target or controller while loading: no undo, no accessor, no message, no loop test.
  void LoadTarget(ParamID id, int tab, ReferenceTarget* target);
  void LoadController(ParamID id, int tab, Control* control);
  void LoadConstant(ParamID id, int tab, const FPValue& value);
  void LoadCount(ParamID id, int count);
  /// The constant behind an animated parameter too.
  FPValue GetConstant(ParamID id, int tab = 0) const;

 protected:
  void SetReference(int which, ReferenceTarget* target) override;
  void LinkAdded(ReferenceMaker* maker) override;
  void LinkDropped(ReferenceMaker* maker) override;

 private:
  friend class ParamRestore;
  friend class ParamTabRestore;
  struct Cell;
  struct CellCopy;
  struct RefPlace;

  /// 32 bytes, two a cache line: the value, then the controller.
  struct Cell {
    union {
      float f;
      int i;
      float p[3];
      Matrix3* matrix;
      WStr* text;
      ReferenceTarget* target;
      RefTargMonitor* weak;
    };
    uint32_t stamp : 28 = 0;
    uint32_t viaAccessor : 1 = 0;
    uint32_t isTarget : 1 = 0;
    uint32_t isWeak : 1 = 0;
    uint32_t isMatrix : 1 = 0;
    Control* control = nullptr;
    Cell() : p{} {}
  };
  static_assert(sizeof(Cell) == 32);

  struct TabCells {
    std::vector<Cell> cells;
    uint32_t stamp = 0;
  };

  const Cell* Find(ParamID id, int tab) const {
    const int index = desc_->IDtoIndex(id);
    if (index < 0) return nullptr;
    if (tabs_.empty() || !tabs_[index]) return &cells_[index];
    return TabCell(index, tab);
  }
  Cell* FindForWrite(ParamID id, int tab) { return const_cast<Cell*>(std::as_const(*this).Find(id, tab)); }
  const Cell* TabCell(int index, int tab) const;
  float SlowFloat(ParamID id, int tab, const Cell& cell, TimeValue t, Interval& valid) const;
  int SlowInt(ParamID id, int tab, const Cell& cell, TimeValue t, Interval& valid) const;
  ReferenceTarget* SlowTarget(ParamID id, int tab, ReferenceTarget* stored, TimeValue t) const;
  const ParamRow& Row(int index) const { return desc_->rows[index]; }

  void InitCell(const ParamRow& row, Cell& cell, int index, int tab);
  void ClearCell(const ParamRow& row, Cell& cell);
  CellCopy CopyCell(const ParamRow& row, const Cell& cell) const;
  void PutCell(const ParamRow& row, Cell& cell, const CellCopy& copy, int index, int tab);
  void Record(int index, int tab, Cell& cell);
  void RecordWholeTab(int index);
  void Changed(int index, int tab, TimeValue t, bool tellAccessor = true);
  bool WriteThroughController(int index, int tab, Cell& cell, TimeValue t, ValueRef value);
  bool StoreTarget(int index, int tab, ReferenceTarget* target);
  void ResizeTab(int index, int count);
  void RetagTab(int index);
  RefPlace PlaceOf(int which) const;
  std::pair<ParamID, int> EntryOf(const ReferenceTarget* target) const;
  template <class F>
  bool ForEachCell(F&& f) const;
  void MonitoredNotice(RefTargMonitor& monitor, const RefNotice& notice) override;

  static const Matrix3 kIdentity;

  const ParamBlockDesc2* desc_;
  std::vector<Cell> cells_;
  std::vector<std::unique_ptr<TabCells>> tabs_;
  ReferenceTarget* owner_ = nullptr;
  std::pair<ParamID, int> lastChanged_{-1, 0};
  /// Who sent the message under way, when it came from an entry: only compared. Which entry that is, is looked up when
  /// somebody asks, since a rig's list of nodes hears every one of them.
  ReferenceTarget* lastSender_ = nullptr;
  int silent_ = 0;
};

}  // namespace corvanta
