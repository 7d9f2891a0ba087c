// SPDX-License-Identifier: MIT
#include "host/core/notify.h"

#include <algorithm>
#include <vector>

namespace corvanta {

namespace {

struct Registration {
  NotifyCallback callback;
  void* parameter;
  int code;
  bool operator==(const Registration&) const = default;
};
std::vector<Registration> registrations;

}  // namespace

void RegisterNotification(NotifyCallback callback, void* parameter, int code) {
  const Registration wanted{callback, parameter, code};
  if (std::find(registrations.begin(), registrations.end(), wanted) == registrations.end())
    registrations.push_back(wanted);
}

void UnRegisterNotification(NotifyCallback callback, void* parameter, int code) {
  std::erase(registrations, Registration{callback, parameter, code});
}

// Walks a copy, so that callbacks may register and unregister; one that is gone meanwhile is not called.
void BroadcastNotification(int code, void* callParam) {
  const std::vector<Registration> snapshot = registrations;
  for (const Registration& r : snapshot) {
    if (r.code != code) continue;
    if (std::find(registrations.begin(), registrations.end(), r) == registrations.end()) continue;
    NotifyInfo info{code, callParam};
    r.callback(r.parameter, &info);
  }
}

}  // namespace corvanta
