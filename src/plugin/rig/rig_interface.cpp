// SPDX-License-Identifier: MIT
#include "plugin/rig/rig_interface.h"

#include "plugin/rig/rig_type.h"

namespace tavrilon {

using namespace corvanta;

namespace {

enum : int { kTypes = 0, kSides = 1 };

FPEnumDesc TypeEnumeration() {
  FPEnumDesc desc{kTypes, {}};
  for (int i = 0; i < kRigTypeCount; ++i) desc.values.emplace_back(kRigTypeNames[i], i);
  return desc;
}

const FPEnumDesc kSideEnumeration = {kSides,
                                     {{L"None", kSideNone},
                                      {L"Right", kSideRight},
                                      {L"Left", kSideLeft},
                                      {L"Both", kSideBoth},
                                      {L"Center", kSideCenter}}};

FPInterfaceDesc MakeDesc() {
  using F = IRigSystem;
  const FPParamDesc name{L"name", FPType::String}, index{L"index", FPType::Int}, file{L"fileName", FPType::String};
  const FPParamDesc side{L"side", FPType::Int, FPValue(-1)}, pointIndex{L"index", FPType::Int, FPValue(-1)},
      subIndex{L"sub_index", FPType::Int, FPValue(-1)};
  const FPParamDesc count{L"num_bones", FPType::Int};
  const auto extra = [&](int id, const wchar_t* function, FPType type, int enumId = -1) {
    return FPFunctionDesc{id, function, type, {index}, enumId};
  };
  const auto setExtra = [&](int id, const wchar_t* function, const FPParamDesc& value) {
    return FPFunctionDesc{id, function, FPType::Void, {index, value}};
  };
  return {
      F::kId,
      L"interface",
      {
          {F::kCreateRig, L"CreateRig", FPType::Void},
          {F::kResetRig, L"ResetRig", FPType::Void},
          {F::kGetPointPos, L"GetPointPos", FPType::Point3, {name, side, pointIndex, subIndex}},
          {F::kSetPointPos, L"SetPointPos", FPType::Void, {name, {L"pos", FPType::Point3}, side, pointIndex, subIndex}},
          {F::kGetPointParent, L"GetPointParent", FPType::String, {name, side, pointIndex, subIndex}},
          {F::kLoad, L"Load", FPType::Bool, {file}},
          {F::kLoadDlg, L"LoadDlg", FPType::Bool},
          {F::kSave, L"Save", FPType::Bool, {file}},
          {F::kSaveDlg, L"SaveDlg", FPType::Bool},
          {F::kGetNumExtras, L"GetNumExtras", FPType::Int},
          {F::kAddExtra,
           L"AddExtra",
           FPType::Bool,
           {{L"name", FPType::String, FPValue(WStr())},
            {L"parent", FPType::String, FPValue(WStr())},
            {L"side", FPType::Enum, FPValue(static_cast<int>(kSideNone)), kSides},
            {L"num_controls", FPType::Int, FPValue(1)},
            {L"num_bones", FPType::Int, FPValue(2)},
            {L"use_bones", FPType::Bool, FPValue(false)}}},
          {F::kRemoveExtra, L"RemoveExtra", FPType::Bool, {index}},
          extra(F::kGetExtraName, L"GetExtraName", FPType::String),
          setExtra(F::kSetExtraName, L"SetExtraName", name),
          extra(F::kGetExtraParent, L"GetExtraParent", FPType::String),
          setExtra(F::kSetExtraParent, L"SetExtraParent", {L"parent", FPType::String}),
          extra(F::kGetExtraSide, L"GetExtraSide", FPType::Enum, kSides),
          setExtra(F::kSetExtraSide, L"SetExtraSide", {L"side", FPType::Enum, std::nullopt, kSides}),
          extra(F::kGetExtraNumControls, L"GetExtraNumControls", FPType::Int),
          setExtra(F::kSetExtraNumControls, L"SetExtraNumControls", count),
          extra(F::kGetExtraNumBones, L"GetExtraNumBones", FPType::Int),
          setExtra(F::kSetExtraNumBones, L"SetExtraNumBones", count),
      },
      {{F::kGetType, F::kSetType, L"type", FPType::Enum, kTypes},
       {F::kGetBuildNotes, -1, L"build_notes", FPType::StringTab},
       {F::kGetBuildError, -1, L"build_error", FPType::String},
       {F::kGetUnknownPoints, -1, L"unknown_points", FPType::StringTab},
       {F::kGetPointNames, -1, L"point_names", FPType::StringTab},
       {F::kGetFileError, -1, L"file_error", FPType::String},
       {F::kGetPanelParts, -1, L"panel_parts", FPType::StringTab}},
      {TypeEnumeration(), kSideEnumeration}};
}

}  // namespace

const FPInterfaceDesc& IRigSystem::GetDesc() const {
  static const FPInterfaceDesc desc = MakeDesc();
  return desc;
}

namespace {
FPValue TextTab(const std::vector<WStr>& lines) { return FPValue::Tab(lines.begin(), lines.end()); }
}  // namespace

FPStatus IRigSystem::Invoke(int id, TimeValue, FPValue& result, std::span<const FPValue> args) {
  const auto text = [&](size_t i) { return FPArg(args, i).ToWStr(); };
  const auto number = [&](size_t i, int fallback = -1) { return FPArg(args, i).ToInt(fallback); };
  result = {};
  switch (id) {
    case kCreateRig:
      CreateRig();
      break;
    case kResetRig:
      ResetRig();
      break;
    case kGetType:
      result = GetType();
      break;
    case kGetBuildNotes:
      result = TextTab(BuildNotes());
      break;
    case kGetBuildError:
      result = BuildError();
      break;
    case kGetUnknownPoints:
      result = TextTab(UnknownPoints());
      break;
    case kGetPointNames:
      result = TextTab(PointNames());
      break;
    case kGetFileError:
      result = FileError();
      break;
    case kGetPanelParts:
      result = TextTab(PanelParts());
      break;
    case kSetType:
      SetType(number(0));
      break;
    case kGetPointPos:
      result = GetPointPos(text(0), number(1), number(2), number(3));
      break;
    case kSetPointPos:
      SetPointPos(text(0), FPArg(args, 1).ToPoint3(), number(2), number(3), number(4));
      break;
    case kGetPointParent:
      result = GetPointParent(text(0), number(1), number(2), number(3));
      break;
    case kLoad:
      result = Load(text(0));
      break;
    case kLoadDlg:
      result = LoadDlg();
      break;
    case kSave:
      result = Save(text(0));
      break;
    case kSaveDlg:
      result = SaveDlg();
      break;
    case kGetNumExtras:
      result = GetNumExtras();
      break;
    case kAddExtra:
      result = AddExtra(text(0), text(1), number(2), number(3, 1), number(4, 2), FPArg(args, 5).ToBool());
      break;
    case kRemoveExtra:
      result = RemoveExtra(number(0));
      break;
    case kGetExtraName:
      result = GetExtraName(number(0));
      break;
    case kSetExtraName:
      SetExtraName(number(0), text(1));
      break;
    case kGetExtraParent:
      result = GetExtraParent(number(0));
      break;
    case kSetExtraParent:
      SetExtraParent(number(0), text(1));
      break;
    case kGetExtraSide:
      result = GetExtraSide(number(0));
      break;
    case kSetExtraSide:
      SetExtraSide(number(0), number(1));
      break;
    case kGetExtraNumControls:
      result = GetExtraNumControls(number(0));
      break;
    case kSetExtraNumControls:
      SetExtraNumControls(number(0), number(1, 1));
      break;
    case kGetExtraNumBones:
      result = GetExtraNumBones(number(0));
      break;
    case kSetExtraNumBones:
      SetExtraNumBones(number(0), number(1, 2));
      break;
    default:
      return FPStatus::NoSuchFunction;
  }
  return FPStatus::OK;
}

}  // namespace tavrilon
