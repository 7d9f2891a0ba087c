// SPDX-License-Identifier: MIT
// One solve of a limb, all inputs at hand: one, two and more bones. The many-bone rows take the goal to where its
// search is short, to the farthest fold that 40 passes come to, and to where nothing is found.
#include <benchmark/benchmark.h>

#include <array>

#include "host/maths/euler.h"
#include "plugin/frame/rig_maths.h"
#include "plugin/solvers/limb.h"
#include "plugin/solvers/match.h"
#include "plugin/solvers/soft_reach.h"

namespace {

using namespace corvanta;
using namespace tavrilon;

struct BenchLimb {
  std::vector<LimbJoint> joints;
  std::vector<JointPose> pose;
  LimbWork work;
  LimbIn in;

  /// Bones of length 2 along X, middle joints preferred bent by `bend` radians; the goal at `part` of the length.
  BenchLimb(int count, float bend, float part) : joints(count), pose(count) {
    for (int i = 0; i < count; ++i) {
      if (i > 0) joints[i].pos = {2, 0, 0};
      joints[i].rot = joints[i].preferred = EulerToQuat({0.1f, 0.2f, -bend});
    }
    in.parentTM = EulerToMatrix({0.3f, -0.4f, 0.5f});
    in.parentTM.SetTrans({10, 20, 90});
    in.joints = joints;
    in.goalTM = EulerToMatrix({-0.3f, 0.4f, 1});
    in.goalTM.SetTrans(Point3{0.36f, -0.48f, 0.8f} * (part * 2.0f * static_cast<float>(count - 1)) * in.parentTM);
    in.swivel = 0.7f;
  }
};

void Run(benchmark::State& state, BenchLimb limb) {
  limb.in.joints = limb.joints;
  float stretch = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(limb.in.goalTM);
    stretch = SolveLimb(limb.in, limb.pose, limb.work);
    benchmark::DoNotOptimize(limb.pose.data());
    benchmark::ClobberMemory();
  }
  benchmark::DoNotOptimize(stretch);
  state.counters["joints"] = static_cast<double>(limb.joints.size());
}

BENCHMARK_CAPTURE(Run, one_bone, BenchLimb(2, 0.5f, 0.8f));
BENCHMARK_CAPTURE(Run, two_bone, BenchLimb(3, 0.5f, 0.8f));
BENCHMARK_CAPTURE(Run, five_joints_farther, BenchLimb(5, 0.5f, 0.95f));
BENCHMARK_CAPTURE(Run, five_joints_nearer, BenchLimb(5, 0.5f, 0.5f));
BENCHMARK_CAPTURE(Run, five_joints_straight_to_folded, BenchLimb(5, 0.0f, 0.1f));
BENCHMARK_CAPTURE(Run, five_joints_on_the_root, BenchLimb(5, 0.0f, 0.0f));

template <class Change>
BenchLimb Changed(BenchLimb limb, Change change) {
  change(limb.in);
  return limb;
}
BENCHMARK_CAPTURE(Run, two_bone_target, Changed(BenchLimb(3, 0.5f, 0.8f), [](LimbIn& in) {
                    in.hasTarget = true;
                    in.target = {3, 5, 70};
                  }));
BENCHMARK_CAPTURE(Run, two_bone_soft, Changed(BenchLimb(3, 0.5f, 0.98f), [](LimbIn& in) { in.softness = 0.1f; }));
BENCHMARK_CAPTURE(Run, two_bone_half_blend, Changed(BenchLimb(3, 0.5f, 0.8f), [](LimbIn& in) { in.blend = 0.5f; }));
BENCHMARK_CAPTURE(Run, two_bone_fk, Changed(BenchLimb(3, 0.5f, 0.8f), [](LimbIn& in) { in.blend = 0; }));

void BM_Unsoften(benchmark::State& state) {
  SoftReachIn in{9.7f, 10, 0.2f, 0.3f};
  for (auto _ : state) {
    benchmark::DoNotOptimize(in);
    benchmark::DoNotOptimize(UnsoftenReach(in));
  }
  state.counters["joints"] = 0;
}
BENCHMARK(BM_Unsoften);

void BM_MatchSwivel(benchmark::State& state) {
  BenchLimb limb(static_cast<int>(state.range(0)), 0.5f, 0.8f);
  SolveLimb(limb.in, limb.pose, limb.work);
  for (auto _ : state) benchmark::DoNotOptimize(MatchSwivel(limb.in, limb.pose, limb.work));
  state.counters["joints"] = static_cast<double>(state.range(0));
}
BENCHMARK(BM_MatchSwivel)->Arg(3)->Arg(5);

}  // namespace
