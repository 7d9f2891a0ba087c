// SPDX-License-Identifier: MIT
#include "app/rig_draft.h"

#include <algorithm>
#include <cmath>

#include "app/nearest_name.h"
#include "app/published_call.h"
#include "app/read_numbers.h"
#include "host/core/class_desc.h"

namespace app {

using namespace corvanta;

namespace {

std::string Quote(const std::string& text) { return "\"" + text + "\""; }

// What a user calls the kinds; rows of other kinds are not set from a command line.
const char* KindName(ParamType type) {
  if (type == ParamType::Bool) return "on/off";
  if (type == ParamType::Colour) return "colour";
  if (IsTextType(type)) return "text";
  if (IsIntType(type)) return "whole number";
  return IsFloatType(type) ? "number" : nullptr;
}

std::string ShowValue(const ParamBlock2& block, const ParamRow& row) {
  if (row.type == ParamType::Bool) return block.GetBool(row.id) ? "on" : "off";
  if (IsTextType(row.type)) return ToUtf8(block.GetStr(row.id));
  if (IsIntType(row.type)) return std::to_string(block.GetInt(row.id));
  if (row.type != ParamType::Colour) return WriteNumber(block.GetFloat(row.id));
  const Colour c = block.GetColour(row.id);
  return WriteNumber(c.r) + "," + WriteNumber(c.g) + "," + WriteNumber(c.b);
}

std::string ShowRange(const ParamRow& row) {
  if (!row.range.IsGiven()) return "";
  if (row.range.max >= 1e30f) return "from " + WriteNumber(row.range.min);
  return WriteNumber(row.range.min) + " to " + WriteNumber(row.range.max);
}

bool ReadSwitch(const std::string& text, bool& on) {
  for (const char* word : {"on", "true", "yes", "1"})
    if (text == word) return on = true, true;
  for (const char* word : {"off", "false", "no", "0"})
    if (text == word) return on = false, true;
  return false;
}

}  // namespace

RigDraft::RigDraft() {
  const ClassDesc* desc = ClassDirectory::Get().FindByName(L"Rig");
  Ref<ReferenceTarget> made = desc != nullptr ? desc->Create() : nullptr;
  auto* object = dynamic_cast<Object*>(made.Get());
  block_ = object != nullptr ? object->GetParamBlock() : nullptr;
  interface_ = object != nullptr ? FindInterface(*object, L"CreateRig") : nullptr;
  if (block_ == nullptr || interface_ == nullptr) {
    problem_ = "the plug-in of this build makes no rigs";
    return;
  }
  node_ = GetScene().CreateObjectNode(object);
}

std::vector<std::string> RigDraft::TypeNames() const { return EnumNames(*interface_, L"type"); }

std::string RigDraft::TypeName() const {
  const std::vector<std::string> names = TypeNames();
  const int type = GetProperty(*interface_, L"type").ToInt(-1);
  return type >= 0 && type < static_cast<int>(names.size()) ? names[static_cast<size_t>(type)] : "";
}

std::vector<RigParameter> RigDraft::Parameters() const {
  std::vector<RigParameter> parameters;
  for (const ParamRow& row : block_->GetDesc().rows) {
    if (*row.name == L'\0' || KindName(row.type) == nullptr || row.Is(kTab)) continue;
    parameters.push_back(
        {ToUtf8(row.name), KindName(row.type), ShowValue(*block_, row), ShowRange(row), ToUtf8(row.label)});
  }
  return parameters;
}

std::vector<std::string> RigDraft::PointNames() const { return Texts(GetProperty(*interface_, L"point_names")); }

std::string RigDraft::SetType(const std::string& name) {
  const std::vector<std::string> names = TypeNames();
  for (size_t i = 0; i < names.size(); ++i) {
    if (!EqualsNoCase(FromUtf8(names[i]), FromUtf8(name))) continue;
    SetProperty(*interface_, L"type", static_cast<int>(i));
    return "";
  }
  return Quote(name) + " is no type of rig" + Suggestion(name, names) + " (--list-types names them all)";
}

// The rig's own text names the file and what is wrong with it.
std::string RigDraft::FileProblem(const std::string& file, const char* otherwise) const {
  const std::string problem = ToUtf8(GetProperty(*interface_, L"file_error").ToWStr());
  return problem.empty() ? file + ": " + otherwise : problem;
}

std::string RigDraft::Load(const std::string& file) {
  if (Call(*interface_, L"Load", {FromUtf8(file)}).ToBool()) return "";
  return FileProblem(file, "it cannot be read as a rig template");
}

std::string RigDraft::Save(const std::string& file) {
  if (Call(*interface_, L"Save", {FromUtf8(file)}).ToBool()) return "";
  return FileProblem(file, "the rig template cannot be written");
}

std::string RigDraft::SetParameter(const std::string& name, const std::string& value) {
  const ParamRow* row = block_->GetDesc().FindByName(FromUtf8(name));
  if (row == nullptr || name.empty() || KindName(row->type) == nullptr || row->Is(kTab)) {
    std::vector<std::string> names;
    for (const RigParameter& parameter : Parameters()) names.push_back(parameter.name);
    return Quote(name) + " is no parameter of a rig" + Suggestion(name, names) + " (--list-params names them all)";
  }
  if (IsTextType(row->type)) return block_->SetValue(row->id, 0, FromUtf8(value)) ? "" : name + ": it was not taken";
  if (row->type == ParamType::Bool) {
    bool on = false;
    if (!ReadSwitch(value, on)) return name + ": " + Quote(value) + " is neither on nor off";
    return block_->SetValue(row->id, 0, on) ? "" : name + ": it was not taken";
  }
  if (row->type != ParamType::Colour) return SetNumber(*row, value);
  const std::vector<float> parts = ReadNumbers(value);
  const bool right =
      parts.size() == 3 && std::all_of(parts.begin(), parts.end(), [](float f) { return f >= 0 && f <= 1; });
  if (!right)
    return name + ": " + Quote(value) + " is no colour; give red, green and blue from 0 to 1, such as 1,0.5,0";
  return block_->SetValue(row->id, 0, Colour{parts[0], parts[1], parts[2]}) ? "" : name + ": it was not taken";
}

std::string RigDraft::SetNumber(const ParamRow& row, const std::string& value) {
  const std::string name = ToUtf8(row.name);
  const std::vector<float> numbers = ReadNumbers(value);
  const bool whole = IsIntType(row.type);
  if (numbers.size() != 1 || (whole && numbers[0] != std::trunc(numbers[0])))
    return name + ": " + Quote(value) + " is no " + KindName(row.type);
  if (row.range.IsGiven() && (numbers[0] < row.range.min || numbers[0] > row.range.max))
    return name + ": " + value + " is out of its range, " + ShowRange(row);
  if (whole && std::abs(numbers[0]) > 2e9f) return name + ": " + value + " is too large";
  const bool taken =
      whole ? block_->SetValue(row.id, 0, static_cast<int>(numbers[0])) : block_->SetValue(row.id, 0, numbers[0]);
  return taken ? "" : name + ": it was not taken";
}

std::string RigDraft::SetPoint(const std::string& name, const Point3& place) {
  const std::vector<std::string> names = PointNames();
  if (std::find(names.begin(), names.end(), name) == names.end()) {
    return Quote(name) + " is no point of this " + TypeName() + Suggestion(name, names) +
           " (--list-points names them all)";
  }
  Call(*interface_, L"SetPointPos", {FromUtf8(name), place});
  if (Call(*interface_, L"GetPointPos", {FromUtf8(name)}).ToPoint3() == place) return "";
  return Quote(name) + " cannot be moved by itself: it stands between its neighbours";
}

std::string RigDraft::Create() {
  Call(*interface_, L"CreateRig");
  return ToUtf8(GetProperty(*interface_, L"build_error").ToWStr());
}

std::string RigDraft::Name() const {
  const ParamRow* row = block_->GetDesc().FindByName(L"rig_name");
  return row != nullptr ? ToUtf8(block_->GetStr(row->id)) : "";
}

float RigDraft::Height() const {
  const ParamRow* row = block_->GetDesc().FindByName(L"helper_size");
  return row != nullptr ? block_->GetFloat(row->id) : 0;
}

std::vector<std::string> RigDraft::Notes() const { return Texts(GetProperty(*interface_, L"build_notes")); }
std::vector<std::string> RigDraft::PanelParts() const { return Texts(GetProperty(*interface_, L"panel_parts")); }
std::vector<std::string> RigDraft::UnknownPoints() const { return Texts(GetProperty(*interface_, L"unknown_points")); }

}  // namespace app
