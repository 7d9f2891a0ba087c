// SPDX-License-Identifier: MIT
#include "host/anim/curve_control.h"

#include "host/core/class_desc.h"
#include "host/core/hold.h"

namespace corvanta {

namespace {

enum FunctionID {
  kNumCurves = 0,
  kAddCurve,
  kDeleteCurve,
  kNumPoints,
  kGetPoint,
  kGetTangents,
  kSetPoint,
  kDeletePoint,
  kGetValue
};
constexpr Interface_ID kCurveInterface{kCurveControlId.a, kCurveControlId.b};

const ClassDesc kDesc{L"Curve Control",
                      L"CurveControl",
                      kReferenceTargetSuper,
                      kCurveControlId,
                      L"Controllers",
                      true,
                      [](bool) -> ReferenceTarget* { return new CurveControl; }};
const HostClassRegistrar kRegistrar([] { ClassDirectory::Get().Register(&kDesc); });

FPStatus Refused(FPValue& result, const wchar_t* reason) {
  result = WStr(reason);
  return FPStatus::Failed;
}

}  // namespace

const CurveControl* AsCurveControl(const ReferenceTarget* target) {
  const bool is = target && target->SuperClassID() == kReferenceTargetSuper && target->ClassID() == kCurveControlId &&
                  !target->TestFlag(A_PLACEHOLDER);
  return is ? static_cast<const CurveControl*>(target) : nullptr;
}

int CurveControl::AddCurve(const PointCurve& curve) {
  const HoldScope hold(L"Add Curve");
  RecordState(this, &CurveControl::curves_);
  PointCurve& added = curves_.emplace_back();
  for (const CurvePoint& point : curve.points) InsertPoint(added, point);
  NotifyDependents();
  return NumCurves() - 1;
}

bool CurveControl::DeleteCurve(int i) {
  if (!GetCurve(i)) return false;
  const HoldScope hold(L"Delete Curve");
  RecordState(this, &CurveControl::curves_);
  curves_.erase(curves_.begin() + i);
  NotifyDependents();
  return true;
}

PointCurve* CurveControl::Changing(int curve) {
  if (!GetCurve(curve)) return nullptr;
  RecordState(this, &CurveControl::curves_);
  return &curves_[static_cast<size_t>(curve)];
}

int CurveControl::SetPoint(int curve, const CurvePoint& point) {
  const HoldScope hold(L"Set Curve Point");
  PointCurve* changing = Changing(curve);
  const int index = changing ? InsertPoint(*changing, point) : -1;
  if (index >= 0) NotifyDependents();
  return index;
}

bool CurveControl::DeletePoint(int curve, int point) {
  const PointCurve* present = GetCurve(curve);
  if (!present || point < 0 || point >= static_cast<int>(present->points.size())) return false;
  const HoldScope hold(L"Delete Curve Point");
  PointCurve& changing = *Changing(curve);
  changing.points.erase(changing.points.begin() + point);
  NotifyDependents();
  return true;
}

// Chunk kCurvesChunk: the number of curves, then of each its number of points and their four floats.
IOResult CurveControl::Save(ISave& save) {
  save.BeginChunk(kCurvesChunk);
  save.Write(static_cast<uint32_t>(curves_.size()));
  for (const PointCurve& curve : curves_) {
    save.Write(static_cast<uint32_t>(curve.points.size()));
    save.Write(curve.points.data(), curve.points.size() * sizeof(CurvePoint));
  }
  save.EndChunk();
  return save.Status();
}

IOResult CurveControl::Load(ILoad& load) {
  curves_.clear();
  while (load.OpenChunk() == IOResult::OK) {
    uint32_t count = 0;
    if (load.CurChunkID() == kCurvesChunk && load.ReadCount(count, sizeof(uint32_t)) == IOResult::OK) {
      for (uint32_t i = 0; i < count; ++i) {
        uint32_t points = 0;
        if (load.ReadCount(points, sizeof(CurvePoint)) != IOResult::OK) return load.Status();
        PointCurve& curve = curves_.emplace_back();
        for (uint32_t k = 0; k < points; ++k) {
          CurvePoint point;
          load.Read(point);
          // Sorted in: a damaged file must not bring points that are out of order.
          if (InsertPoint(curve, point) < 0) return load.Fail("a curve's point is not a finite number");
        }
      }
    }
    load.CloseChunk();
  }
  return load.Status();
}

const FPInterfaceDesc& CurveControl::GetDesc() const {
  static const FPInterfaceDesc desc(
      kCurveInterface, L"curves",
      {{kNumCurves, L"NumCurves", FPType::Int},
       {kAddCurve, L"AddCurve", FPType::Index},
       {kDeleteCurve, L"DeleteCurve", FPType::Bool, {{L"curve", FPType::Index}}},
       {kNumPoints, L"NumPoints", FPType::Int, {{L"curve", FPType::Index}}},
       {kGetPoint, L"GetPoint", FPType::Point2, {{L"curve", FPType::Index}, {L"point", FPType::Index}}},
       {kGetTangents, L"GetTangents", FPType::Point2, {{L"curve", FPType::Index}, {L"point", FPType::Index}}},
       {kSetPoint,
        L"SetPoint",
        FPType::Index,
        {{L"curve", FPType::Index}, {L"point", FPType::Point2}, {L"tangents", FPType::Point2, FPValue(Point2{0, 0})}}},
       {kDeletePoint, L"DeletePoint", FPType::Bool, {{L"curve", FPType::Index}, {L"point", FPType::Index}}},
       {kGetValue, L"GetValue", FPType::Float, {{L"curve", FPType::Index}, {L"x", FPType::Float}}}});
  return desc;
}

FPStatus CurveControl::Invoke(int id, TimeValue, FPValue& result, std::span<const FPValue> args) {
  if (id == kNumCurves) return result = NumCurves(), FPStatus::OK;
  if (id == kAddCurve) return result = AddCurve(), FPStatus::OK;
  if (id < kNumCurves || id > kGetValue) return FPStatus::NoSuchFunction;
  const int index = FPArg(args, 0).ToInt(-1);
  const PointCurve* curve = GetCurve(index);
  if (!curve) return Refused(result, L"there is no such curve");
  if (id == kDeleteCurve) return result = DeleteCurve(index), FPStatus::OK;
  if (id == kNumPoints) return result = static_cast<int>(curve->points.size()), FPStatus::OK;
  if (id == kGetValue) return result = ValueAt(*curve, FPArg(args, 1).ToFloat()), FPStatus::OK;
  if (id == kSetPoint) {
    const auto *p = FPArg(args, 1).As<Point2>(), *slopes = FPArg(args, 2).As<Point2>();
    const int at = p && slopes ? SetPoint(index, {p->x, p->y, slopes->x, slopes->y}) : -1;
    return at < 0 ? Refused(result, L"a curve's point needs finite numbers") : (result = at, FPStatus::OK);
  }
  const int i = FPArg(args, 1).ToInt(-1);
  if (i < 0 || i >= static_cast<int>(curve->points.size())) return Refused(result, L"there is no such point");
  const CurvePoint& point = curve->points[static_cast<size_t>(i)];
  if (id == kDeletePoint)
    result = DeletePoint(index, i);
  else
    result = id == kGetPoint ? Point2{point.x, point.y} : Point2{point.inSlope, point.outSlope};
  return FPStatus::OK;
}

}  // namespace corvanta
