// SPDX-License-Identifier: MIT
#include "plugin/connections/connect.h"

#include "host/core/hold.h"
#include "plugin/connections/float_connection.h"

namespace tavrilon {

using namespace corvanta;
using namespace float_connection;

Control* NewFloatConnection(ParamBlock2& source, ParamID sourceParam, const ConnectionSpec& spec) {
  auto* connection = new FloatConnection;
  // A fresh object has no history that undo could bring back.
  const HoldSuspend quiet;
  if (!connection->SetParamTarget(source, sourceParam, spec.sourceTab)) {
    connection->MaybeDelete();
    return nullptr;
  }
  ParamBlock2& block = *connection->GetParamBlock();
  block.SetValue(kTransform, 0, static_cast<int>(spec.transform));
  block.SetValue(kTwoWay, 0, spec.twoWay);
  block.SetValue(kClamp, 0, spec.clamp);
  SuspendAnimate();
  const struct {
    ParamID id;
    float value;
  } kFloats[] = {{kOffset, spec.offset},     {kWeight, spec.weight},       {kInputMin, spec.inputMin},
                 {kInputMax, spec.inputMax}, {kOutputMin, spec.outputMin}, {kOutputMax, spec.outputMax}};
  for (const auto& row : kFloats) block.SetValue(row.id, 0, row.value);
  ResumeAnimate();
  return connection;
}

bool ConnectFloat(ParamBlock2& consumer, ParamID param, ParamBlock2& source, ParamID sourceParam,
                  const ConnectionSpec& spec, int tab) {
  const ParamRow* row = RowOf({&consumer, ParamTrackNumber(param, tab)});
  if (!row || !row->Is(kAnimatable)) return false;
  const Ref<Control> made(NewFloatConnection(source, sourceParam, spec));
  const HoldScope hold;
  return made && consumer.SetController(param, made.Get(), tab);
}

bool ConnectTrack(Animatable& owner, int subAnim, ParamBlock2& source, ParamID sourceParam,
                  const ConnectionSpec& spec) {
  if (!owner.CanAssignController(subAnim)) return false;
  const Ref<Control> made(NewFloatConnection(source, sourceParam, spec));
  const HoldScope hold;
  return made && owner.AssignController(made.Get(), subAnim);
}

}  // namespace tavrilon
