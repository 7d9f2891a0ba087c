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

/// Watches one target. A target that lives only in undo, itself or with its owners, reads as null; undo of the deletion
/// brings the link back.
class RefTargMonitor {
 public:
  explicit RefTargMonitor(MonitorClient* client = nullptr) : client_(client) {}
  ~RefTargMonitor() { SetTarget(nullptr); }
  RefTargMonitor(const RefTargMonitor&) = delete;
  RefTargMonitor& operator=(const RefTargMonitor&) = delete;

  void SetTarget(ReferenceTarget* target);
  ReferenceTarget* Target() const {
    if (!target_ || target_->TestFlag(A_DORMANT)) return nullptr;
    if (seenStamp_ != ReferenceTarget::LinkStamp()) {
      live_ = target_->IsLive();
      seenStamp_ = ReferenceTarget::LinkStamp();
    }
    return live_ ? target_ : nullptr;
  }
  /// Also a target that lives only in undo.
  ReferenceTarget* RawTarget() const { return target_; }
  int tag = 0;

 private:
  friend class ReferenceTarget;
  MonitorClient* client_;
  ReferenceTarget* target_ = nullptr;
  uint32_t heard_ = 0;
  mutable bool live_ = false;
  /// When `live_` was found out; 0 never.
  mutable uint64_t seenStamp_ = 0;
};

}  // namespace corvanta
