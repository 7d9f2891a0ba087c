// SPDX-License-Identifier: MIT
#include "host/script/bridge_host.h"

#include <filesystem>
#include <fstream>
#include <sstream>

#include "host/core/published.h"
#include "host/scene/core_interface.h"
#include "host/script/bridge_functions.h"
#include "host/script/bridge_object.h"
#include "host/script/execute.h"
#include "host/script/execute_hooks.h"
#include "host/script/macro_dir.h"
#include "host/script/operators.h"
#include "host/script/primitive_table.h"

namespace corvanta::script {

namespace {

std::vector<INode*> AllNodes() {
  std::vector<INode*> nodes;
  for (const Ref<INode>& node : GetScene().Nodes()) nodes.push_back(node.Get());
  return nodes;
}

Value Layers() {
  std::vector<NamedList::Entry> entries;
  for (const Ref<SceneLayer>& layer : GetScene().Layers())
    entries.push_back({layer->GetName(), WrapTarget(layer.Get())});
  return Value::Object(new NamedList(std::move(entries)));
}

void SetSliderTime(const Value& value) {
  const auto t = ToTime(value);
  if (!t) WrongValue(L"a time such as 10f for sliderTime", value);
  GetCOREInterface()->SetTime(*t);
}
void SetRange(const Value& value) {
  if (!value.Is(Kind::Interval) || value.AsInterval().IsEmpty())
    WrongValue(L"an interval such as (interval 0f 100f)", value);
  GetCOREInterface()->SetAnimRange(value.AsInterval());
}
void SetRate(const Value& value) {
  const auto rate = ToInt(value);
  if (!rate || *rate < 1 || *rate > kTicksPerSecond) WrongValue(L"a frame rate from 1 to 6000", value);
  GetCOREInterface()->SetFrameRate(static_cast<int>(*rate));
  SetTicksPerFrame(GetCOREInterface()->GetTicksPerFrame());
}
void SetSceneUnit(const Value& value) {
  if (!value.IsNumber() || !IsUnitLength(value.Number()))
    WrongValue(L"a number of centimeters above 0 for sceneUnit", value);
  GetScene().units.centimetres = value.Number();
}
Value GetUpAxis() { return Value::Name(GetScene().units.upAxis == UpAxis::Y ? L"Y" : L"Z"); }
void SetUpAxis(const Value& value) {
  const WStr name = value.IsText() ? ToLower(value.AsText()) : WStr();
  if (name != L"y" && name != L"z") WrongValue(L"#Y or #Z for sceneUpAxis", value);
  GetScene().units.upAxis = name == L"y" ? UpAxis::Y : UpAxis::Z;
}
void SetAnimateMode(const Value& value) {
  if (!value.Is(Kind::Bool)) WrongValue(L"on or off for animateMode", value);
  value.AsBool() ? AnimateOn() : AnimateOff();
}

struct GlobalRow {
  const wchar_t* name;  // lower case
  Value (*get)();
  void (*set)(const Value&);
};
const GlobalRow kGlobals[] = {
    {L"selection", [] { return NodeArray(GetScene().Selection()); }, nullptr},
    {L"nodes", [] { return NodeArray(AllNodes()); }, nullptr},
    {L"rootnode", [] { return WrapTarget(GetScene().GetRootNode()); }, nullptr},
    {L"layers", Layers, nullptr},
    {L"trackviewroot", [] { return WrapTarget(GetScene().GetTrackViewRootNode()); }, nullptr},
    {L"slidertime", [] { return Value::Time(GetCOREInterface()->GetTime()); }, SetSliderTime},
    {L"animationrange", [] { return Value::Of(GetCOREInterface()->GetAnimRange()); }, SetRange},
    {L"framerate", [] { return Value::Int(GetCOREInterface()->GetFrameRate()); }, SetRate},
    {L"sceneunit", [] { return Value::Float(GetScene().units.centimetres); }, SetSceneUnit},
    {L"sceneupaxis", GetUpAxis, SetUpAxis},
    {L"ticksperframe", [] { return Value::Int(GetCOREInterface()->GetTicksPerFrame()); }, nullptr},
    {L"currenttime", [] { return Value::Time(ScriptTime()); }, nullptr},
    {L"animatemode", [] { return Value::Bool(Animating()); }, SetAnimateMode},
};

const GlobalRow* FindRow(const WStr& name) {
  for (const GlobalRow& row : kGlobals)
    if (name == row.name) return &row;
  return nullptr;
}

bool FindFixed(const WStr& name, Value& out) {
  const auto primitive = Primitives().find(name);
  if (primitive != Primitives().end()) return out = primitive->second, true;
  if (FPInterface* interface = FindCoreInterface(name))
    return out = Value::Object(new InterfaceObject(nullptr, *interface)), true;
  return FindProgramFunction(name, out);
}

}  // namespace

GlobalUse SceneHost::FindGlobal(const WStr& name) {
  if (const GlobalRow* row = FindRow(name)) return row->set ? GlobalUse::Writable : GlobalUse::ReadOnly;
  Value found;
  if (FindFixed(name, found)) return GlobalUse::ReadOnly;
  return FindSceneClass(name, found) ? GlobalUse::Shadowed : GlobalUse::None;
}

Value SceneHost::GetGlobal(const WStr& name) {
  if (const GlobalRow* row = FindRow(name)) return row->get();
  Value found;
  if (!FindFixed(name, found)) FindSceneClass(name, found);
  return found;
}

void SceneHost::SetGlobal(const WStr& name, const Value& value) { FindRow(name)->set(value); }

Value SceneHost::FindNodes(const WStr& pattern, bool quoted) {
  if (pattern.empty() && !quoted) {
    const std::vector<INode*>& selection = GetScene().Selection();
    if (selection.size() > 1) return NodeArray(selection);
    return selection.empty() ? Value() : WrapTarget(selection[0]);
  }
  if (quoted || pattern.find_first_of(L"*?") == WStr::npos) return WrapTarget(GetScene().GetINodeByName(pattern));
  std::vector<INode*> found;
  for (INode* node : AllNodes())
    if (MatchesPattern(ToLower(node->GetName()), ToLower(pattern))) found.push_back(node);
  return NodeArray(found);
}

void SceneHost::Write(std::wstring_view text) { WriteToListener(text); }

void SceneHost::MessageBox(const WStr& text, const WStr& title) { ShowMessageBox(text, title, quiet_); }

int SceneHost::TicksPerFrame() { return GetCOREInterface()->GetTicksPerFrame(); }

void SceneHost::BeginUndo() { theHold.Begin(); }
void SceneHost::AcceptUndo(const WStr& label) { theHold.Accept(label); }
void SceneHost::SuspendUndo() { theHold.Suspend(); }
void SceneHost::ResumeUndo() { theHold.Resume(); }
void SceneHost::PushTime(TimeValue t) { PushScriptTime(t); }
void SceneHost::PopTime() { PopScriptTime(); }

void SceneHost::PushAnimate(bool on) {
  animate_.push_back(Animating());
  on ? AnimateOn() : AnimateOff();
}
void SceneHost::PopAnimate() {
  animate_.back() ? AnimateOn() : AnimateOff();
  animate_.pop_back();
}

// `redraw on` inside `redraw off` changes nothing: what is outside wants no redraw.
void SceneHost::PushRedraw(bool on) {
  redraw_.push_back(on);
  if (!on) GetCOREInterface()->DisableSceneRedraw();
}
void SceneHost::PopRedraw() {
  if (!redraw_.back()) GetCOREInterface()->EnableSceneRedraw();
  redraw_.pop_back();
}

void SceneHost::DefineMacro(const MacroDefinition& macro) {
  GetMacroScriptDir().Define({0, macro.name, macro.category, macro.internalCategory, macro.toolTip, macro.buttonText,
                              macro.iconName, macro.sourceName, macro.body});
}

WStr SceneHost::ReadScript(const WStr& path) {
  const std::filesystem::path file(ToUtf8(path));
  std::error_code error;
  if (std::filesystem::is_directory(file, error)) Fail(L"cannot read `" + path + L"`: it is a folder");
  std::ifstream stream(file, std::ios::binary);
  std::ostringstream bytes;
  if (!stream || !(bytes << stream.rdbuf())) {
    // An empty file sets the fail bit too.
    if (!std::filesystem::is_regular_file(file, error))
      Fail(L"cannot read `" + path + L"`: there is no such file, or it may not be read");
    if (std::filesystem::file_size(file, error) > 0) Fail(L"cannot read `" + path + L"`");
  }
  return FromUtf8(bytes.str());
}

}  // namespace corvanta::script
