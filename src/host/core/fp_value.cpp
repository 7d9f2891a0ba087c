// SPDX-License-Identifier: MIT
#include "host/core/fp_value.h"

#include <cmath>

namespace corvanta {

namespace {
int FloatToInt(float f) {
  if (!(f > -2147483648.0f)) return f == f ? -2147483647 - 1 : 0;
  return f < 2147483648.0f ? static_cast<int>(f) : 2147483647;
}
}  // namespace

float FPValue::ToFloat(float fallback) const {
  if (const auto* f = As<float>()) return *f;
  if (const auto* i = As<int>()) return static_cast<float>(*i);
  if (const auto* b = As<bool>()) return *b ? 1.0f : 0.0f;
  if (const auto* t = As<FPTime>()) return static_cast<float>(t->t);
  return fallback;
}

int FPValue::ToInt(int fallback) const {
  if (const auto* i = As<int>()) return *i;
  if (const auto* f = As<float>()) return FloatToInt(*f);
  if (const auto* b = As<bool>()) return *b ? 1 : 0;
  if (const auto* t = As<FPTime>()) return t->t;
  return fallback;
}

bool FPValue::ToBool(bool fallback) const {
  if (const auto* b = As<bool>()) return *b;
  if (As<int>() || As<float>()) return ToFloat() != 0;
  return fallback;
}

corvanta::Point3 FPValue::ToPoint3() const {
  if (const auto* p = As<corvanta::Point3>()) return *p;
  if (const auto* c = As<corvanta::Colour>()) return {c->r, c->g, c->b};
  return {};
}

FPValue TargetValue(ReferenceTarget* target) { return Ref<ReferenceTarget>(target); }

}  // namespace corvanta
