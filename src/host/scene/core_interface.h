// SPDX-License-Identifier: MIT
// The core interface: what plug-ins ask of the program as a whole.
#pragma once

#include "host/core/notify.h"
#include "host/scene/scene.h"

namespace corvanta {

enum class RefCoordSys : int { World = 0, Parent = 1, View = 2, Screen = 3, Local = 4, Pick = 5, Gimbal = 6 };
enum class PivotMode : int { None = 0, PivotOnly = 1, ObjectOnly = 2 };
enum RedrawFlags : uint32_t { REDRAW_NORMAL = 0, REDRAW_BEGIN = 1, REDRAW_INTERACTIVE = 8, REDRAW_END = 16 };

class TimeChangeCallback {
 public:
  virtual ~TimeChangeCallback() = default;
  virtual void TimeChanged(TimeValue t) = 0;
};

/// What the program is doing; read by controllers that must not take a passing state for the user's.
struct ProgramState {
  bool loading = false;
  bool saving = false;
  bool rendering = false;
  bool specialEvaluation = false;
  bool quiet = true;
};

class Interface {
 public:
  TimeValue GetTime() const { return GetScene().time.time; }
  /// Calls the time callbacks, then redraws.
  void SetTime(TimeValue t, bool redraw = true);
  int GetFrameRate() const { return GetScene().time.frameRate; }
  /// 1 to 6000, a divisor of the ticks in a second or rounded to the nearest tick count. Sends NOTIFY_TIME_CONFIG.
  void SetFrameRate(int framesPerSecond);
  int GetTicksPerFrame() const { return kTicksPerSecond / GetScene().time.frameRate; }
  Interval GetAnimRange() const { return GetScene().time.range; }
  void SetAnimRange(const Interval& range);

  void RedrawViews(TimeValue t, uint32_t flags = REDRAW_NORMAL);
  void DisableSceneRedraw() { ++redrawOff_; }
  void EnableSceneRedraw() { --redrawOff_; }
  bool IsSceneRedrawDisabled() const { return redrawOff_ > 0; }
  /// The window's redraw; none without a display.
  void SetRedrawHook(std::function<void(TimeValue, uint32_t)> hook) { redrawHook_ = std::move(hook); }

  INode* GetRootNode() const { return GetScene().GetRootNode(); }
  TrackViewNode* GetTrackViewRootNode() const { return GetScene().GetTrackViewRootNode(); }
  int GetSelNodeCount() const { return static_cast<int>(GetScene().Selection().size()); }
  INode* GetSelNode(int i) const;
  void SelectNode(INode* node, bool clear = true) { GetScene().SelectNode(node, clear); }
  void SelectNodeTab(const Tab<INode*>& nodes, bool on, bool redraw);
  void ClearNodeSelection() { GetScene().ClearNodeSelection(); }
  INode* CreateObjectNode(Object* object) { return GetScene().CreateObjectNode(object); }
  void DeleteNode(INode* node) { GetScene().DeleteNode(node); }
  void DeleteNodes(const Tab<INode*>& nodes) { GetScene().DeleteNodes(nodes); }
  INode* GetINodeByName(const WStr& name) const { return GetScene().GetINodeByName(name); }

  RefCoordSys GetRefCoordSys() const { return refCoordSys_; }
  void SetRefCoordSys(RefCoordSys system) { refCoordSys_ = system; }
  PivotMode GetPivotMode() const { return pivotMode_; }
  void SetPivotMode(PivotMode mode) { pivotMode_ = mode; }
  bool GetLeaveChildrenUnaffected() const { return leaveChildren_; }
  void SetLeaveChildrenUnaffected(bool on) { leaveChildren_ = on; }

  void RegisterTimeChangeCallback(TimeChangeCallback* callback);
  void UnRegisterTimeChangeCallback(TimeChangeCallback* callback);

  /// Objects whose parameters are under edit, and their sub-object level.
  void SetCurEditObject(BaseObject* object) { curEdit_ = object; }
  BaseObject* GetCurEditObject() const { return curEdit_; }
  void SetSubObjectLevel(int level);
  int GetSubObjectLevel() const { return curEdit_ ? curEdit_->SubObjLevel() : 0; }

  void PushPrompt(const WStr& text) { prompts_.push_back(text); }
  void PopPrompt() {
    if (!prompts_.empty()) prompts_.pop_back();
  }
  WStr Prompt() const { return prompts_.empty() ? WStr() : prompts_.back(); }

  /// Undo and redo with their notifications and a redraw.
  bool UndoStep();
  bool RedoStep();

  ProgramState state;

 private:
  int redrawOff_ = 0;
  std::function<void(TimeValue, uint32_t)> redrawHook_;
  RefCoordSys refCoordSys_ = RefCoordSys::View;
  PivotMode pivotMode_ = PivotMode::None;
  bool leaveChildren_ = false;
  BaseObject* curEdit_ = nullptr;
  std::vector<TimeChangeCallback*> timeCallbacks_;
  std::vector<WStr> prompts_;
};

Interface* GetCOREInterface();

}  // namespace corvanta
