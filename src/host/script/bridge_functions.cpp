// SPDX-License-Identifier: MIT
#include "host/script/bridge_functions.h"

#include <unordered_map>

#include "host/core/class_desc.h"
#include "host/scene/mesh_object.h"
#include "host/scene/scene.h"
#include "host/script/bridge_object.h"
#include "host/script/operators.h"
#include "host/script/text.h"

namespace corvanta::script {

namespace {

/// Functions under a name of their own: `macros.run`.
class FunctionSet final : public HostObject {
 public:
  explicit FunctionSet(WStr name) : name_(std::move(name)) {}
  WStr ClassName() const override { return L"Interface"; }
  WStr Text() const override { return L"<Interface:" + name_ + L">"; }
  void AppendJson(WStr& out) const override { AppendJsonString(out, name_); }
  bool Get(const WStr& name, Value& out) override {
    const auto found = functions_.find(name);
    if (found == functions_.end()) return false;
    out = found->second;
    return true;
  }
  std::vector<WStr> PropertyNames() override {
    std::vector<WStr> names;
    for (const auto& [name, value] : functions_) names.push_back(value.AsCallable().Name());
    return names;
  }
  void Add(const WStr& name, Value function) { functions_[ToLower(name)] = std::move(function); }

 private:
  WStr name_;
  std::unordered_map<WStr, Value> functions_;
};

using Table = std::unordered_map<WStr, Value>;

// A row named "set.function" goes into the set.
void AddRow(Table& table, const BuiltinRow& row) {
  const WStr name = row.name;
  const size_t dot = name.find(L'.');
  const WStr last = name.substr(dot == WStr::npos ? 0 : dot + 1);
  const Value function = Value::Heap(Kind::Callable, new NativeFunction(last, row.body, row.minArgs, row.maxArgs));
  if (dot == WStr::npos) {
    table[ToLower(name)] = function;
    return;
  }
  Value& set = table[ToLower(name.substr(0, dot))];
  if (set.IsUndefined()) set = Value::Object(new FunctionSet(name.substr(0, dot)));
  static_cast<FunctionSet&>(set.AsObject()).Add(last, function);
}

const Table& Functions() {
  static const Table& table = *[] {
    auto* made = new Table;
    for (const auto rows : {NodeFunctions(), ControlFunctions(), ProgramFunctions(), FileFunctions(), MeshFunctions()})
      for (const BuiltinRow& row : rows) AddRow(*made, row);
    return made;
  }();
  return table;
}

WStr ClassKey(const WStr& name) {
  WStr key;
  for (const wchar_t c : ToLower(name))
    if (c != L' ' && c != L'_' && c != L'/') key += c;
  return key;
}

// The directory by key; built again when classes have come.
const ClassDesc* FindClass(const WStr& name) {
  static auto& table = *new std::unordered_map<WStr, const ClassDesc*>;
  static size_t known = 0;
  const auto& all = ClassDirectory::Get().All();
  if (known != all.size()) {
    table.clear();
    known = all.size();
    // Of several classes of one name, one that can be made is meant.
    for (const ClassDesc* desc : all)
      for (const wchar_t* text : {desc->internalName, desc->className}) {
        const ClassDesc*& place = table[ClassKey(text)];
        if (!place || (!place->create && desc->create)) place = desc;
      }
  }
  const auto found = table.find(ClassKey(name));
  return found == table.end() ? nullptr : found->second;
}

/// A class of the directory.
class SceneClass final : public ClassObject {
 public:
  explicit SceneClass(const ClassDesc& desc) : ClassObject(desc.className), desc_(desc) {}
  Value Call(const CallArgs& args) override {
    if (args.Count() > 0) args.WrongCount(L"no");
    return MakeInstance(desc_, args);
  }

 private:
  const ClassDesc& desc_;
};

void SetKeywords(Value& object, const CallArgs& args, bool isMesh) {
  for (size_t i = 0; i < args.Keywords().size(); ++i)
    if (!(isMesh && IsMeshKeyword(args.Keywords()[i])) &&
        !object.AsObject().Set(args.Keywords()[i], args.KeywordValue(i)))
      Fail(Describe(object) + L" has no property `" + args.Keywords()[i] + L"`");
}

}  // namespace

bool FindProgramFunction(const WStr& name, Value& out) {
  const auto found = Functions().find(name);
  if (found == Functions().end()) return false;
  out = found->second;
  return true;
}

bool FindSceneClass(const WStr& name, Value& out) {
  const ClassDesc* desc = FindClass(name);
  if (desc) out = Value::Heap(Kind::Class, new SceneClass(*desc));
  return desc != nullptr;
}

Value MakeInstance(const ClassDesc& desc, const CallArgs& args) {
  Ref<ReferenceTarget> made = desc.Create();
  if (!made) Fail(L"objects of the class " + WStr(desc.className) + L" cannot be made here");
  auto* object = dynamic_cast<Object*>(made.Get());
  auto* mesh = dynamic_cast<MeshObject*>(object);
  if (mesh) mesh->SetMesh(MeshFromKeywords(args));
  Value value = WrapTarget(object ? GetScene().CreateObjectNode(object) : made.Get());
  SetKeywords(value, args, mesh != nullptr);
  return value;
}

INode* NodeArg(const CallArgs& args, size_t i) {
  ReferenceTarget* target = TargetOf(args[i]);
  INode* node = target ? target->AsNode() : nullptr;
  if (!node) args.Wrong(i, L"a node");
  if (!node->IsInScene() && !node->IsRootNode()) Fail(L"the node `" + node->GetName() + L"` is deleted");
  return node;
}

Control* ControlArg(const CallArgs& args, size_t i) {
  Control* control = ControlOf(args[i]);
  if (!control) args.Wrong(i, L"a controller");
  return control;
}

std::vector<INode*> NodeListArg(const CallArgs& args, size_t i) {
  const bool list = args[i].Is(Kind::Array) || (args[i].Is(Kind::Object) && args[i].AsObject().Count() >= 0);
  if (!list) return {NodeArg(args, i)};
  std::vector<INode*> nodes;
  const Value array = Convert(args[i], ConversionType::Array);
  for (const Value& item : array.AsArray().items()) {
    ReferenceTarget* target = TargetOf(item);
    if (!target || !target->AsNode())
      Fail(L"expected an array of nodes as argument " + std::to_wstring(i + 1) + L" of " + args.CalleeName() +
           L", it holds " + Describe(item));
    if (target->AsNode()->IsInScene()) nodes.push_back(target->AsNode());
  }
  return nodes;
}

Value NodeArray(const std::vector<INode*>& nodes) {
  Value array = Value::Array();
  for (INode* node : nodes) array.AsArray().Append(WrapTarget(node));
  return array;
}

}  // namespace corvanta::script
