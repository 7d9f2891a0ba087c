// SPDX-License-Identifier: MIT
// Links in time: a node hangs on one target after another and stays where it is at every switch. The start times
// ascend.
#pragma once

#include <span>

#include "host/maths/interval.h"
#include "host/maths/matrix3.h"

namespace tavrilon {

/// The link that holds at `time`: the last one started, the first one before all; -1 without links.
int ActiveLink(std::span<const corvanta::TimeValue> starts, corvanta::TimeValue time);

/// While link `index` holds: from its start, for ever for the first, to the tick before the next one's start.
corvanta::Interval LinkSpan(std::span<const corvanta::TimeValue> starts, int index);

/// The world matrices of two targets when one link gives over to the next.
struct LinkSwitch {
  corvanta::Matrix3 from, to;
};

/// The matrix that link `index` puts in its target's place, from that target's world matrix `present`. `switchAt(i)`
/// gives the `LinkSwitch` at the start of link i, from the target of link i - 1 to its own; it is asked for 1 to
/// `index`, once each, and identity stands for the world. Result(i) = Offset(i) * target(i) with Offset(0) = identity
/// and Offset(i) = Result(i - 1) at the switch * Inverse(target(i) there), unrolled. Allocates nothing.
template <class SwitchAt>
corvanta::Matrix3 LinkMatrix(int index, const corvanta::Matrix3& present, SwitchAt&& switchAt) {
  corvanta::Matrix3 offset;
  for (int i = 1; i <= index; ++i) {
    const LinkSwitch at = switchAt(i);
    offset = offset * at.from * Inverse(at.to);
  }
  return index > 0 ? offset * present : present;
}

/// The local matrix under `to` of what has `local` under `from`: what a change of links leaves in place.
inline corvanta::Matrix3 Relinked(const corvanta::Matrix3& local, const corvanta::Matrix3& from,
                                  const corvanta::Matrix3& to) {
  return local * from * Inverse(to);
}

}  // namespace tavrilon
