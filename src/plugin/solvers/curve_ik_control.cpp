// SPDX-License-Identifier: MIT
#include "plugin/solvers/curve_ik_control.h"

#include "plugin/frame/lock_chunk.h"
#include "plugin/solvers/curve_ik_chain.h"

namespace tavrilon {

using namespace corvanta;
using namespace curve_ik_control;

namespace {

constexpr float kMost = 1e6f;

// clang-format off
constexpr ParamRow kRows[] = {
  // id          script name            type                flags        default range           label
  {kChainNode,   L"curveikchain_node",  ParamType::Node,    kWeak,       {},     {},             L"CurveIK Chain"},
  {kIndex,       L"index",              ParamType::Int,     kNone,       0,      {0, kMost},     L"Index"},
  {kPercent,     L"percent",            ParamType::Percent, kAnimatable, 0.0f,   {-kMost, kMost}, L"Percent:"},
  {kSquash,      L"squash",             ParamType::Percent, kAnimatable, 1.0f,   {-kMost, kMost}, L"Squash:"},
};
// clang-format on

}  // namespace

const ParamBlockDesc2& CurveIKControl::BlockDesc() {
  static const ParamBlockDesc2 desc(0, L"params", kRows);
  return desc;
}

ReferenceTarget* CreateCurveIKControl(bool loading) { return new CurveIKControl(loading); }

CurveIKControl::CurveIKControl(bool loading) {
  if (!loading) BindReference(0, new ParamBlock2(BlockDesc()));
}

CurveIKControl* CurveIKControl::Of(const INode* node) {
  Control* control = node ? node->GetTMController() : nullptr;
  return IsOfClass(control, TavrilonClass::CurveIKControl) ? static_cast<CurveIKControl*>(control) : nullptr;
}

INode* CurveIKControl::ChainNode() const { return block_ ? block_->GetINode(kChainNode) : nullptr; }
CurveIKChain* CurveIKControl::Chain() const { return CurveIKChain::Of(ChainNode()); }

void CurveIKControl::GetValue(TimeValue t, ValueRef value, Interval& valid, GetSetMethod) {
  Matrix3& tm = value.Matrix3();
  if (CurveIKChain* chain = Chain()) tm = chain->GetJointTM(t, Index(), valid);
  if (inner_) inner_->GetValue(t, tm, valid, CTRL_RELATIVE);
}

void CurveIKControl::SetValue(TimeValue t, ValueRef value, bool commit, GetSetMethod method) {
  if (locked_ || !inner_) return;
  SetXFormPacket& packet = value.Packet();
  Interval valid = FOREVER;
  if (CurveIKChain* chain = Chain()) packet.tmParent = chain->GetJointTM(t, Index(), valid);
  inner_->SetValue(t, packet, commit, method);
}

// Keys.

void CurveIKControl::AddNewKey(TimeValue t) {
  if (inner_ && !locked_) inner_->AddNewKey(t);
}
void CurveIKControl::DeleteKeyAtTime(TimeValue t) {
  if (inner_ && !locked_) inner_->DeleteKeyAtTime(t);
}
void CurveIKControl::DeleteKeys(bool selectedOnly) {
  if (inner_ && !locked_) inner_->DeleteKeys(selectedOnly);
}
void CurveIKControl::SelectKeys(const Interval& range, bool on) {
  if (inner_) inner_->SelectKeys(range, on);
}
void CurveIKControl::MapKeys(const TimeMap& map, uint32_t flags) {
  if (inner_ && !locked_) inner_->MapKeys(map, flags);
}
void CurveIKControl::DeleteTime(const Interval& range, uint32_t flags) {
  if (inner_ && !locked_) inner_->DeleteTime(range, flags);
}
void CurveIKControl::ReverseTime(const Interval& range, uint32_t flags) {
  if (inner_ && !locked_) inner_->ReverseTime(range, flags);
}
void CurveIKControl::CopyKeysFromTime(TimeValue from, TimeValue to) {
  if (inner_ && !locked_) inner_->CopyKeysFromTime(from, to);
}

// References.

ReferenceTarget* CurveIKControl::GetReference(int which) const {
  if (which == 0) return block_;
  return which == 1 ? inner_ : nullptr;
}

std::optional<bool> CurveIKControl::AcceptsReference(int which, const ReferenceTarget& target) const {
  if (which != 1) return std::nullopt;  // the block is like that of a new object
  return target.SuperClassID() == kMatrixControlSuper && dynamic_cast<const Control*>(&target) != nullptr;
}

void CurveIKControl::SetReference(int which, ReferenceTarget* target) {
  if (which == 0) block_ = static_cast<ParamBlock2*>(target);
  if (which == 1) inner_ = static_cast<Control*>(target);
}

bool CurveIKControl::AssignController(Control* control, int subAnim) {
  if (subAnim != 1 || locked_ || (control && control->SuperClassID() != kMatrixControlSuper)) return false;
  if (!SetInner(control)) return false;
  NotifyDependents(FOREVER, PART_ALL, REFMSG_CONTROLREF_CHANGE);
  NotifyDependents();
  return true;
}

void* CurveIKControl::GetInterface(uint32_t request) {
  if (request == I_LOCKED) return static_cast<ILockedTrack*>(this);
  return request == kRequest ? static_cast<WeakRefOwner*>(this) : nullptr;
}

void CurveIKControl::CopyStateFrom(ReferenceTarget& source, RemapDir&) {
  locked_ = static_cast<CurveIKControl&>(source).locked_;
}

IOResult CurveIKControl::Save(ISave& save) { return SaveLockChunk(save, locked_); }

IOResult CurveIKControl::Load(ILoad& load) { return LoadLockChunk(load, locked_); }

}  // namespace tavrilon
