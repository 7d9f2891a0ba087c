// SPDX-License-Identifier: MIT
// Reference messages: what travels up from a changed object to its dependents.
#pragma once

#include <cstdint>

namespace corvanta {

using RefMessage = uint32_t;
using PartID = uint32_t;

enum : RefMessage {
  REFMSG_TARGET_DELETED = 32,
  REFMSG_CHANGE = 80,
  REFMSG_DISPLAY_PROPERTY = 246,
  REFMSG_CONTROLREF_CHANGE = 250,
  REFMSG_SUBANIM_STRUCTURE = 258,
  REFMSG_BLOCK_QUESTION = 264,
  REFMSG_NODE_SELECTION = 274,
  REFMSG_MONITORED_GONE = 0x18F91903,
  REFMSG_NODE_RENAMED = 0x3071552C,
  REFMSG_MOUSE_CYCLE_STARTED = 0x48530001,
  REFMSG_MOUSE_CYCLE_ENDED = 0x48530002,
};

enum : PartID {
  PART_TOPO = 1,
  PART_GEOM = 2,
  PART_TM = 0x1000,
  PART_ALL = 0x800037FF,
};

/// Part bits of REFMSG_DISPLAY_PROPERTY.
enum : PartID { kDisplayHidden = 1, kDisplayFrozen = 2, kDisplayWireColour = 4, kDisplayOther = 8 };

/// Answer of a dependent. REF_STOP keeps the message from that dependent's own dependents; the others still hear it.
enum class RefResult { Succeed, Stop, Fail };
inline constexpr RefResult REF_SUCCEED = RefResult::Succeed;
inline constexpr RefResult REF_STOP = RefResult::Stop;
inline constexpr RefResult REF_FAIL = RefResult::Fail;

}  // namespace corvanta
