// SPDX-License-Identifier: MIT
// One pass of a curve chain: the mathematics alone on plain values, for a spine and for a twist chain, and the whole
// evaluation through nodes.
#include <benchmark/benchmark.h>

#include "../support/bench_scene.h"
#include "host/scene/point_helper.h"
#include "plugin/solvers/curve_ik_chain.h"
#include "plugin/solvers/curve_ik_control.h"

namespace {

using namespace corvanta;
using namespace tavrilon;
using namespace curve_ik_chain;

struct Shape {
  const char* name;
  int points, joints;
  float bend;
};
constexpr Shape kShapes[] = {
    {"spine, 3 points 6 joints", 3, 6, 8}, {"twist chain, straight", 2, 3, 0}, {"twist chain, bent", 2, 3, 4}};

std::vector<PointFrame> Points(const Shape& shape) {
  std::vector<PointFrame> points;
  for (int i = 0; i < shape.points; ++i) {
    PointFrame& point = points.emplace_back();
    const float x = 30.0f * static_cast<float>(i);
    point.pos = {x, i % 2 ? shape.bend : 0, 0};
    point.rot = EulerToQuat({0.3f * static_cast<float>(i), 0, 0});
    if (shape.points == 2) {
      point.type = kBezier;
      point.hasIn = point.hasOut = true;
      point.in = {-10, 0, 0};
      point.out = {10, 0, 0};
    }
  }
  return points;
}

void BM_Curve(benchmark::State& state) {
  const Shape& shape = kShapes[state.range(0)];
  state.SetLabel(shape.name);
  const std::vector<PointFrame> given = Points(shape);
  std::vector<PointFrame> points;
  std::vector<CurveJoint> joints;
  for (int i = 0; i < shape.joints; ++i)
    joints.push_back({static_cast<float>(i) / static_cast<float>(shape.joints), 1});
  std::vector<Matrix3> tms(joints.size());
  SampledCurve curve;
  for (auto _ : state) {
    points = given;
    ResolveTangents(points, false);
    SampleCurve(points, false, 16, {}, curve);
    PoseJoints({curve, points, joints}, tms);
    benchmark::DoNotOptimize(tms.data());
    benchmark::ClobberMemory();
  }
}
BENCHMARK(BM_Curve)->DenseRange(0, 2)->Unit(benchmark::kNanosecond);

/// At a new time, one control point keyed: the chain's pass and the matrices of all joints.
void BM_Chain(benchmark::State& state) {
  const Shape& shape = kShapes[state.range(0)];
  state.SetLabel(shape.name);
  bench_scene::Fresh();
  const auto addNode = [] { return GetScene().CreateObjectNode(new PointHelper); };
  auto* chain = new CurveIKChain;
  addNode()->SetTMController(chain);
  for (const PointFrame& point : Points(shape)) {
    INode* node = addNode();
    Matrix3 tm = MakeMatrix(point.rot);
    tm.SetTrans(point.pos);
    node->SetNodeTM(0, tm);
    CurvePointOptions options;
    options.type = point.type;
    INode* tangents[] = {point.hasIn ? addNode() : nullptr, point.hasOut ? addNode() : nullptr};
    for (const int side : {0, 1}) {
      if (!tangents[side]) continue;
      tm.SetTrans(point.pos + (side == 0 ? point.in : point.out));
      tangents[side]->SetNodeTM(0, tm);
    }
    options.inTangent = tangents[0];
    options.outTangent = tangents[1];
    chain->AddPoint(node, options);
  }
  std::vector<INode*> joints;
  for (int i = 0; i < shape.joints; ++i) {
    joints.push_back(addNode());
    chain->GetParamBlock()->Append(kJoints, joints.back());
  }
  AnimateOn();
  Matrix3 tm = chain->GetPoint(1)->GetNodeTM(0);
  tm.SetTrans(tm.GetTrans() + Point3{10, 0, 0});
  chain->GetPoint(1)->SetNodeTM(20000, tm);
  AnimateOff();
  TimeValue t = 0;
  for (auto _ : state) {
    t = (t + 1) % 20000;
    for (INode* joint : joints) benchmark::DoNotOptimize(joint->GetNodeTM(t));
  }
}
BENCHMARK(BM_Chain)->DenseRange(0, 2)->Unit(benchmark::kNanosecond);

}  // namespace
