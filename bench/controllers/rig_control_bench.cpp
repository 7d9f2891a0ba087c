// SPDX-License-Identifier: MIT
// What 300 rig controls cost: the node matrices of a rig at a new time and at the same time again, and one read of each
// kind of controller.
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "host/maths/euler.h"
#include "host/scene/core_interface.h"
#include "host/scene/point_helper.h"
#include "plugin/controllers/rig_control.h"
#include "plugin/controllers/static_controls.h"
#include "plugin/controllers/step_float.h"

namespace {

using namespace corvanta;
using namespace tavrilon;

constexpr int kControls = 300;
constexpr TimeValue kLast = 20000;

/// How many of the controls have keys.
enum class Keyed { Root, All };
/// A chain is the deepest rig; the tree has limbs of ten joints on one root.
enum class Form { Chain, Tree };

void KeyControl(RigControl& control, int seed) {
  AnimateOn();
  for (TimeValue t = 0; t <= kLast; t += kLast / 10) {
    const float a = 0.1f * static_cast<float>((seed + t / 100) % 7);
    Point3 p{a, -a, 1};
    Quat q = EulerToQuat({a, 2 * a, -a});
    control.GetPositionController()->SetValue(t, p, true, CTRL_ABSOLUTE);
    control.GetRotationController()->SetValue(t, q, true, CTRL_ABSOLUTE);
  }
  AnimateOff();
}

std::vector<INode*> MakeRig(Form form, Keyed keyed) {
  RegisterHostClasses();
  RegisterTavrilonClasses();
  ReplaceScene(std::make_unique<Scene>());
  std::vector<INode*> nodes;
  Matrix3 offset = EulerToMatrix({0.1f, 0.2f, 0.3f});
  offset.SetTrans({1, 0, 0});
  for (int i = 0; i < kControls; ++i) {
    INode* node = GetScene().CreateObjectNode(new PointHelper);
    const bool limbStart = form == Form::Tree && i % 10 == 1;
    if (i > 0) nodes[limbStart ? 0 : nodes.size() - 1]->AttachChild(node, false);
    const Ref<RigControl> control(new RigControl);
    node->SetTMController(control.Get());
    control->SetOffsetTM(offset);
    if (keyed == Keyed::All || i == 0) KeyControl(*control, i);
    nodes.push_back(node);
  }
  return nodes;
}

void Evaluate(const std::vector<INode*>& nodes, TimeValue t) {
  for (INode* node : nodes) benchmark::DoNotOptimize(node->GetNodeTM(t).row[3]);
}

void BM_NewTime(benchmark::State& state, Form form, Keyed keyed) {
  const std::vector<INode*> nodes = MakeRig(form, keyed);
  TimeValue t = 0;
  for (auto _ : state) {
    t = (t + 37) % kLast;
    Evaluate(nodes, t);
  }
  state.SetItemsProcessed(state.iterations() * kControls);
}
BENCHMARK_CAPTURE(BM_NewTime, chain_root_keyed, Form::Chain, Keyed::Root)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(BM_NewTime, chain_all_keyed, Form::Chain, Keyed::All)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(BM_NewTime, tree_all_keyed, Form::Tree, Keyed::All)->Unit(benchmark::kMicrosecond);

void BM_SameTimeAgain(benchmark::State& state) {
  const std::vector<INode*> nodes = MakeRig(Form::Chain, Keyed::All);
  Evaluate(nodes, 100);
  for (auto _ : state) Evaluate(nodes, 100);
}
BENCHMARK(BM_SameTimeAgain)->Unit(benchmark::kNanosecond);

void BM_OffsetEdit(benchmark::State& state) {
  const std::vector<INode*> nodes = MakeRig(Form::Chain, Keyed::Root);
  auto* control = static_cast<RigControl*>(nodes[150]->GetTMController());
  float x = 0;
  for (auto _ : state) {
    control->SetOffsetPos({x += 0.01f, 0, 0});
    Evaluate(nodes, 100);
  }
}
BENCHMARK(BM_OffsetEdit)->Unit(benchmark::kMicrosecond);

// --- one read of each kind

template <class Value>
void Read(benchmark::State& state, Control* made, Value value, GetSetMethod method) {
  const Ref<Control> control(made);
  TimeValue t = 0;
  const Value start = value;
  for (auto _ : state) {
    Interval valid = FOREVER;
    value = start;
    control->GetValue(++t % kLast, value, valid, method);
    benchmark::DoNotOptimize(value);
  }
}

void BM_Read(benchmark::State& state, const char* kind) {
  RegisterHostClasses();
  RegisterTavrilonClasses();
  const std::string name = kind;
  const Ref<RigControl> rig(new RigControl);
  KeyControl(*rig, 1);
  const Ref<StepFloat> step(new StepFloat);
  step->SetWrapped(rig->GetRotationController()->GetXController());
  if (name == "StaticFloat") return Read(state, new StaticFloat, 0.0f, CTRL_ABSOLUTE);
  if (name == "StaticPosition") return Read(state, new StaticPosition, Matrix3(), CTRL_RELATIVE);
  if (name == "StaticRotation") return Read(state, new StaticRotation, Matrix3(), CTRL_RELATIVE);
  if (name == "StaticScale") return Read(state, new StaticScale, Matrix3(), CTRL_RELATIVE);
  if (name == "StaticTransform") return Read(state, new StaticTransform, Matrix3(), CTRL_RELATIVE);
  if (name == "StepFloat") return Read<float>(state, step.Get(), 0.0f, CTRL_ABSOLUTE);
  if (name == "RotationXYZ") return Read(state, rig->GetRotationController(), Matrix3(), CTRL_RELATIVE);
  if (name == "RigControl, keyed") return Read<Matrix3>(state, rig.Get(), Matrix3(), CTRL_RELATIVE);
  if (name == "RigControl, at rest") return Read<Matrix3>(state, new RigControl, Matrix3(), CTRL_RELATIVE);
}
BENCHMARK_CAPTURE(BM_Read, StaticFloat, "StaticFloat");
BENCHMARK_CAPTURE(BM_Read, StaticPosition, "StaticPosition");
BENCHMARK_CAPTURE(BM_Read, StaticRotation, "StaticRotation");
BENCHMARK_CAPTURE(BM_Read, StaticScale, "StaticScale");
BENCHMARK_CAPTURE(BM_Read, StaticTransform, "StaticTransform");
BENCHMARK_CAPTURE(BM_Read, StepFloat, "StepFloat");
BENCHMARK_CAPTURE(BM_Read, RotationXYZ, "RotationXYZ");
BENCHMARK_CAPTURE(BM_Read, RigControl_keyed, "RigControl, keyed");
BENCHMARK_CAPTURE(BM_Read, RigControl_at_rest, "RigControl, at rest");

}  // namespace
