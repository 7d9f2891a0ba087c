// SPDX-License-Identifier: MIT
// The root of every class of the scene: identity, class numbers, sub-animatables, interfaces, flags.
#pragma once

#include <cstdint>

#include "host/core/ids.h"
#include "host/core/wstr.h"
#include "host/maths/interval.h"

namespace corvanta {

class Control;
class FPInterface;
class ClassDesc;

/// A 64-bit number for an object, never reused in a process.
using AnimHandle = uint64_t;

/// How a value is shown and typed: Convert for display, UnConvert for storing.
enum class ParamDimension : uint8_t { Plain, Angle, Percent, World };
float ConvertForDisplay(ParamDimension dimension, float value);
float UnConvertFromDisplay(ParamDimension dimension, float value);

enum : uint32_t {
  A_HELD = 0x1000,
  A_WORK1 = 0x2000,
  A_WORK2 = 0x4000,
  /// The object lives only in undo records: it does not resolve by handle and sends nothing.
  A_DORMANT = 0x8000,
  /// A placeholder for an object of an unknown class.
  A_PLACEHOLDER = 0x20000,
  /// Curve colours of a track: X, Y, Z and general.
  A_AXIS_X = 1u << 5,
  A_AXIS_Y = 1u << 6,
  A_AXIS_GENERAL = 1u << 13 << 3,
  A_AXIS_Z = 1u << 31,
};

/// `GetInterface` requests by number.
enum : uint32_t {
  I_KEYCONTROL = 4112,
  I_EASELIST = 4208,
  I_MULTLIST = 4224,
  I_EULERCTRL = 4992,
  I_LOCKED = 5008,
};

class Animatable {
 public:
  Animatable() = default;
  Animatable(const Animatable&) = delete;
  Animatable& operator=(const Animatable&) = delete;
  virtual ~Animatable();

  virtual SClass_ID SuperClassID() const = 0;
  virtual Class_ID ClassID() const = 0;
  /// The name that users see.
  virtual WStr GetClassName() const;

  virtual int NumSubs() const { return 0; }
  virtual Animatable* SubAnim(int i) { return nullptr; }
  virtual WStr SubAnimName(int i) { return {}; }
  virtual bool CanAssignController(int subAnim) { return false; }
  /// Puts a controller into a sub-animatable slot without `Copy`. Sends 250 and REFMSG_CHANGE. False when refused.
  virtual bool AssignController(Control* control, int subAnim) { return false; }
  /// -1 when the sub-animatable is no reference.
  virtual int SubNumToRefNum(int subAnim) { return -1; }
  virtual bool BypassTreeView() const { return false; }
  virtual bool IsKeyable() const { return false; }
  virtual bool IsAnimated() { return false; }
  virtual ParamDimension GetParamDimension(int subAnim) { return ParamDimension::Plain; }

  /// A C++ interface by request number; null when the class has none.
  virtual void* GetInterface(uint32_t request) { return nullptr; }
  /// A published interface of this object by its ID; null when it has none.
  virtual FPInterface* GetInterface(const Interface_ID& id);
  virtual int NumInterfaces() const { return 0; }
  virtual FPInterface* GetInterfaceAt(int i) { return nullptr; }

  bool TestFlag(uint32_t flag) const { return (flags_ & flag) != 0; }
  void SetFlag(uint32_t flag) { flags_ |= flag; }
  void ClearFlag(uint32_t flag) { flags_ &= ~flag; }

  /// The handle of `anim`, given on first demand; 0 for null.
  static AnimHandle GetHandleByAnim(Animatable* anim);
  /// Null after deletion and while the object lives only in undo.
  static Animatable* GetAnimByHandle(AnimHandle handle);

  /// Undo stamp of the object's own plain state, see `Hold::FirstTouch`.
  uint32_t heldStamp = 0;

 private:
  uint32_t flags_ = 0;
  AnimHandle handle_ = 0;
};

}  // namespace corvanta
