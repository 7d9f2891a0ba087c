// SPDX-License-Identifier: MIT
// What a wire costs: one read through a connection beside a plain read of the same parameter, operations on top, and
// the wiring of a figure, 60 connections and 30 operations.
#include <benchmark/benchmark.h>

#include <vector>

#include "../support/bench_scene.h"
#include "host/core/class_desc.h"
#include "host/scene/point_helper.h"
#include "plugin/connections/connect.h"
#include "plugin/connections/float_connection.h"
#include "plugin/connections/float_expose_tm.h"
#include "plugin/connections/float_operation.h"
#include "plugin/connections/float_wave.h"
#include "plugin/connections/twist_poses.h"

namespace {

using namespace corvanta;
using namespace tavrilon;

/// Blocks to wire: operations serve as sources and as consumers.
std::vector<Ref<FloatOperation>> Operations(int count) {
  bench_scene::Fresh();
  std::vector<Ref<FloatOperation>> made;
  for (int i = 0; i < count; ++i) made.emplace_back(new FloatOperation);
  return made;
}

void BM_PlainRead(benchmark::State& state) {
  const auto blocks = Operations(1);
  ParamBlock2& block = *blocks[0]->GetParamBlock();
  for (auto _ : state) {
    Interval valid = FOREVER;
    benchmark::DoNotOptimize(block.GetFloat(float_operation::kA, 7, valid));
  }
}
BENCHMARK(BM_PlainRead);

void BM_ConnectedRead(benchmark::State& state, float_connection::Transform transform) {
  const auto blocks = Operations(2);
  ParamBlock2 &source = *blocks[0]->GetParamBlock(), &consumer = *blocks[1]->GetParamBlock();
  ConnectionSpec spec;
  spec.transform = transform;
  ConnectFloat(consumer, float_operation::kA, source, float_operation::kB, spec);
  for (auto _ : state) {
    Interval valid = FOREVER;
    benchmark::DoNotOptimize(consumer.GetFloat(float_operation::kA, 7, valid));
  }
}
BENCHMARK_CAPTURE(BM_ConnectedRead, direct, float_connection::kDirect);
BENCHMARK_CAPTURE(BM_ConnectedRead, offset_weight, float_connection::kOffsetWeight);
BENCHMARK_CAPTURE(BM_ConnectedRead, range, float_connection::kRange);

void Read(benchmark::State& state, Control& control) {
  for (auto _ : state) {
    Interval valid = FOREVER;
    float value = 0;
    control.GetValue(7, value, valid, CTRL_ABSOLUTE);
    benchmark::DoNotOptimize(value);
  }
}

// Two inputs by connections, as in the wiring of a foot.
void BM_Operation(benchmark::State& state) {
  const auto blocks = Operations(2);
  for (const auto id : {float_operation::kA, float_operation::kB})
    ConnectFloat(*blocks[1]->GetParamBlock(), id, *blocks[0]->GetParamBlock(), float_operation::kC);
  blocks[1]->GetParamBlock()->SetValue(float_operation::kOperation, 0, static_cast<int>(float_operation::Op::ClampTo));
  Read(state, *blocks[1]);
}
BENCHMARK(BM_Operation);

void BM_Wave(benchmark::State& state) {
  bench_scene::Fresh();
  const Ref<FloatWave> wave(new FloatWave);
  Read(state, *wave);
}
BENCHMARK(BM_Wave);

void BM_ExposedTwist(benchmark::State& state) {
  bench_scene::Fresh();
  INode* parent = GetScene().CreateObjectNode(new PointHelper);
  INode* node = GetScene().CreateObjectNode(new PointHelper);
  parent->AttachChild(node, false);
  node->SetNodeTM(0, EulerToMatrix({0.4f, 0.2f, 0.1f}));
  const Ref<FloatExposeTM> expose(new FloatExposeTM);
  expose->GetParamBlock()->SetValue(float_expose_tm::kNode, 0, node);
  expose->GetParamBlock()->SetValue(float_expose_tm::kComponent, 0,
                                    static_cast<int>(float_expose_tm::Component::TwistX));
  Read(state, *expose);
}
BENCHMARK(BM_ExposedTwist);

void BM_FivePoses(benchmark::State& state) {
  bench_scene::Fresh();
  INode* node = GetScene().CreateObjectNode(new PointHelper);
  const Ref<TwistPosesFloat> poses(new TwistPosesFloat);
  poses->GetParamBlock()->SetValue(twist_poses::kNode, 0, node);
  for (int i = -2; i <= 2; ++i) poses->AddPose(static_cast<float>(i), static_cast<float>(i * i));
  node->SetNodeTM(0, EulerToMatrix({0.4f, 0.2f, 0.1f}));
  Read(state, *poses);
}
BENCHMARK(BM_FivePoses);

// 30 operations of two connected inputs each, all from one attribute.
void BM_FigureWiring(benchmark::State& state) {
  const auto blocks = Operations(31);
  for (size_t i = 1; i < blocks.size(); ++i)
    for (const auto id : {float_operation::kA, float_operation::kB})
      ConnectFloat(*blocks[i]->GetParamBlock(), id, *blocks[0]->GetParamBlock(), float_operation::kC);
  for (size_t i = 1; i < blocks.size(); ++i) blocks[i]->GetParamBlock()->SetValue(float_operation::kOperation, 0, 1);
  for (auto _ : state) {
    float sum = 0;
    for (size_t i = 1; i < blocks.size(); ++i) {
      Interval valid = FOREVER;
      float value = 0;
      blocks[i]->GetValue(7, value, valid, CTRL_ABSOLUTE);
      sum += value;
    }
    benchmark::DoNotOptimize(sum);
  }
}
BENCHMARK(BM_FigureWiring);

// One change of the attribute that 60 connections watch.
void BM_ChangeWithSixtyWatchers(benchmark::State& state) {
  const auto blocks = Operations(31);
  for (size_t i = 1; i < blocks.size(); ++i)
    for (const auto id : {float_operation::kA, float_operation::kB})
      ConnectFloat(*blocks[i]->GetParamBlock(), id, *blocks[0]->GetParamBlock(), float_operation::kC);
  float value = 0;
  for (auto _ : state) blocks[0]->GetParamBlock()->SetValue(float_operation::kC, 0, value += 1);
}
BENCHMARK(BM_ChangeWithSixtyWatchers);

}  // namespace
