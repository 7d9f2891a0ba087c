// SPDX-License-Identifier: MIT
// The controller contract: a value at a time, with the interval for which it holds.
#pragma once

#include <cassert>

#include "host/core/out_of_range.h"
#include "host/core/reference.h"
#include "host/maths/matrix3.h"

namespace corvanta {

class INode;
class GraphicsWindow;
struct Box3;

enum GetSetMethod : int { CTRL_RELATIVE = 0, CTRL_ABSOLUTE = 1 };

enum XFormCommand : int { XFORM_MOVE = 0, XFORM_ROTATE = 1, XFORM_SCALE = 2, XFORM_SET = 3 };

/// What a transform tool sends to one node. The packet belongs to the receiver, who may change it in place.
/// Move: `p` is a vector in `tmAxis`. Rotate: `aa` has its axis in `tmAxis`. Scale: `p` in `tmAxis`. Set: `tmAxis` is
/// the wanted matrix in the space where `tmParent` is the parent. `q` always equals the quaternion of `aa`.
struct SetXFormPacket {
  XFormCommand command = XFORM_SET;
  Matrix3 tmParent;
  Matrix3 tmAxis;
  Point3 p;
  AngAxis aa;
  Quat q;
  bool localOrigin = false;

  static SetXFormPacket Move(const Point3& p, const Matrix3& parent = {}, const Matrix3& axis = {});
  static SetXFormPacket Rotate(const AngAxis& aa, bool localOrigin = false, const Matrix3& parent = {},
                               const Matrix3& axis = {});
  static SetXFormPacket Rotate(const Quat& q, bool localOrigin = false, const Matrix3& parent = {},
                               const Matrix3& axis = {});
  static SetXFormPacket Scale(const Point3& s, bool localOrigin = false, const Matrix3& parent = {},
                              const Matrix3& axis = {});
  static SetXFormPacket Set(const Matrix3& wanted, const Matrix3& parent = {});
};

enum class ValueKind : uint8_t { Float, Point3, Point4, Quat, AngAxis, Scale, Matrix3, Packet };

/// A value handed to a controller: which kind, and where it is.
class ValueRef {
 public:
  ValueRef(float& v) : kind_(ValueKind::Float), p_(&v) {}                // NOLINT
  ValueRef(corvanta::Point3& v) : kind_(ValueKind::Point3), p_(&v) {}    // NOLINT
  ValueRef(corvanta::Point4& v) : kind_(ValueKind::Point4), p_(&v) {}    // NOLINT
  ValueRef(corvanta::Quat& v) : kind_(ValueKind::Quat), p_(&v) {}        // NOLINT
  ValueRef(corvanta::AngAxis& v) : kind_(ValueKind::AngAxis), p_(&v) {}  // NOLINT
  ValueRef(ScaleValue& v) : kind_(ValueKind::Scale), p_(&v) {}           // NOLINT
  ValueRef(corvanta::Matrix3& v) : kind_(ValueKind::Matrix3), p_(&v) {}  // NOLINT
  ValueRef(SetXFormPacket& v) : kind_(ValueKind::Packet), p_(&v) {}      // NOLINT

  ValueKind Kind() const { return kind_; }
  bool Is(ValueKind kind) const { return kind_ == kind; }
  float& Float() const { return Get<float>(ValueKind::Float); }
  corvanta::Point3& Point3() const { return Get<corvanta::Point3>(ValueKind::Point3); }
  corvanta::Point4& Point4() const { return Get<corvanta::Point4>(ValueKind::Point4); }
  corvanta::Quat& Quat() const { return Get<corvanta::Quat>(ValueKind::Quat); }
  corvanta::AngAxis& AngAxis() const { return Get<corvanta::AngAxis>(ValueKind::AngAxis); }
  ScaleValue& Scale() const { return Get<ScaleValue>(ValueKind::Scale); }
  corvanta::Matrix3& Matrix3() const { return Get<corvanta::Matrix3>(ValueKind::Matrix3); }
  SetXFormPacket& Packet() const { return Get<SetXFormPacket>(ValueKind::Packet); }

 private:
  template <class T>
  T& Get(ValueKind kind) const {
    assert(kind_ == kind && "a controller was handed a value of another kind");
    return *static_cast<T*>(p_);
  }
  ValueKind kind_;
  void* p_;
};

/// The lock of a track. A class that can be locked answers the request I_LOCKED with this.
class ILockedTrack {
 public:
  virtual ~ILockedTrack() = default;
  bool GetLocked() const { return locked_; }
  /// Undoable.
  void SetLocked(bool on);

 protected:
  bool locked_ = false;

 private:
  friend class LockRestore;
};
using ILockedTrackImp = ILockedTrack;
/// The lock of any object, null when it cannot be locked.
ILockedTrack* GetLockedTrack(Animatable* anim);

/// Request I_EULERCTRL: Euler controllers with three float tracks.
class IEulerControl {
 public:
  virtual ~IEulerControl() = default;
  virtual int GetOrder() const = 0;
  /// Undoable.
  virtual void SetOrder(int order) = 0;
  /// The float controller of axis 0, 1, 2.
  virtual Control* GetAxisController(int axis) = 0;
};

/// Flags of the key operations.
enum : uint32_t { TIME_NOSLIDE = 0x1000, KEYMAP_SELECTED = 1, KEYMAP_FROM_LAST = 8 };

/// Maps one key time to another.
class TimeMap {
 public:
  virtual ~TimeMap() = default;
  virtual TimeValue Map(TimeValue t) const = 0;
};

class Control : public ReferenceTarget {
 public:
  Control* AsControl() override { return this; }

  /// The value at `t`; `valid` is only ever narrowed. Absolute: the controller's own type. Relative: a float or Point3
  /// is added to, a Matrix3 comes in as the parent and leaves as the result. Allocates nothing.
  virtual void GetValue(TimeValue t, ValueRef value, Interval& valid, GetSetMethod method = CTRL_ABSOLUTE) = 0;
  /// Writes at `t` by the rules of animate mode. Transform controllers always take a packet. Undoable.
  virtual void SetValue(TimeValue t, ValueRef value, bool commit = true, GetSetMethod method = CTRL_ABSOLUTE) = 0;
  /// Takes over the value of the controller that this one replaces. Called by user-level assigns only.
  virtual void Copy(Control* from) {}
  /// Before the parent of the controlled node changes with its place kept. False: the host sets the matrix afterwards.
  virtual bool ChangeParents(TimeValue t, const Matrix3& oldParent, const Matrix3& newParent, const Matrix3& tm) {
    return false;
  }

  virtual Control* GetPositionController() { return nullptr; }
  virtual Control* GetRotationController() { return nullptr; }
  virtual Control* GetScaleController() { return nullptr; }
  virtual bool SetPositionController(Control* c) { return false; }
  virtual bool SetRotationController(Control* c) { return false; }
  virtual bool SetScaleController(Control* c) { return false; }
  virtual Control* GetXController() { return nullptr; }
  virtual Control* GetYController() { return nullptr; }
  virtual Control* GetZController() { return nullptr; }

  virtual bool IsLeaf() const { return true; }
  virtual bool IsReplaceable() const { return true; }
  virtual bool CanOverwrite() const { return true; }
  virtual bool InheritsPos() const { return true; }
  virtual uint32_t GetInheritanceFlags() const { return 0; }

  // Keys. Index -1 and false where there are none.
  virtual int NumKeys() const { return 0; }
  virtual TimeValue GetKeyTime(int i) const { return 0; }
  virtual int GetKeyIndex(TimeValue t) const { return -1; }
  bool IsKeyAtTime(TimeValue t) const { return GetKeyIndex(t) >= 0; }
  /// Time of the nearest key after (`forward`) or before `t`.
  virtual bool GetNextKeyTime(TimeValue t, bool forward, TimeValue& next) const;
  virtual Interval GetKeyRange() const;
  virtual void AddNewKey(TimeValue t) {}
  virtual void DeleteKeyAtTime(TimeValue t) {}
  virtual void DeleteKeys(bool selectedOnly) {}
  virtual void SelectKeys(const Interval& range, bool on) {}
  virtual bool IsKeySelected(int i) const { return false; }
  virtual void MapKeys(const TimeMap& map, uint32_t flags) {}
  virtual void DeleteTime(const Interval& range, uint32_t flags) {}
  virtual void ReverseTime(const Interval& range, uint32_t flags) {}
  virtual void CopyKeysFromTime(TimeValue from, TimeValue to) {}
  virtual ORT GetORT(bool after) const { return ORT::Constant; }
  virtual void SetORT(ORT ort, bool after) {}

  // Drawing by controllers of selected nodes.
  virtual void Display(TimeValue t, INode* node, GraphicsWindow& view) {}
  virtual void GetWorldBoundBox(TimeValue t, INode* node, Box3& box) {}
  virtual void MouseCycleStarted(TimeValue t) {}
};

/// Animate mode: with it on, writes make keys.
void AnimateOn();
void AnimateOff();
/// While suspended `Animating` is false. Nests by counter.
void SuspendAnimate();
void ResumeAnimate();
bool Animating();
/// Animate on and not suspended for its lifetime; afterwards both are as they were.
class AnimateScope {
 public:
  AnimateScope();
  ~AnimateScope();
  AnimateScope(const AnimateScope&) = delete;

 private:
  bool wasOn_;
  int wasSuspended_;
};

Control* NewDefaultFloatController();
Control* NewDefaultPoint3Controller();
Control* NewDefaultPositionController();
Control* NewDefaultRotationController();
Control* NewDefaultScaleController();
Control* NewDefaultMatrix3Controller();

/// The user-level assign: `Copy`, then AssignController. False when refused; `control` then belongs to the caller.
bool AssignWithCopy(Animatable* owner, int subAnim, Control* control);

}  // namespace corvanta
