// SPDX-License-Identifier: MIT
// Wiring in one call: the parameter of a consumer, or the track of a controller, follows the parameter of a source.
#pragma once

#include "host/core/param_block.h"
#include "plugin/connections/connection_params.h"

namespace tavrilon {

/// How a connection turns what it reads. Offset/weight: weight * x + offset. Range: input to output, see
/// FloatConnection.
struct ConnectionSpec {
  float_connection::Transform transform = float_connection::kDirect;
  /// Writes to the consumer go back to the source.
  bool twoWay = false;
  bool clamp = false;
  float offset = 0, weight = 1;
  float inputMin = 0, inputMax = 100, outputMin = 0, outputMax = 100;
  /// Entry of the source's parameter when it is a tab.
  int sourceTab = 0;
};

/// A `FloatConnection` to the source's parameter, bound to nothing yet: for a track of a controller. The source's
/// animation lives in the source. Null when there is no such parameter.
corvanta::Control* NewFloatConnection(corvanta::ParamBlock2& source, corvanta::ParamID sourceParam,
                                      const ConnectionSpec& spec = {});

/// The consumer's parameter gets such a connection as its controller. Undoable. False when either parameter is missing
/// or the consumer's cannot be animated.
bool ConnectFloat(corvanta::ParamBlock2& consumer, corvanta::ParamID param, corvanta::ParamBlock2& source,
                  corvanta::ParamID sourceParam, const ConnectionSpec& spec = {}, int tab = 0);

/// The sub-animatable of a controller gets such a connection. Undoable. False when the source has no such parameter or
/// the place takes no such controller.
bool ConnectTrack(corvanta::Animatable& owner, int subAnim, corvanta::ParamBlock2& source,
                  corvanta::ParamID sourceParam, const ConnectionSpec& spec = {});

}  // namespace tavrilon
