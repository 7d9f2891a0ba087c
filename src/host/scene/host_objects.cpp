// SPDX-License-Identifier: MIT
// Blocks and descriptors of the point helper, the bone and the host's other scene classes.
#include "host/core/class_desc.h"
#include "host/scene/bone_object.h"
#include "host/scene/point_helper.h"
#include "host/scene/scene.h"

namespace corvanta {

namespace {

constexpr auto World = ParamType::World;
constexpr auto Bool = ParamType::Bool;
constexpr auto Percent = ParamType::Percent;

constexpr ParamRow kPointRows[] = {
    // id                               name                     type   flags        default range  label
    {PointHelper::kSize, L"size", World, kAnimatable, 20.0f, {0, 1e30f}, L"Size"},
    {PointHelper::kCenterMarker, L"centermarker", Bool, kNone, false, {}, L"Center Marker"},
    {PointHelper::kAxisTripod, L"axistripod", Bool, kNone, false, {}, L"Axis Tripod"},
    {PointHelper::kCross, L"cross", Bool, kNone, true, {}, L"Cross"},
    {PointHelper::kBox, L"box", Bool, kNone, false, {}, L"Box"},
    {PointHelper::kConstantScreenSize, L"constantscreensize", Bool, kNone, false, {}, L"Constant Screen Size"},
    {PointHelper::kDrawOnTop, L"drawontop", Bool, kNone, false, {}, L"Draw On Top"},
};

constexpr ParamRow kBoneRows[] = {
    {BoneObject::kWidth, L"width", World, kAnimatable, 4.0f, {0, 1e30f}, L"Width"},
    {BoneObject::kHeight, L"height", World, kAnimatable, 4.0f, {0, 1e30f}, L"Height"},
    {BoneObject::kTaper, L"taper", Percent, kAnimatable, 0.9f, {-100, 100}, L"Taper"},
    {BoneObject::kLength, L"length", World, kAnimatable, 10.0f, {-1e30f, 1e30f}, L"Length"},
    {BoneObject::kSideFins, L"sidefins", Bool, kNone, false, {}, L"Side Fins"},
    {BoneObject::kFrontFin, L"frontfin", Bool, kNone, false, {}, L"Front Fin"},
    {BoneObject::kBackFin, L"backfin", Bool, kNone, false, {}, L"Back Fin"},
};

ReferenceTarget* CreatePoint(bool loading) { return new PointHelper(loading); }
ReferenceTarget* CreateBone(bool loading) { return new BoneObject(loading); }
ReferenceTarget* CreateDerived(bool) { return new DerivedObject; }
ReferenceTarget* CreateLayer(bool) { return new SceneLayer; }
ReferenceTarget* CreateTrackRoot(bool) { return new TrackViewNode; }

const ClassDesc kDescs[] = {
    {L"Point", L"Point", kHelperSuper, PointHelper::kClassId, L"Standard", true, CreatePoint},
    {L"Bone", L"BoneGeometry", kGeomObjectSuper, BoneObject::kClassId, L"Standard", true, CreateBone},
    {L"DerivedObject", L"DerivedObject", kDerivedObjectSuper, DerivedObject::kClassId, L"", false, CreateDerived},
    {L"Layer", L"Layer", kReferenceTargetSuper, SceneLayer::kClassId, L"", false, CreateLayer},
    {L"TrackViewRoot", L"TrackViewRoot", kReferenceTargetSuper, TrackViewNode::kClassId, L"", false, CreateTrackRoot},
};

const HostClassRegistrar kRegistrar([] {
  for (const ClassDesc& desc : kDescs) ClassDirectory::Get().Register(&desc);
});

}  // namespace

const ParamBlockDesc2& PointHelper::BlockDesc() {
  static const ParamBlockDesc2 desc(0, L"parameters", kPointRows);
  return desc;
}

const ParamBlockDesc2& BoneObject::BlockDesc() {
  static const ParamBlockDesc2 desc(0, L"parameters", kBoneRows);
  return desc;
}

PointHelper::PointHelper(bool loading) : BlockOwner(BlockDesc(), loading) {}

Box3 PointHelper::GetLocalBoundBox(TimeValue t, INode*) {
  if (!block_) return {};
  const float h = block_->GetFloat(kSize, t) * 0.5f;
  return {{-h, -h, -h}, {h, h, h}};
}

BoneObject::BoneObject(bool loading) : BlockOwner(BlockDesc(), loading) {}

Box3 BoneObject::GetLocalBoundBox(TimeValue t, INode*) {
  if (!block_) return {};
  const float length = block_->GetFloat(kLength, t);
  const float slim = std::abs(length) * 0.05f;
  const float w = std::max(block_->GetFloat(kWidth, t) * 0.5f, slim);
  const float h = std::max(block_->GetFloat(kHeight, t) * 0.5f, slim);
  Box3 box;
  box += Point3{0, -w, -h};
  box += Point3{length, w, h};
  return box;
}

}  // namespace corvanta
