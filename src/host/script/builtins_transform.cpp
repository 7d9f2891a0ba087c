// SPDX-License-Identifier: MIT
// Points, quaternions, matrices and the constructors of plain values.
#include <cmath>

#include "host/maths/euler.h"
#include "host/script/builtins.h"
#include "host/script/operators.h"
#include "host/script/script_error.h"

namespace corvanta::script {

namespace {

float Single(const CallArgs& args, size_t i) { return static_cast<float>(args.Number(i)); }
float Angle(const CallArgs& args, size_t i) { return static_cast<float>(args.Number(i) / 57.295779513082320877); }

Value DotProduct(const CallArgs& args) {
  return Value::Float(static_cast<double>(Dot(args.Point3(0), args.Point3(1))));
}
Value CrossProduct(const CallArgs& args) { return Value::Of(Cross(args.Point3(0), args.Point3(1))); }
Value VectorLength(const CallArgs& args) {
  if (args[0].Is(Kind::Point2)) return Value::Float(static_cast<double>(Length(args[0].AsPoint2())));
  return Value::Float(static_cast<double>(Length(args.Point3(0))));
}
Value Distance(const CallArgs& args) {
  return Value::Float(static_cast<double>(Length(args.Point3(1) - args.Point3(0))));
}
Value Normalized(const CallArgs& args) {
  if (args[0].Is(Kind::Quat)) return Value::Of(Normalize(args[0].AsQuat()));
  return Value::Of(Normalize(args.Point3(0)));
}
Value LinearBlend(const CallArgs& args) {
  if (args[0].IsNumber()) return Value::Float(args.Number(0) + (args.Number(1) - args.Number(0)) * args.Number(2));
  return Value::Of(Lerp(args.Point3(0), args.Point3(1), Single(args, 2)));
}
Value SphericalBlend(const CallArgs& args) {
  return Value::Of(SlerpClosest(args.Quat(0), args.Quat(1), Single(args, 2)));
}

Value Inverted(const CallArgs& args) {
  if (args[0].Is(Kind::Quat)) return Value::Of(Inverse(args[0].AsQuat()));
  return Value::Of(Inverse(args.Matrix(0)));
}
Value Orthogonal(const CallArgs& args) { return Value::Of(Orthogonalize(args.Matrix(0))); }
Value Translation(const CallArgs& args) { return Value::Of(TransMatrix(args.Point3(0))); }
Value Scaling(const CallArgs& args) { return Value::Of(ScaleMatrix(args.Point3(0))); }
Value TurnX(const CallArgs& args) { return Value::Of(RotateXMatrix(Angle(args, 0))); }
Value TurnY(const CallArgs& args) { return Value::Of(RotateYMatrix(Angle(args, 0))); }
Value TurnZ(const CallArgs& args) { return Value::Of(RotateZMatrix(Angle(args, 0))); }

// Orders by name, as the axes are applied.
int OrderOf(const CallArgs& args, size_t i) {
  static const wchar_t* const kOrders[] = {L"xyz", L"xzy", L"yzx", L"yxz", L"zxy", L"zyx", L"xyx", L"yzy", L"zxz"};
  if (args.Count() <= i) return kXYZ;
  if (args[i].IsText())
    for (int order = 0; order < 9; ++order)
      if (EqualsNoCase(args[i].AsText(), kOrders[order])) return order;
  const auto number = ToInt(args[i]);
  if (!number || *number < 0 || *number > 8) args.Wrong(i, L"an order such as #xyz");
  return static_cast<int>(*number);
}
Value FromEuler(const CallArgs& args) { return Value::Of(EulerToQuat(args.Point3(0) * kDegToRad, OrderOf(args, 1))); }
Value ToEuler(const CallArgs& args) {
  corvanta::Point3 e;
  QuatToEuler(args.Quat(0), e, OrderOf(args, 1));
  return Value::Of(e * kRadToDeg);
}

Value MakePoint2(const CallArgs& args) { return Value::Of(corvanta::Point2{Single(args, 0), Single(args, 1)}); }
Value MakePoint3(const CallArgs& args) {
  return Value::Of(corvanta::Point3{Single(args, 0), Single(args, 1), Single(args, 2)});
}
Value MakePoint4(const CallArgs& args) {
  return Value::Of(corvanta::Point4{Single(args, 0), Single(args, 1), Single(args, 2), Single(args, 3)});
}
// Four components, or an angle in degrees and an axis.
Value MakeQuat(const CallArgs& args) {
  if (args.Count() == 2) return Value::Of(QuatFromAngAxis({args.Point3(1), Angle(args, 0)}));
  if (args.Count() != 4) args.WrongCount(L"2 (angle and axis) or 4");
  return Value::Of(corvanta::Quat{Single(args, 0), Single(args, 1), Single(args, 2), Single(args, 3)});
}
// Four rows, or 1 for the identity and 0 for all zeros.
Value MakeMatrix3(const CallArgs& args) {
  Matrix3 m;
  if (args.Count() == 1) {
    const int64_t n = args.Int(0);
    if (n != 0 && n != 1) args.Wrong(0, L"0 or 1");
    if (n == 0) m = ScaleMatrix({});
    return Value::Of(m);
  }
  if (args.Count() != 4) args.WrongCount(L"1 or 4");
  for (size_t i = 0; i < 4; ++i) m.row[i] = args.Point3(i);
  return Value::Of(m);
}
Value MakeColor(const CallArgs& args) {
  return Value::Of(corvanta::Colour{Single(args, 0) / 255, Single(args, 1) / 255, Single(args, 2) / 255});
}
Value MakeInterval(const CallArgs& args) { return Value::Of(corvanta::Interval{args.Time(0), args.Time(1)}); }

const BuiltinRow kRows[] = {
    {L"dot", DotProduct, 2, 2},          {L"cross", CrossProduct, 2, 2},   {L"length", VectorLength, 1, 1},
    {L"distance", Distance, 2, 2},       {L"normalize", Normalized, 1, 1}, {L"lerp", LinearBlend, 3, 3},
    {L"slerp", SphericalBlend, 3, 3},    {L"inverse", Inverted, 1, 1},     {L"orthogonalize", Orthogonal, 1, 1},
    {L"transMatrix", Translation, 1, 1}, {L"scaleMatrix", Scaling, 1, 1},  {L"rotateXMatrix", TurnX, 1, 1},
    {L"rotateYMatrix", TurnY, 1, 1},     {L"rotateZMatrix", TurnZ, 1, 1},  {L"eulerToQuat", FromEuler, 1, 2},
    {L"quatToEuler", ToEuler, 1, 2},
};

const BuiltinRow kClasses[] = {
    {L"Undefined", nullptr, 0, 0}, {L"Ok", nullptr, 0, 0},        {L"Boolean", nullptr, 0, 0},
    {L"Integer", nullptr, 0, 0},   {L"Float", nullptr, 0, 0},     {L"Time", nullptr, 0, 0},
    {L"Point2", MakePoint2, 2, 2}, {L"Point3", MakePoint3, 3, 3}, {L"Point4", MakePoint4, 4, 4},
    {L"Quat", MakeQuat, 2, 4},     {L"Color", MakeColor, 3, 3},   {L"Interval", MakeInterval, 2, 2},
    {L"String", nullptr, 0, 0},    {L"Name", nullptr, 0, 0},      {L"Matrix3", MakeMatrix3, 1, 4},
    {L"Array", nullptr, 0, 0},     {L"Function", nullptr, 0, 0},  {L"Class", nullptr, 0, 0},
};

}  // namespace

std::span<const BuiltinRow> TransformBuiltins() { return kRows; }
std::span<const BuiltinRow> ClassBuiltins() { return kClasses; }

}  // namespace corvanta::script
