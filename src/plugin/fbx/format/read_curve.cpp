// SPDX-License-Identifier: MIT
// Keys of one curve: times, values, and attributes in runs.
#include <algorithm>
#include <bit>

#include "plugin/fbx/format/key_flags.h"
#include "plugin/fbx/format/read_objects.h"

namespace tavrilon::fbx {

namespace {

// Flags of a key, beside those that are written: see key_flags.h.
constexpr uint32_t kConstant = 0x2, kCubic = 0x8;
constexpr uint32_t kConstantNext = 0x100;  // of constant keys
constexpr uint32_t kAuto = 0x100, kTcb = 0x200;
constexpr uint32_t kClamp = 0x1000, kTimeIndependent = 0x2000, kClampProgressive = 0x4000;
// Right slope, next left slope, packed weights, velocities.
constexpr size_t kAttributes = 4;
constexpr int kFirstBitPatternVersion = 7200;

struct RawCurve {
  std::vector<int64_t> times;
  std::vector<float> values;
  std::vector<int> flags;
  std::vector<float> attributes;
  std::vector<int> runs;
};

/// ASCII files write the bit patterns of the floats as integers.
bool ReadAttributes(ReadContext& context, RecordView record, std::vector<float>& attributes) {
  const RecordView leaf = record.Find("KeyAttrDataFloat");
  const bool isIntegral = leaf.NumProperties() > 0 && (leaf.Property(0).Type() == PropertyType::Int32Array ||
                                                       leaf.Property(0).Type() == PropertyType::Int64Array);
  const bool isPattern =
      isIntegral && context.document.IsAscii() && context.document.Version() >= kFirstBitPatternVersion;
  if (!isPattern) return context.Array(record, "KeyAttrDataFloat", attributes);
  std::vector<int64_t> patterns;
  if (!context.Array(record, "KeyAttrDataFloat", patterns)) return false;
  for (int64_t pattern : patterns) attributes.push_back(std::bit_cast<float>(static_cast<uint32_t>(pattern)));
  return true;
}

bool ReadRaw(ReadContext& context, RecordView record, RawCurve& raw) {
  return context.Array(record, "KeyTime", raw.times) && context.Array(record, "KeyValueFloat", raw.values) &&
         context.Array(record, "KeyAttrFlags", raw.flags) && ReadAttributes(context, record, raw.attributes) &&
         context.Array(record, "KeyAttrRefCount", raw.runs);
}

/// What is wrong with the counts; empty when they agree.
std::string CountError(const RawCurve& raw) {
  const auto text = [](size_t n) { return std::to_string(n); };
  if (raw.values.size() != raw.times.size()) {
    return text(raw.times.size()) + " key times but " + text(raw.values.size()) + " values";
  }
  if (raw.flags.empty() && raw.runs.empty()) return {};
  if (raw.flags.size() != raw.runs.size() || raw.attributes.size() != raw.flags.size() * kAttributes) {
    return text(raw.flags.size()) + " key flags, " + text(raw.attributes.size()) + " attributes and " +
           text(raw.runs.size()) + " runs do not agree";
  }
  int64_t sum = 0;
  for (int run : raw.runs) {
    if (run < 0) return "a run of keys has a negative length";
    sum += run;
  }
  if (sum == static_cast<int64_t>(raw.times.size())) return {};
  return "the runs count " + std::to_string(sum) + " keys, there are " + text(raw.times.size());
}

float FiniteFloat(float value) { return std::isfinite(value) ? value : 0; }

KeyShape ShapeOfRun(const RawCurve& raw, size_t run) {
  const auto flags = static_cast<uint32_t>(raw.flags[run]);
  const float* attributes = &raw.attributes[run * kAttributes];
  KeyShape shape;
  if (flags & kConstant) {
    shape.interpolation = flags & kConstantNext ? Interpolation::ConstantNext : Interpolation::Constant;
  } else if (flags & kCubic) {
    shape.interpolation = Interpolation::Cubic;
    shape.rightSlope = FiniteFloat(attributes[0]);
    shape.nextLeftSlope = FiniteFloat(attributes[1]);
    const auto weights = std::bit_cast<uint32_t>(attributes[2]);
    if (flags & kRightWeighted) shape.rightWeight = static_cast<float>(weights & 0xFFFF) / kWeightParts;
    if (flags & kNextLeftWeighted) shape.nextLeftWeight = static_cast<float>(weights >> 16) / kWeightParts;
  }
  return shape;
}

bool IsAuto(uint32_t flags) {
  return !(flags & kConstant) && (flags & kCubic) && (flags & (kAuto | kTcb)) && !(flags & kTangentUser);
}

/// Slopes of automatic tangents are not in the file: they follow from the neighbours. Flat at both ends of the curve;
/// between, the chord from neighbour to neighbour when the key's own time does not count, else the mean of both sides,
/// the nearer neighbour's side counting more. Clamped tangents are flat beside an equal value, progressively clamped
/// ones never overshoot a neighbour.
float AutoSlope(const RawCurve& raw, const std::vector<KeyShape>& shapes, size_t key, uint32_t flags) {
  if (key == 0 || key + 1 >= raw.times.size()) return 0;
  const auto seconds = [&raw](size_t from, size_t to) {
    return (static_cast<double>(raw.times[to]) - static_cast<double>(raw.times[from])) /
           static_cast<double>(FbxTime::kTicksPerSecond);
  };
  const double before = seconds(key - 1, key), after = seconds(key, key + 1);
  if (!(before > 0) || !(after > 0)) return 0;
  const double rise = static_cast<double>(raw.values[key]) - raw.values[key - 1];
  const double nextRise = static_cast<double>(raw.values[key + 1]) - raw.values[key];
  // Values closer than this count as equal for the flat clamp.
  constexpr double kSame = 1e-6;
  if ((flags & kClamp) && (std::abs(rise) < kSame || std::abs(nextRise) < kSame)) return 0;
  const double share = before / (before + after);
  double slope = flags & kTimeIndependent ? (rise + nextRise) / (before + after)
                                          : rise / before * (1 - share) + nextRise / after * share;
  if (flags & kClampProgressive) {
    const double left = before * shapes[key - 1].nextLeftWeight, right = after * shapes[key].rightWeight;
    const double sign = slope < 0 ? -1 : 1;
    const double mostLeft = left > 0 ? std::max(sign * rise / left, 0.0) : 0;
    const double mostRight = right > 0 ? std::max(sign * nextRise / right, 0.0) : 0;
    slope = sign * std::min({std::abs(slope), mostLeft, mostRight});
  }
  return FiniteFloat(static_cast<float>(slope));
}

/// One shape a key, automatic slopes worked out.
void ExpandShapes(const RawCurve& raw, FbxAnimCurve& curve) {
  std::vector<uint32_t> flags;
  flags.reserve(raw.times.size());
  curve.shapes.reserve(raw.times.size());
  for (size_t run = 0; run < raw.runs.size(); ++run) {
    const auto length = static_cast<size_t>(raw.runs[run]);
    curve.shapes.insert(curve.shapes.end(), length, ShapeOfRun(raw, run));
    flags.insert(flags.end(), length, static_cast<uint32_t>(raw.flags[run]));
  }
  for (size_t key = 0; key < flags.size(); ++key) {
    if (!IsAuto(flags[key])) continue;
    const float slope = AutoSlope(raw, curve.shapes, key, flags[key]);
    curve.shapes[key].rightSlope = slope;
    if (key > 0) curve.shapes[key - 1].nextLeftSlope = slope;
  }
}

void MakeShapes(const RawCurve& raw, FbxAnimCurve& curve) {
  if (raw.times.empty()) return;
  bool expand = raw.runs.size() > 1;
  for (int flags : raw.flags) expand = expand || IsAuto(static_cast<uint32_t>(flags));
  if (expand) {
    ExpandShapes(raw, curve);
  } else {
    curve.shapes.push_back(raw.runs.empty() ? KeyShape() : ShapeOfRun(raw, 0));
  }
}

/// Takes out keys that do not come after those before them; how many.
size_t DropFallingKeys(FbxAnimCurve& curve) {
  const bool shapeEach = curve.shapes.size() > 1;
  size_t kept = 0;
  for (size_t i = 0; i < curve.times.size(); ++i) {
    if (kept > 0 && curve.times[i] <= curve.times[kept - 1]) continue;
    curve.times[kept] = curve.times[i];
    curve.values[kept] = curve.values[i];
    if (shapeEach) curve.shapes[kept] = curve.shapes[i];
    ++kept;
  }
  const size_t dropped = curve.times.size() - kept;
  curve.times.resize(kept);
  curve.values.resize(kept);
  if (shapeEach) curve.shapes.resize(kept);
  return dropped;
}

}  // namespace

bool ReadCurve(ReadContext& context, RecordView record, const std::string& where, FbxAnimCurve& curve) {
  RawCurve raw;
  if (!ReadRaw(context, record, raw)) return false;
  const std::string error = CountError(raw);
  if (!error.empty()) return context.Fail(record, where + ": " + error + "; export the animation again");
  bool sound = true;
  for (float& value : raw.values) {
    sound = sound && std::isfinite(value);
    value = FiniteFloat(value);
  }
  if (!sound) context.log.Note("Keys whose values are no numbers were set to 0", where);
  for (int flags : raw.flags) {
    if ((flags & kCubic) && (flags & kTcb)) context.log.Note("Tension, continuity and bias are read as smooth", where);
  }
  if (context.coarseTicks) {
    for (int64_t& time : raw.times) time = context.TimeOf(time).ticks;
  }
  MakeShapes(raw, curve);
  curve.times = std::move(raw.times);
  curve.values = std::move(raw.values);
  if (DropFallingKeys(curve) > 0) context.log.Note("Keys out of the order of time were left out", where);
  return true;
}

}  // namespace tavrilon::fbx
