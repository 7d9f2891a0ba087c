// SPDX-License-Identifier: MIT
#include "host/anim/prs_control.h"

namespace corvanta {

PrsControl::PrsControl(bool loading) {
  if (loading) return;
  BindReference(0, NewDefaultPositionController());
  BindReference(1, NewDefaultRotationController());
  BindReference(2, NewDefaultScaleController());
}

WStr PrsControl::SubAnimName(int i) {
  static const wchar_t* const kNames[] = {L"Position", L"Rotation", L"Scale"};
  return i >= 0 && i < 3 ? kNames[i] : L"";
}

SClass_ID PrsControl::PartSuperClass(int i) const {
  static constexpr SClass_ID kSupers[] = {kPositionControlSuper, kRotationControlSuper, kScaleControlSuper};
  return kSupers[i];
}

void PrsControl::SetReference(int which, ReferenceTarget* target) {
  if (which >= 0 && which < 3) parts_[which] = target ? target->AsControl() : nullptr;
}

void PrsControl::GetValue(TimeValue t, ValueRef value, Interval& valid, GetSetMethod) {
  for (Control* part : parts_)
    if (part) part->GetValue(t, value, valid, CTRL_RELATIVE);
}

void PrsControl::SetValue(TimeValue t, ValueRef value, bool commit, GetSetMethod) {
  if (locked_) return;
  const SetXFormPacket& packet = value.Packet();
  switch (packet.command) {
    case XFORM_MOVE:
      return Move(t, packet, commit);
    case XFORM_ROTATE:
      return Rotate(t, packet, commit);
    case XFORM_SCALE:
      return Scale(t, packet, commit);
    case XFORM_SET:
      return SetMatrix(t, packet.tmAxis * Inverse(packet.tmParent), commit);
  }
}

void PrsControl::SetMatrix(TimeValue t, const Matrix3& local, bool commit) {
  AffineParts parts = decomp_affine(local);
  ScaleValue scale{parts.k * parts.f, parts.u};
  if (parts_[0]) parts_[0]->SetValue(t, parts.t, commit, CTRL_ABSOLUTE);
  if (parts_[1]) parts_[1]->SetValue(t, parts.q, commit, CTRL_ABSOLUTE);
  if (parts_[2]) parts_[2]->SetValue(t, scale, commit, CTRL_ABSOLUTE);
}

void PrsControl::Move(TimeValue t, const SetXFormPacket& packet, bool commit) {
  Point3 p = VectorTransform(packet.tmAxis * Inverse(packet.tmParent), packet.p);
  if (parts_[0]) parts_[0]->SetValue(t, p, commit, CTRL_RELATIVE);
}

// What `change`, in the space of tmAxis, does to the place of the node: its position moves by the difference.
void PrsControl::MoveAbout(TimeValue t, const SetXFormPacket& packet, const Matrix3& change, bool commit) {
  if (packet.localOrigin || !parts_[0]) return;
  Matrix3 placed = packet.tmParent;
  Interval ignored = FOREVER;
  parts_[0]->GetValue(t, placed, ignored, CTRL_RELATIVE);
  const Point3 from = placed.GetTrans();
  const Point3 to = from * Inverse(packet.tmAxis) * change * packet.tmAxis;
  Point3 step = VectorTransform(Inverse(packet.tmParent), to - from);
  if (!(step == Point3{})) parts_[0]->SetValue(t, step, commit, CTRL_RELATIVE);
}

void PrsControl::Rotate(TimeValue t, const SetXFormPacket& packet, bool commit) {
  MoveAbout(t, packet, MakeMatrix(packet.q), commit);
  if (!parts_[1]) return;
  AngAxis aa = packet.aa;
  aa.axis = VectorTransform(packet.tmAxis * Inverse(Orthogonalize(packet.tmParent)), aa.axis);
  parts_[1]->SetValue(t, aa, commit, CTRL_RELATIVE);
}

void PrsControl::Scale(TimeValue t, const SetXFormPacket& packet, bool commit) {
  MoveAbout(t, packet, ScaleMatrix(packet.p), commit);
  if (!parts_[2]) return;
  Matrix3 parent = packet.tmParent;
  Interval ignored = FOREVER;
  if (parts_[1]) parts_[1]->GetValue(t, parent, ignored, CTRL_RELATIVE);
  ScaleValue scale{packet.p, QuatFromMatrix(Orthogonalize(packet.tmAxis * Inverse(parent)))};
  parts_[2]->SetValue(t, scale, commit, CTRL_RELATIVE);
}

void PrsControl::Copy(Control* from) {
  if (!from || from == this || from->SuperClassID() != kMatrixControlSuper) return;
  const auto copyAt = [&](TimeValue t) {
    Matrix3 tm;
    Interval ignored = FOREVER;
    from->GetValue(t, tm, ignored, CTRL_RELATIVE);
    SetMatrix(t, tm, true);
  };
  SetLocked(false);
  if (from->NumKeys() == 0) {
    copyAt(0);
  } else {
    const AnimateScope animate;
    for (int i = 0, n = from->NumKeys(); i < n; ++i) copyAt(from->GetKeyTime(i));
  }
  if (const ILockedTrack* lock = GetLockedTrack(from)) SetLocked(lock->GetLocked());
}

void PrsControl::CopyStateFrom(ReferenceTarget& source, RemapDir&) {
  locked_ = static_cast<PrsControl&>(source).locked_;
}

IOResult PrsControl::Load(ILoad& load) {
  while (load.OpenChunk() == IOResult::OK) {
    int32_t on = 0;
    if (load.CurChunkID() == kLockChunk) load.Read(on), locked_ = on != 0;
    load.CloseChunk();
  }
  return load.Status();
}

}  // namespace corvanta
