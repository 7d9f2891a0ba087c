// SPDX-License-Identifier: MIT
// Properties of nodes, layers, modifiers, materials and attributes. Matrices, positions and rotations of nodes are of
// the world.
#include "host/core/cust_attrib.h"
#include "host/scene/material.h"
#include "host/scene/scene.h"
#include "host/script/bridge_object.h"
#include "host/script/operators.h"
#include "host/script/text.h"

namespace corvanta::script {

namespace {

template <class T, class F>
T Needed(const Value& value, F convert, const wchar_t* expected) {
  const auto converted = convert(value);
  if (!converted) WrongValue(expected, value);
  return *converted;
}
Point3 PointOf(const Value& v) { return Needed<Point3>(v, ToPoint3, L"a point such as [1,2,3]"); }
Quat QuatOf(const Value& v) { return Needed<Quat>(v, ToQuat, L"a quaternion"); }
Matrix3 MatrixOf(const Value& v) { return Needed<Matrix3>(v, ToMatrix, L"a matrix"); }
bool BoolOf(const Value& v) {
  if (!v.Is(Kind::Bool)) WrongValue(L"true or false", v);
  return v.AsBool();
}
WStr TextOf(const Value& v) {
  if (!v.IsText()) WrongValue(L"a string", v);
  return v.AsText();
}
uint32_t ColourOf(const Value& v) {
  if (!v.Is(Kind::Colour) && !v.Is(Kind::Point3)) WrongValue(L"a color such as (color 255 0 0)", v);
  return PackColour(Convert(v, ConversionType::Color).AsColour());
}

const Matrix3& WorldOf(INode& node) { return node.GetNodeTM(ScriptTime()); }

Value Children(INode& node) {
  Value children = Value::Array();
  for (INode* child : node.Children()) children.AsArray().Append(WrapTarget(child));
  return children;
}

Value Parent(INode& node) {
  INode* parent = node.GetParentNode();
  return parent && !parent->IsRootNode() ? WrapTarget(parent) : Value();
}
void SetParent(INode& node, const Value& value) {
  INode* parent = node.GetScene().GetRootNode();
  if (!value.IsUndefined()) {
    ReferenceTarget* target = TargetOf(value);
    parent = target ? target->AsNode() : nullptr;
    if (!parent) WrongValue(L"a node or undefined as parent", value);
  }
  if (!parent->AttachChild(&node))
    Fail(L"`" + node.GetName() + L"` cannot hang below " + Describe(value) + L": that would close a loop");
}

void SetPosition(INode& node, const Value& value) {
  Matrix3 tm = WorldOf(node);
  tm.SetTrans(PointOf(value));
  node.SetNodeTM(ScriptTime(), tm);
}
Value Rotation(INode& node) { return Value::Of(decomp_affine(WorldOf(node)).q); }
void SetRotation(INode& node, const Value& value) {
  AffineParts parts = decomp_affine(WorldOf(node));
  parts.q = Normalize(QuatOf(value));
  node.SetNodeTM(ScriptTime(), ComposeAffine(parts));
}
// A mirrored node shows negative scales.
Value ScaleOf(INode& node) {
  const AffineParts parts = decomp_affine(WorldOf(node));
  return Value::Of(parts.k * parts.f);
}
void SetScale(INode& node, const Value& value) {
  AffineParts parts = decomp_affine(WorldOf(node));
  parts.k = value.IsNumber() ? Point3{1, 1, 1} * static_cast<float>(value.Number()) : PointOf(value);
  parts.f = 1;
  node.SetNodeTM(ScriptTime(), ComposeAffine(parts));
}

void SetController(INode& node, const Value& value) { AssignController(node, 0, value); }

Value Visibility(INode& node) { return WrapTarget(node.GetVisController()); }
void SetVisibility(INode& node, const Value& value) {
  ReferenceTarget* target = TargetOf(value);
  Control* control = target ? target->AsControl() : nullptr;
  if (!value.IsUndefined() && !(control && control->SuperClassID() == kFloatControlSuper))
    WrongValue(L"a float controller or undefined", value);
  if (!node.SetVisController(control))
    Fail(Describe(value) + L" cannot be the visibility controller of `" + node.GetName() + L"`");
}

Value Modifiers(INode& node) {
  std::vector<NamedList::Entry> entries;
  for (Modifier* modifier : node.Modifiers()) entries.push_back({modifier->GetName(), WrapTarget(modifier)});
  return Value::Object(new NamedList(std::move(entries)));
}

void SetLayer(INode& node, const Value& value) {
  SceneLayer* layer =
      value.IsText() ? node.GetScene().MakeLayer(value.AsText()) : dynamic_cast<SceneLayer*>(TargetOf(value));
  if (!layer && !value.IsUndefined()) WrongValue(L"a layer, its name or undefined", value);
  node.SetLayer(layer);
}

void SetMaterial(INode& node, const Value& value) {
  auto* material = dynamic_cast<Mtl*>(TargetOf(value));
  if (!material && !value.IsUndefined()) WrongValue(L"a material or undefined", value);
  if (!node.SetMtl(material)) Fail(Describe(value) + L" cannot be the material of `" + node.GetName() + L"`");
}

void SetBaseObject(INode& node, const Value& value) {
  auto* object = dynamic_cast<Object*>(TargetOf(value));
  if (!object) WrongValue(L"an object", value);
  if (auto* derived = dynamic_cast<DerivedObject*>(node.GetObjectRef()))
    derived->ReferenceObject(object);
  else
    node.SetObjectRef(object);
}

template <bool (INode::*Read)() const>
Value Flag(INode& node) {
  return Value::Bool((node.*Read)());
}
template <void (INode::*Write)(bool)>
void SetFlag(INode& node, const Value& value) {
  (node.*Write)(BoolOf(value));
}
template <bool NodeState::*Field>
Value StateFlag(INode& node) {
  return Value::Bool(node.State().*Field);
}

using NodeRow = PropertyRow<INode>;
const NodeRow kNodeRows[] = {
    {L"name", [](INode& n) { return Value::String(n.GetName()); },
     [](INode& n, const Value& v) { n.SetName(TextOf(v)); }},
    {L"parent", Parent, SetParent},
    {L"children", Children, nullptr},
    {L"transform", [](INode& n) { return Value::Of(WorldOf(n)); },
     [](INode& n, const Value& v) { n.SetNodeTM(ScriptTime(), MatrixOf(v)); }},
    {L"pos", [](INode& n) { return Value::Of(WorldOf(n).GetTrans()); }, SetPosition},
    {L"position", [](INode& n) { return Value::Of(WorldOf(n).GetTrans()); }, SetPosition},
    {L"rotation", Rotation, SetRotation},
    {L"scale", ScaleOf, SetScale},
    {L"controller", [](INode& n) { return WrapTarget(n.GetTMController()); }, SetController},
    {L"visibility", Visibility, SetVisibility},
    {L"modifiers", Modifiers, nullptr},
    {L"baseObject", [](INode& n) { return WrapTarget(n.GetBaseObject()); }, SetBaseObject},
    {L"material", [](INode& n) { return WrapTarget(n.GetMtl()); }, SetMaterial},
    {L"wirecolor", [](INode& n) { return Value::Of(UnpackColour(n.GetWireColor())); },
     [](INode& n, const Value& v) { n.SetWireColor(ColourOf(v)); }},
    {L"isHidden", Flag<&INode::IsHidden>, SetFlag<&INode::Hide>},
    {L"isFrozen", Flag<&INode::IsFrozen>, SetFlag<&INode::Freeze>},
    {L"isSelected", Flag<&INode::Selected>,
     [](INode& n, const Value& v) { n.GetScene().SelectNodeTab({&n}, BoolOf(v)); }},
    {L"renderable", StateFlag<&NodeState::renderable>, SetFlag<&INode::SetRenderable>},
    {L"boneEnable", StateFlag<&NodeState::boneOn>, SetFlag<&INode::SetBoneOnOff>},
    {L"layer", [](INode& n) { return WrapTarget(n.GetLayer()); }, SetLayer},
    {L"handle", [](INode& n) { return Value::Int(n.GetHandle()); }, nullptr},
    {L"objectOffsetPos", [](INode& n) { return Value::Of(n.GetObjOffsetPos()); },
     [](INode& n, const Value& v) { n.SetObjOffsetPos(PointOf(v)); }},
    {L"objectOffsetRot", [](INode& n) { return Value::Of(n.GetObjOffsetRot()); },
     [](INode& n, const Value& v) { n.SetObjOffsetRot(QuatOf(v)); }},
    {L"objectOffsetScale", [](INode& n) { return Value::Of(n.GetObjOffsetScale().s); },
     [](INode& n, const Value& v) {
       n.SetObjOffsetScale({PointOf(v), n.GetObjOffsetScale().q});
     }},
};

SceneLayer& LayerOf(ReferenceTarget& target) { return static_cast<SceneLayer&>(target); }

Value LayerParent(ReferenceTarget& target) { return WrapTarget(LayerOf(target).GetParent()); }
void SetLayerParent(ReferenceTarget& target, const Value& value) {
  auto* parent = dynamic_cast<SceneLayer*>(TargetOf(value));
  if (!parent && !value.IsUndefined()) WrongValue(L"a layer or undefined", value);
  if (!LayerOf(target).SetParent(parent)) Fail(L"the layers would close a loop");
}
// The nodes that lie on the layer, in the order of their creation.
Value LayerNodes(ReferenceTarget& target) {
  Value nodes = Value::Array();
  for (const Ref<INode>& node : GetScene().Nodes())
    if (node->GetLayer() == &target) nodes.AsArray().Append(WrapTarget(node.Get()));
  return nodes;
}

using NamedRow = PropertyRow<ReferenceTarget>;
const NamedRow kLayerRows[] = {
    {L"name", [](ReferenceTarget& t) { return Value::String(LayerOf(t).GetName()); },
     [](ReferenceTarget& t, const Value& v) { LayerOf(t).SetName(TextOf(v)); }},
    {L"parent", LayerParent, SetLayerParent},
    {L"isHidden", [](ReferenceTarget& t) { return Value::Bool(LayerOf(t).IsHidden()); },
     [](ReferenceTarget& t, const Value& v) { LayerOf(t).Hide(BoolOf(v)); }},
    {L"isFrozen", [](ReferenceTarget& t) { return Value::Bool(LayerOf(t).IsFrozen()); },
     [](ReferenceTarget& t, const Value& v) { LayerOf(t).Freeze(BoolOf(v)); }},
    {L"nodes", LayerNodes, nullptr},
};
const NamedRow kModifierRows[] = {
    {L"name", [](ReferenceTarget& t) { return Value::String(static_cast<Modifier&>(t).GetName()); }, nullptr},
};
const NamedRow kMaterialRows[] = {
    {L"name", [](ReferenceTarget& t) { return Value::String(static_cast<MaterialBase&>(t).GetName()); },
     [](ReferenceTarget& t, const Value& v) { static_cast<MaterialBase&>(t).SetName(TextOf(v)); }},
};
const NamedRow kAttributeRows[] = {
    {L"name", [](ReferenceTarget& t) { return Value::String(static_cast<CustAttrib&>(t).GetName()); }, nullptr},
};

}  // namespace

std::span<const PropertyRow<INode>> NodeProperties() { return kNodeRows; }

std::span<const PropertyRow<ReferenceTarget>> NamedProperties(const ReferenceTarget& target) {
  if (dynamic_cast<const SceneLayer*>(&target)) return kLayerRows;
  if (dynamic_cast<const Modifier*>(&target)) return kModifierRows;
  if (dynamic_cast<const MaterialBase*>(&target)) return kMaterialRows;
  if (dynamic_cast<const CustAttrib*>(&target)) return kAttributeRows;
  return {};
}

}  // namespace corvanta::script
