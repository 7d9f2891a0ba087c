// SPDX-License-Identifier: MIT
// Keys of controllers in scripts.
#pragma once

#include "host/script/bridge_object.h"

namespace corvanta::script {

/// One key of a controller. It goes by its index, so adding and deleting keys moves it. Tangents and a new time need a
/// controller with key records of its own.
class KeyObject final : public HostObject {
 public:
  KeyObject(Control* control, int index) : control_(control), index_(index) {}
  WStr ClassName() const override { return L"Key"; }
  WStr Text() const override;
  void AppendJson(WStr& out) const override;
  bool Get(const WStr& name, Value& out) override;
  bool Set(const WStr& name, const Value& value) override;
  std::vector<WStr> PropertyNames() override;

 private:
  TimeValue Time() const;
  void SetValue(const Value& value);
  void SetTime(const Value& value);
  bool GetTangent(const WStr& name, Value& out) const;
  bool SetTangent(const WStr& name, const Value& value);
  Ref<Control> control_;
  int index_;
};

}  // namespace corvanta::script
