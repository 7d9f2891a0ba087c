// SPDX-License-Identifier: MIT
#include "app/rest_pose.h"

#include <cstdio>
#include <set>

#include "host/core/class_desc.h"
#include "host/core/control.h"

namespace app {

using namespace corvanta;

namespace {

// The transform controllers of the class under `anim`, itself included: solvers and constraints hold the control that
// they took the place of as a sub-animatable.
void Collect(Animatable* anim, Class_ID wanted, std::set<Animatable*>& seen, std::vector<Control*>& found) {
  auto* target = dynamic_cast<ReferenceTarget*>(anim);
  Control* control = target != nullptr ? target->AsControl() : nullptr;
  if (control == nullptr || control->SuperClassID() != kMatrixControlSuper || !seen.insert(anim).second) return;
  if (control->ClassID() == wanted) found.push_back(control);
  for (int i = 0; i < control->NumSubs(); ++i) Collect(control->SubAnim(i), wanted, seen, found);
}

template <class Value>
Value Read(Control* control) {
  Value value{};
  Interval valid = FOREVER;
  if (control != nullptr) control->GetValue(0, value, valid, CTRL_ABSOLUTE);
  return value;
}

std::string Numbers(const char* what, float x, float y, float z) {
  char text[120];
  std::snprintf(text, sizeof text, "its %s reads %.9g, %.9g, %.9g", what, x, y, z);
  return text;
}

std::string FaultOf(Control& control) {
  const Point3 p = Read<Point3>(control.GetPositionController());
  if (!(p == Point3{0, 0, 0})) return Numbers("position", p.x, p.y, p.z);
  const Quat q = Read<Quat>(control.GetRotationController());
  if (q.x != 0 || q.y != 0 || q.z != 0) return Numbers("rotation, as a quaternion,", q.x, q.y, q.z);
  const Point3 s = Read<ScaleValue>(control.GetScaleController()).s;
  if (!(s == Point3{1, 1, 1})) return Numbers("scale", s.x, s.y, s.z);
  return "";
}

}  // namespace

RestPose CheckRestPose(Scene& scene) {
  RestPose pose;
  const ClassDesc* desc = ClassDirectory::Get().FindByName(L"RigTransform");
  if (desc == nullptr) return {0, "this build has no rig controls"};
  const int reentriesBefore = INode::ReentryCount();
  for (const Ref<INode>& node : scene.Nodes()) {
    std::set<Animatable*> seen;
    std::vector<Control*> controls;
    Collect(node->GetTMController(), desc->classId, seen, controls);
    pose.controls += controls.empty() ? 0 : 1;
    node->GetNodeTM(0);
    for (Control* control : controls) {
      const std::string fault = FaultOf(*control);
      if (!fault.empty()) return {pose.controls, "\"" + ToUtf8(node->GetName()) + "\": " + fault};
    }
    if (INode::ReentryCount() != reentriesBefore)
      return {pose.controls, "\"" + ToUtf8(node->GetName()) + "\": its matrix needs itself"};
  }
  if (pose.controls == 0) pose.fault = "there is no control in the scene";
  return pose;
}

}  // namespace app
