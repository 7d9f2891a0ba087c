// SPDX-License-Identifier: MIT
#include "host/scene/core_interface.h"

#include <algorithm>

#include "host/core/hold.h"

namespace corvanta {

Interface* GetCOREInterface() {
  static auto* interface = new Interface;
  return interface;
}

void Interface::SetTime(TimeValue t, bool redraw) {
  GetScene().time.time = t;
  const std::vector<TimeChangeCallback*> callbacks = timeCallbacks_;
  for (TimeChangeCallback* callback : callbacks)
    if (std::find(timeCallbacks_.begin(), timeCallbacks_.end(), callback) != timeCallbacks_.end())
      callback->TimeChanged(t);
  if (redraw) RedrawViews(t);
}

void Interface::SetFrameRate(int framesPerSecond) {
  GetScene().time.frameRate = std::clamp(framesPerSecond, 1, kTicksPerSecond);
  BroadcastNotification(NOTIFY_TIME_CONFIG);
}

void Interface::SetAnimRange(const Interval& range) {
  if (range.IsEmpty()) return;
  GetScene().time.range = range;
  BroadcastNotification(NOTIFY_TIME_CONFIG);
}

void Interface::RedrawViews(TimeValue t, uint32_t flags) {
  if (redrawHook_ && redrawOff_ <= 0) redrawHook_(t, flags);
}

INode* Interface::GetSelNode(int i) const {
  return i >= 0 && i < GetSelNodeCount() ? GetScene().Selection()[static_cast<size_t>(i)] : nullptr;
}

void Interface::SelectNodeTab(const Tab<INode*>& nodes, bool on, bool redraw) {
  GetScene().SelectNodeTab(nodes.Items(), on);
  if (redraw) RedrawViews(GetTime());
}

void Interface::RegisterTimeChangeCallback(TimeChangeCallback* callback) {
  if (std::find(timeCallbacks_.begin(), timeCallbacks_.end(), callback) == timeCallbacks_.end())
    timeCallbacks_.push_back(callback);
}

void Interface::UnRegisterTimeChangeCallback(TimeChangeCallback* callback) { std::erase(timeCallbacks_, callback); }

void Interface::SetSubObjectLevel(int level) {
  if (curEdit_) curEdit_->ActivateSubobjSel(level);
}

bool Interface::UndoStep() {
  if (!theHold.Undo()) return false;
  BroadcastNotification(NOTIFY_UNDO_REDO);
  RedrawViews(GetTime());
  return true;
}

bool Interface::RedoStep() {
  if (!theHold.Redo()) return false;
  BroadcastNotification(NOTIFY_UNDO_REDO);
  RedrawViews(GetTime());
  return true;
}

}  // namespace corvanta
