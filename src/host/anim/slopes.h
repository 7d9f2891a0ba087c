// SPDX-License-Identifier: MIT
// Fills the segments of a curve from its keys: Bezier tangent types, and Kochanek and Bartels' tension, continuity
// and bias.
#pragma once

#include <vector>

#include "host/anim/key_curve.h"

namespace corvanta {

/// Writes the slopes of all but user tangents into the keys, then the segments. Keys are sorted.
template <class Key>
void BuildBezier(std::vector<Key>& keys, std::vector<typename KeyKind<Key>::Segment>& segments);

/// Source: Kochanek and Bartels 1984, with tangents scaled for uneven key times; the ends are natural (no curvature
/// at a tension of 0).
template <class Key>
void BuildTcb(const std::vector<Key>& keys, std::vector<typename KeyKind<Key>::Segment>& segments);
void BuildTcb(const std::vector<ITCBRotKey>& keys, std::vector<RotationSegment>& segments);

}  // namespace corvanta
