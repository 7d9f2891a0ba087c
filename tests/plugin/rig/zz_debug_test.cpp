#include "plugin/rig/limb_rig_test.h"
#include "plugin/solvers/curve_ik_chain.h"
namespace tavrilon { namespace {
TEST_F(LimbRigTest, Debug) {
  Build(RigType::Biped, {{rig_param::kBendyControls, 1}, {rig_param::kReverseFoot, 1}});
  ParamBlock2& limb = Limb(L"l_ikfk_arm_1");
  limb.SetValue(limb_attrib::kAutoStretch, 0, 1.0f);
  Move(Node(L"l_ik_hand_1"), {30, 0, 0});
  CurveIKChain* c = CurveIKChain::Of(Node(L"helper_l_forearm_twist_curveikchain_1"));
  ASSERT_TRUE(c);
  auto& b = *c->GetParamBlock();
  printf("squash control %p  val %g active %d bendyactive %d len %g curve %g auto %g manual %g\n", (void*)b.GetController(curve_ik_chain::kSquash), b.GetFloat(curve_ik_chain::kSquash), limb.GetBool(limb_attrib::kSquashActive), limb.GetBool(limb_attrib::kBendyActive), b.GetFloat(curve_ik_chain::kChainLength), c->GetCurveLength(0), b.GetFloat(curve_ik_chain::kAutoStretch), b.GetFloat(curve_ik_chain::kManualStretch));
  limb.SetValue(limb_attrib::kSquash, 0, 1.0f);
  printf("squash val %g row %g\n", b.GetFloat(curve_ik_chain::kSquash), Length(TM(L"bone_l_forearm_twist_2").GetRow(1)));
  for (const WStr n : {L"l_upper_arm_twist_tangent_end_1", L"l_forearm_twist_tangent_start_1"}) {
    auto* blk = dynamic_cast<ParamBlock2*>(Node(n)->GetTMController()->GetReference(0));
    limb.SetValue(limb_attrib::kBendy, 0, 0.25f);
    printf("%s weights %g %g ctrl %p\n", ToUtf8(n).c_str(), blk->GetFloat(0,0,0), blk->GetFloat(0,0,1), (void*)blk->GetController(0,0));
  }
  const Matrix3 g = TM(L"helper_l_foot_goal_1"), f = TM(L"l_foot_1"); const Point3 heel = Place(L"helper_l_foot_heel_1");
  Foot(L"l_ik_foot_1").SetValue(foot_attrib::kFootRoll, 0, 30*kDegToRad);
  Point3 a = heel*Inverse(g)*TM(L"helper_l_foot_goal_1"), d = heel*Inverse(f)*TM(L"l_foot_1");
  printf("heel by goal %g %g %g by foot %g %g %g ball %g %g %g ankle %g\n", a.x,a.y,a.z,d.x,d.y,d.z, Place(L"helper_l_foot_ball_1").x, Place(L"helper_l_foot_ball_1").y, Place(L"helper_l_foot_ball_1").z, TM(L"l_foot_1").GetTrans().z);
}
}}
