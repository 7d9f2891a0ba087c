// SPDX-License-Identifier: MIT
// The core interface "Tavrilon": the process-wide state of the plug-in for scripts and for its own panels.
#pragma once

#include "host/core/monitor.h"
#include "host/core/published.h"
#include "host/scene/node.h"

namespace tavrilon {

/// A node and the base object under its modifiers. Both read as null once they are gone from the scene.
class ActiveNode {
 public:
  void Set(corvanta::INode* node);
  corvanta::INode* Node() const;
  corvanta::ReferenceTarget* Object() const { return object_.Target(); }

 private:
  corvanta::RefTargMonitor node_, object_;
};

class TavrilonInterface final : public corvanta::FPInterface {
 public:
  enum Function : int {
    kGetActiveUIPanel = 0,
    kSetActiveUIPanel = 1,
    kGetActivePoseKit = 2,
    kSetActivePoseKit = 3,
    kGetUIPanelTransforming = 4,
    kSetUIPanelTransforming = 5,
    kGetCurrentUIAction = 6,
    kSetCurrentUIAction = 7,
    kGetUIPanelHolder = 8,
    kGetPoseKitHolder = 9,
    kAbout = 10,
    kOpenCurveEditor = 11,
    kGetReplaceNativeCurveEditor = 12,
    kSetReplaceNativeCurveEditor = 13,
  };
  static constexpr corvanta::Interface_ID kId{0x4BC7724E, 0x227423FA};

  const corvanta::FPInterfaceDesc& GetDesc() const override;
  /// `About`, `OpenCurveEditor` and turning on `replaceNativeCurveEditor` give FPStatus::Failed, with a text in
  /// `result` that says what is missing: their windows are not built yet.
  corvanta::FPStatus Invoke(int id, corvanta::TimeValue t, corvanta::FPValue& result,
                            std::span<const corvanta::FPValue> args) override;

  /// Tells the panel's dependents with message 258, so that its views refresh. Null clears and tells nothing.
  void SetActiveUIPanel(corvanta::INode* node);
  const ActiveNode& ActiveUIPanel() const { return uiPanel_; }
  void SetActivePoseKit(corvanta::INode* node) { poseKit_.Set(node); }
  const ActiveNode& ActivePoseKit() const { return poseKit_; }
  void SetUIPanelTransforming(bool on) { uiPanelTransforming_ = on; }
  bool IsUIPanelTransforming() const { return uiPanelTransforming_; }
  /// For the action runner; scripts cannot write it.
  void SetCurrentUIAction(corvanta::ReferenceTarget* action) { uiAction_.SetTarget(action); }
  corvanta::ReferenceTarget* CurrentUIAction() const { return uiAction_.Target(); }
  /// As after the start of the program.
  void Clear();

 private:
  ActiveNode uiPanel_, poseKit_;
  corvanta::RefTargMonitor uiAction_;
  bool uiPanelTransforming_ = false;
};

/// The one instance. It is found by scripts from library load on, see AttachLibrary.
TavrilonInterface& GetTavrilonInterface();

}  // namespace tavrilon
