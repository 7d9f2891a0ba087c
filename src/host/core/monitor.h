// SPDX-License-Identifier: MIT
// Weak references: an object sees a target's messages and its deletion without being its dependent.
#pragma once

#include "host/core/reference.h"

namespace corvanta {

/// What a monitor tells its owner.
class MonitorClient {
 public:
  virtual ~MonitorClient() = default;
  virtual void MonitoredNotice(RefTargMonitor& monitor, const RefNotice& notice) = 0;
};

/// Watches one target. Undo of the target's deletion brings the link back; a dormant target reads as null.
class RefTargMonitor {
 public:
  explicit RefTargMonitor(MonitorClient* client = nullptr) : client_(client) {}
  ~RefTargMonitor() { SetTarget(nullptr); }
  RefTargMonitor(const RefTargMonitor&) = delete;
  RefTargMonitor& operator=(const RefTargMonitor&) = delete;

  void SetTarget(ReferenceTarget* target);
  ReferenceTarget* Target() const { return target_ && !target_->TestFlag(A_DORMANT) ? target_ : nullptr; }
  /// Also a target that lives only in undo.
  ReferenceTarget* RawTarget() const { return target_; }
  int tag = 0;

 private:
  friend class ReferenceTarget;
  MonitorClient* client_;
  ReferenceTarget* target_ = nullptr;
  uint32_t heard_ = 0;
};

}  // namespace corvanta
