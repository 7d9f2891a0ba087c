// SPDX-License-Identifier: MIT
// Objects of the scene in scripts. A name is looked up as: a property of the kind (nodes, layers, controllers), then
// a parameter, a published property or function, a sub-animatable, a custom attribute; a node goes on to its base
// object, its modifiers and their attributes.
#pragma once

#include "host/core/param_block.h"
#include "host/script/bridge_values.h"
#include "host/script/script_error.h"

namespace corvanta::script {

/// Any reference target; kept alive by the handle.
class TargetObject final : public HostObject {
 public:
  explicit TargetObject(ReferenceTarget* target) : target_(target) {}
  ReferenceTarget* target() const { return target_.Get(); }

  WStr ClassName() const override;
  WStr Text() const override;
  void AppendJson(WStr& out) const override;
  bool SameAs(const HostObject& b) const override;
  bool Get(const WStr& name, Value& out) override;
  bool Set(const WStr& name, const Value& value) override;
  std::vector<WStr> PropertyNames() override;

 private:
  Ref<ReferenceTarget> target_;
};

/// Place `index` of an object's sub-animatables: what stands there may change.
class SubAnimObject final : public HostObject {
 public:
  SubAnimObject(ReferenceTarget* owner, int index) : owner_(owner), index_(index) {}
  ReferenceTarget* target() const;

  WStr ClassName() const override { return L"SubAnim"; }
  WStr Text() const override;
  void AppendJson(WStr& out) const override;
  bool SameAs(const HostObject& b) const override;
  bool Get(const WStr& name, Value& out) override;
  bool Set(const WStr& name, const Value& value) override;
  std::vector<WStr> PropertyNames() override;

 private:
  Value GetValue() const;
  void SetValue(const Value& value);
  Ref<ReferenceTarget> owner_;
  int index_;
};

/// A parameter that holds a list.
class TabObject final : public HostObject {
 public:
  TabObject(ParamBlock2& block, const ParamRow& row) : block_(&block), row_(row) {}
  WStr ClassName() const override { return L"ParamArray"; }
  WStr Text() const override;
  void AppendJson(WStr& out) const override;
  bool SameAs(const HostObject& b) const override;
  bool Get(const WStr& name, Value& out) override;
  bool Set(const WStr& name, const Value& value) override;
  int64_t Count() override { return block_->Count(row_.id); }
  Value Item(int64_t i) override;
  bool SetAt(const Value& key, const Value& value) override;
  bool Append(const Value& value) override;
  bool DeleteItem(int64_t i) override;
  /// All items at once.
  void Assign(const Value& value);

 private:
  Ref<ParamBlock2> block_;
  const ParamRow& row_;
};

/// The published interface of an object, or of the program when `owner` is null.
class InterfaceObject final : public HostObject {
 public:
  InterfaceObject(ReferenceTarget* owner, FPInterface& interface) : owner_(owner), interface_(interface) {}
  WStr ClassName() const override { return L"Interface"; }
  WStr Text() const override { return L"<Interface:" + WStr(interface_.GetDesc().scriptName) + L">"; }
  void AppendJson(WStr& out) const override;
  bool SameAs(const HostObject& b) const override;
  bool Get(const WStr& name, Value& out) override;
  bool Set(const WStr& name, const Value& value) override;
  std::vector<WStr> PropertyNames() override;

 private:
  Ref<ReferenceTarget> owner_;
  FPInterface& interface_;
};

/// A fixed list with items by name or number, such as the modifiers of a node.
class NamedList final : public HostObject {
 public:
  struct Entry {
    WStr name;
    Value value;
  };
  explicit NamedList(std::vector<Entry> entries) : entries_(std::move(entries)) {}
  WStr ClassName() const override { return L"List"; }
  WStr Text() const override;
  void AppendJson(WStr& out) const override;
  int64_t Count() override { return static_cast<int64_t>(entries_.size()); }
  Value Item(int64_t i) override { return entries_[static_cast<size_t>(i)].value; }
  bool GetAt(const Value& key, Value& out) override;
  bool Get(const WStr& name, Value& out) override;

 private:
  std::vector<Entry> entries_;
};

// --- pieces of the lookup -----------------------------------------------------------------------------------

/// One built-in property of a kind of object. A null setter makes it read-only.
template <class T>
struct PropertyRow {
  const wchar_t* name;
  Value (*get)(T&);
  void (*set)(T&, const Value&);
};

template <class Row>
const Row* FindRow(std::span<const Row> rows, const WStr& name) {
  for (const Row& row : rows)
    if (EqualsNoCase(row.name, name)) return &row;
  return nullptr;
}

template <class Row, class T>
bool GetByRow(std::span<const Row> rows, T& object, const WStr& name, Value& out) {
  const Row* row = FindRow(rows, name);
  if (row) out = row->get(object);
  return row != nullptr;
}

template <class Row, class T>
bool SetByRow(std::span<const Row> rows, T& object, const WStr& name, const Value& value) {
  const Row* row = FindRow(rows, name);
  if (row && !row->set) Fail(L"`" + WStr(row->name) + L"` is read-only");
  if (row) row->set(object, value);
  return row != nullptr;
}

std::span<const PropertyRow<INode>> NodeProperties();
std::span<const PropertyRow<Control>> ControlProperties();
/// Properties of layers, modifiers, materials and attributes.
std::span<const PropertyRow<ReferenceTarget>> NamedProperties(const ReferenceTarget& target);

/// A published property or function of `interface`.
bool GetPublished(ReferenceTarget* owner, FPInterface& interface, const WStr& name, Value& out);
bool SetPublished(FPInterface& interface, const WStr& name, const Value& value);
void AppendPublishedNames(const FPInterface& interface, std::vector<WStr>& names);

/// Looks a name up in one object, without going on to others.
bool GetOwn(ReferenceTarget& target, const WStr& name, Value& out);
bool SetOwn(ReferenceTarget& target, const WStr& name, const Value& value);
/// The objects that a name is looked up in, in order.
std::vector<ReferenceTarget*> LookupPath(ReferenceTarget& target);

// --- controllers --------------------------------------------------------------------------------------------

/// The value at `t` in the type of the controller's super class; transform controllers below an identity parent.
Value ControlValue(Control& control, TimeValue t);
/// Throws when `value` does not fit the controller's type. Undoable.
void SetControlValue(Control& control, TimeValue t, const Value& value);
/// The parts of a controller that it has by role: position, rotation, scale, x, y, z.
bool GetControlPart(Control& control, const WStr& name, Value& out);
bool SetControlPart(Control& control, const WStr& name, const Value& value);
/// Puts a controller into place `i` as a user does, with `Copy`. Throws when it does not fit. Undoable.
void AssignController(Animatable& owner, int i, const Value& value);
/// Throws "expected ..., got ...".
[[noreturn]] void WrongValue(const WStr& expected, const Value& value);

}  // namespace corvanta::script
