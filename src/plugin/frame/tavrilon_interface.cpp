// SPDX-License-Identifier: MIT
#include "plugin/frame/tavrilon_interface.h"

#include "plugin/frame/holder_control.h"

namespace tavrilon {

using namespace corvanta;
using I = TavrilonInterface;

void ActiveNode::Set(INode* node) {
  node_.SetTarget(node);
  object_.SetTarget(node ? node->GetBaseObject() : nullptr);
}

INode* ActiveNode::Node() const {
  ReferenceTarget* node = node_.Target();
  return node && node->AsNode()->IsInScene() ? node->AsNode() : nullptr;
}

const FPInterfaceDesc& TavrilonInterface::GetDesc() const {
  static const FPInterfaceDesc desc(
      kId, L"Tavrilon",
      {
          {I::kGetUIPanelHolder, L"GetUIPanelHolder", FPType::RefTarg},
          {I::kGetPoseKitHolder, L"GetPoseKitHolder", FPType::RefTarg},
          {I::kAbout, L"About", FPType::Void},
          {I::kOpenCurveEditor, L"OpenCurveEditor", FPType::Void},
      },
      {
          {I::kGetActiveUIPanel, I::kSetActiveUIPanel, L"activeUIPanel", FPType::Node},
          {I::kGetActivePoseKit, I::kSetActivePoseKit, L"activePoseKit", FPType::Node},
          {I::kGetUIPanelTransforming, I::kSetUIPanelTransforming, L"uiPanelTransforming", FPType::Bool},
          {I::kGetCurrentUIAction, I::kSetCurrentUIAction, L"currentUIAction", FPType::RefTarg},
          {I::kGetReplaceNativeCurveEditor, I::kSetReplaceNativeCurveEditor, L"replaceNativeCurveEditor", FPType::Bool},
      },
      // Types of the points of a curve chain.
      {{0, {{L"BezierCorner", 0}, {L"Bezier", 1}, {L"Corner", 2}, {L"Smooth", 3}, {L"FixedSmooth", 4}}}});
  return desc;
}

namespace {

FPStatus NotBuilt(FPValue& result, const wchar_t* what) {
  result = WStr(what) + L" is not built yet";
  return FPStatus::Failed;
}

}  // namespace

FPStatus TavrilonInterface::Invoke(int id, TimeValue, FPValue& result, std::span<const FPValue> args) {
  switch (id) {
    case kGetActiveUIPanel:
      result = TargetValue(uiPanel_.Node());
      break;
    case kSetActiveUIPanel:
      SetActiveUIPanel(FPArg(args, 0).ToNode());
      break;
    case kGetActivePoseKit:
      result = TargetValue(poseKit_.Node());
      break;
    case kSetActivePoseKit:
      SetActivePoseKit(FPArg(args, 0).ToNode());
      break;
    case kGetUIPanelTransforming:
      result = uiPanelTransforming_;
      break;
    case kSetUIPanelTransforming:
      uiPanelTransforming_ = FPArg(args, 0).ToBool();
      break;
    case kGetCurrentUIAction:
      result = TargetValue(CurrentUIAction());
      break;
    case kSetCurrentUIAction:
      FPArg(args, 0);  // raises when there is none; the action itself is the runner's to set
      break;
    case kGetUIPanelHolder:
      result = TargetValue(tavrilon::GetUIPanelHolder());
      break;
    case kGetPoseKitHolder:
      result = TargetValue(tavrilon::GetPoseKitHolder());
      break;
    case kAbout:
      return NotBuilt(result, L"The about box");
    case kOpenCurveEditor:
      return NotBuilt(result, L"The curve editor");
    case kGetReplaceNativeCurveEditor:
      result = false;
      break;
    case kSetReplaceNativeCurveEditor:
      if (FPArg(args, 0).ToBool()) return NotBuilt(result, L"The curve editor");
      break;
    default:
      return FPStatus::NoSuchFunction;
  }
  return FPStatus::OK;
}

void TavrilonInterface::SetActiveUIPanel(INode* node) {
  uiPanel_.Set(node);
  if (ReferenceTarget* panel = uiPanel_.Object()) panel->NotifyDependents(FOREVER, PART_ALL, REFMSG_SUBANIM_STRUCTURE);
}

void TavrilonInterface::Clear() {
  uiPanel_.Set(nullptr);
  poseKit_.Set(nullptr);
  uiAction_.SetTarget(nullptr);
  uiPanelTransforming_ = false;
}

TavrilonInterface& GetTavrilonInterface() {
  static TavrilonInterface instance;
  return instance;
}

}  // namespace tavrilon
