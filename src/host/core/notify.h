// SPDX-License-Identifier: MIT
// Scene notifications: a number space of their own, apart from reference messages.
#pragma once

namespace corvanta {

enum NotifyCode : int {
  NOTIFY_TIME_CONFIG = 68,
  NOTIFY_HOST_CLOSING = 73,
  NOTIFY_HOST_STARTED = 80,
  NOTIFY_KEYS_EDITED = 241,
  NOTIFY_SUBANIM_STRUCTURE = 245,
  NOTIFY_SELECTION_CHANGED = 1001,
  NOTIFY_NODE_CREATED = 1002,
  NOTIFY_NODE_DELETING = 1003,
  NOTIFY_NODE_RENAMED = 1004,
  NOTIFY_SCENE_RESET = 1005,
  NOTIFY_SCENE_LOADED = 1006,
  NOTIFY_UNDO_REDO = 1007,
  NOTIFY_LAYER_CHANGED = 1008,
  NOTIFY_ANIMATE_MODE = 1009,
};

struct NotifyInfo {
  int code;
  void* callParam;
};
using NotifyCallback = void (*)(void* parameter, NotifyInfo* info);

/// A callback is known by all three. Registering it twice does nothing.
void RegisterNotification(NotifyCallback callback, void* parameter, int code);
/// Safe from inside a callback.
void UnRegisterNotification(NotifyCallback callback, void* parameter, int code);
void BroadcastNotification(int code, void* callParam = nullptr);

}  // namespace corvanta
