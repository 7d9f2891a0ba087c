// SPDX-License-Identifier: MIT
// Selection, creation, deletion, hierarchy, modifiers, layers.
#include "host/core/cust_attrib.h"
#include "host/scene/core_interface.h"
#include "host/script/bridge_functions.h"
#include "host/script/bridge_object.h"

namespace corvanta::script {

namespace {

Value NodeByName(const CallArgs& args) { return WrapTarget(GetScene().GetINodeByName(args.Text(0))); }

uint32_t HandleArg(const CallArgs& args) {
  const int64_t handle = args.Int(0);
  return handle < 0 || handle > UINT32_MAX ? 0 : static_cast<uint32_t>(handle);
}
Value NodeByHandle(const CallArgs& args) { return WrapTarget(GetScene().GetNodeByHandle(HandleArg(args))); }

Value Select(const CallArgs& args) {
  const std::vector<INode*> nodes = NodeListArg(args, 0);
  GetScene().ClearNodeSelection();
  GetScene().SelectNodeTab(nodes, true);
  return Value::Ok();
}
Value SelectMore(const CallArgs& args) {
  GetScene().SelectNodeTab(NodeListArg(args, 0), true);
  return Value::Ok();
}
Value Deselect(const CallArgs& args) {
  GetScene().SelectNodeTab(NodeListArg(args, 0), false);
  return Value::Ok();
}
Value ClearSelection(const CallArgs&) {
  GetScene().ClearNodeSelection();
  return Value::Ok();
}

Value Delete(const CallArgs& args) {
  Tab<INode*> nodes;
  for (INode* node : NodeListArg(args, 0)) nodes.Append(node);
  GetScene().DeleteNodes(nodes);
  return Value::Ok();
}
Value IsValidNode(const CallArgs& args) {
  ReferenceTarget* target = TargetOf(args[0]);
  return Value::Bool(target && target->AsNode() && target->AsNode()->IsInScene());
}
Value CloneNodes(const CallArgs& args) { return NodeArray(GetScene().CloneNodes(NodeListArg(args, 0))); }
Value UniqueName(const CallArgs& args) { return Value::String(GetScene().MakeUniqueName(args.Text(0))); }

Value AttachChild(const CallArgs& args) {
  args.CheckKeywords({L"keeptm"});
  const Value* keep = args.Keyword(L"keeptm");
  if (keep && !keep->Is(Kind::Bool)) WrongValue(L"true or false for keepTM:", *keep);
  if (!NodeArg(args, 0)->AttachChild(NodeArg(args, 1), !keep || keep->AsBool()))
    Fail(L"attachChild: `" + NodeArg(args, 1)->GetName() + L"` cannot hang below `" + NodeArg(args, 0)->GetName() +
         L"`: that would close a loop");
  return Value::Ok();
}

Value AddModifier(const CallArgs& args) {
  auto* modifier = dynamic_cast<Modifier*>(TargetOf(args[1]));
  if (!modifier) args.Wrong(1, L"a modifier");
  if (!NodeArg(args, 0)->GetObjectRef()) Fail(L"addModifier: the node has no object");
  NodeArg(args, 0)->AddModifier(modifier);
  return Value::Ok();
}

// By the modifier itself or by its number from the top.
Value DeleteModifier(const CallArgs& args) {
  const auto number = ToInt(args[1]);
  int64_t seen = 0;
  for (Object* object = NodeArg(args, 0)->GetObjectRef(); auto* derived = dynamic_cast<DerivedObject*>(object);
       object = derived->GetObjRef())
    for (int i = 0; i < derived->NumModifiers(); ++i)
      if (++seen == number.value_or(0) || derived->GetModifier(i) == TargetOf(args[1]))
        return Value::Bool(derived->DeleteModifier(i));
  args.Wrong(1, L"a modifier of the node or its number");
}

Value AddAttribute(const CallArgs& args) {
  ReferenceTarget* target = TargetOf(args[0]);
  auto* attribute = dynamic_cast<CustAttrib*>(TargetOf(args[1]));
  if (!target) args.Wrong(0, L"an object");
  if (!attribute) args.Wrong(1, L"a custom attribute");
  target->MakeCustAttribContainer()->AppendCustAttrib(attribute);
  return Value::Ok();
}
Value Attributes(const CallArgs& args) {
  ReferenceTarget* target = TargetOf(args[0]);
  if (!target) args.Wrong(0, L"an object");
  std::vector<NamedList::Entry> entries;
  const CustAttribContainer* container = target->GetCustAttribContainer();
  for (int i = 0; container && i < container->GetNumCustAttribs(); ++i)
    entries.push_back({container->GetCustAttrib(i)->GetName(), WrapTarget(container->GetCustAttrib(i))});
  return Value::Object(new NamedList(std::move(entries)));
}

Value GetLayer(const CallArgs& args) { return WrapTarget(GetScene().FindLayer(args.Text(0))); }
Value MakeLayer(const CallArgs& args) {
  auto* parent = args.Count() > 1 ? dynamic_cast<SceneLayer*>(TargetOf(args[1])) : nullptr;
  if (args.Count() > 1 && !parent) args.Wrong(1, L"a layer");
  return WrapTarget(GetScene().MakeLayer(args.Text(0), parent));
}

Value GetUserProp(const CallArgs& args) { return Value::String(NodeArg(args, 0)->GetUserPropString(args.Text(1))); }
Value SetUserProp(const CallArgs& args) {
  NodeArg(args, 0)->SetUserPropString(args.Text(1), args.Text(2));
  return Value::Ok();
}
Value GetLocks(const CallArgs& args) { return Value::Int(NodeArg(args, 0)->GetTransformLocks()); }
Value SetLocks(const CallArgs& args) {
  const int64_t locks = args.Int(1);
  if (locks < 0 || locks > 511) args.Wrong(1, L"nine bits (0 to 511)");
  NodeArg(args, 0)->SetTransformLocks(static_cast<uint16_t>(locks));
  return Value::Ok();
}

const BuiltinRow kRows[] = {
    {L"getNodeByName", NodeByName, 1, 1},
    {L"getNodeByHandle", NodeByHandle, 1, 1},
    {L"corvantaOps.getNodeByHandle", NodeByHandle, 1, 1},
    {L"select", Select, 1, 1},
    {L"selectNodes", Select, 1, 1},
    {L"selectMore", SelectMore, 1, 1},
    {L"deselect", Deselect, 1, 1},
    {L"clearSelection", ClearSelection, 0, 0},
    {L"delete", Delete, 1, 1},
    {L"isValidNode", IsValidNode, 1, 1},
    {L"cloneNodes", CloneNodes, 1, 1},
    {L"uniqueName", UniqueName, 1, 1},
    {L"attachChild", AttachChild, 2, 2},
    {L"addModifier", AddModifier, 2, 2},
    {L"deleteModifier", DeleteModifier, 2, 2},
    {L"addAttribute", AddAttribute, 2, 2},
    {L"attributesOf", Attributes, 1, 1},
    {L"getLayer", GetLayer, 1, 1},
    {L"makeLayer", MakeLayer, 1, 2},
    {L"getUserProp", GetUserProp, 2, 2},
    {L"setUserProp", SetUserProp, 3, 3},
    {L"getTransformLocks", GetLocks, 1, 1},
    {L"setTransformLocks", SetLocks, 2, 2},
};

}  // namespace

std::span<const BuiltinRow> NodeFunctions() { return kRows; }

}  // namespace corvanta::script
