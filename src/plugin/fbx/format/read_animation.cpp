// SPDX-License-Identifier: MIT
// Stacks, layers and curve nodes.
#include <algorithm>

#include "plugin/fbx/format/read_objects.h"

namespace tavrilon::fbx {

namespace {

struct RawTimes {
  std::optional<int64_t> localStart, localStop, referenceStart, referenceStop;
};
const PropertyRow<RawTimes> kStackRows[] = {
    {"LocalStart", [](RawTimes& t, RecordView p) { t.localStart = p.Int(kFirstValue); }},
    {"LocalStop", [](RawTimes& t, RecordView p) { t.localStop = p.Int(kFirstValue); }},
    {"ReferenceStart", [](RawTimes& t, RecordView p) { t.referenceStart = p.Int(kFirstValue); }},
    {"ReferenceStop", [](RawTimes& t, RecordView p) { t.referenceStop = p.Int(kFirstValue); }},
};

const PropertyRow<LayerValues> kLayerRows[] = {
    {"Weight", [](LayerValues& v, RecordView p) { v.weight = NumberOf(p); }},
    {"Mute", [](LayerValues& v, RecordView p) { v.mute = BoolOf(p); }},
    {"Solo", [](LayerValues& v, RecordView p) { v.solo = BoolOf(p); }},
    {"BlendMode", [](LayerValues& v, RecordView p) { v.blend = static_cast<LayerBlend>(std::clamp(IntOf(p), 0, 2)); }},
    {"RotationAccumulationMode", [](LayerValues& v, RecordView p) { v.rotationAccumulation = IntOf(p); }},
    {"ScaleAccumulationMode", [](LayerValues& v, RecordView p) { v.scaleAccumulation = IntOf(p); }},
};

void Take(const ReadContext& context, const RawTimes& raw, StackTimes& times) {
  const auto take = [&context](const std::optional<int64_t>& ticks, FbxTime& time) {
    if (ticks) time = context.TimeOf(*ticks);
  };
  take(raw.localStart, times.localStart);
  take(raw.localStop, times.localStop);
  take(raw.referenceStart, times.referenceStart);
  take(raw.referenceStop, times.referenceStop);
}

}  // namespace

void ReadStackTimes(const ReadContext& context, RecordView owner, StackTimes& times) {
  RawTimes raw;
  ReadProperties(owner, kStackRows, raw);
  Take(context, raw, times);
}

void ReadTakeTimes(const ReadContext& context, RecordView take, StackTimes& times) {
  const RecordView local = take.Find("LocalTime"), reference = take.Find("ReferenceTime");
  if (local) {
    times.localStart = context.TimeOf(local.Int(0));
    times.localStop = context.TimeOf(local.Int(1));
  }
  if (reference) {
    times.referenceStart = context.TimeOf(reference.Int(0));
    times.referenceStop = context.TimeOf(reference.Int(1));
  }
}

void ReadLayerProperties(RecordView owner, LayerValues& values) { ReadProperties(owner, kLayerRows, values); }

size_t ChannelOf(std::string_view property) {
  if (property == "d|Y") return 1;
  return property == "d|Z" ? 2 : 0;
}

unsigned ReadCurveNode(RecordView owner, FbxAnimCurveNode& node) {
  unsigned given = 0;
  for (const RecordView row : owner.Find("Properties70").Children()) {
    const std::string_view name = row.Text(0);
    if (name.substr(0, 2) != "d|") continue;
    const size_t channel = ChannelOf(name);
    node.defaults[channel] = NumberOf(row);
    given |= 1U << channel;
  }
  return given;
}

}  // namespace tavrilon::fbx
