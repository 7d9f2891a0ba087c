// SPDX-License-Identifier: MIT
#include "app/rest_pose.h"

#include <gtest/gtest.h>

#include "app/host_session.h"
#include "host/core/class_desc.h"
#include "host/core/control.h"
#include "host/io/scene_file.h"
#include "host/scene/point_helper.h"

namespace {

using namespace corvanta;

struct Fault {
  const char* name;
  Matrix3 place;
  const char* told;
};

// The least changes that single precision shows: at rest means exactly at rest.
const Fault kFaults[] = {
    {"moved", TransMatrix({0, 1e-6f, 0}), "\"arm\": its position reads 0, 9.99999997e-07, 0"},
    {"turned", RotateZMatrix(0.001f), "\"arm\": its rotation"},
    {"scaled", ScaleMatrix({1, 1, 1.5f}), "\"arm\": its scale reads 1, 1, 1.5"},
};

INode* AddControl(const wchar_t* name) {
  INode* node = GetScene().CreateObjectNode(new PointHelper);
  node->SetName(name);
  node->SetTMController(ClassDirectory::Get().FindByName(L"RigTransform")->Create()->AsControl());
  return node;
}

TEST(RestPose, NamesTheFirstNodeThatIsNotAtRest) {
  const app::HostSession session;
  ASSERT_TRUE(session.IsStarted()) << session.Problem();
  for (const Fault& fault : kFaults) {
    SCOPED_TRACE(fault.name);
    ASSERT_TRUE(ResetScene());
    EXPECT_NE(app::CheckRestPose(GetScene()).fault, "");  // nothing to look at is no success
    AddControl(L"body");
    INode* arm = AddControl(L"arm");
    EXPECT_EQ(app::CheckRestPose(GetScene()).fault, "");
    EXPECT_EQ(app::CheckRestPose(GetScene()).controls, 2);
    arm->SetNodeTM(0, fault.place);
    EXPECT_EQ(app::CheckRestPose(GetScene()).fault.find(fault.told), 0u) << app::CheckRestPose(GetScene()).fault;
  }
  ResetScene();
}

}  // namespace
