// SPDX-License-Identifier: MIT
// The objects behind values that do not fit inside them, and the accounting of the memory that scripts take.
#pragma once

#include <span>
#include <vector>

#include "host/script/value.h"

namespace corvanta::script {

class CallArgs;

/// Bytes that all living strings and arrays of scripts hold, and the limit that no script passes.
class MemoryUse {
 public:
  /// Throws `ScriptError` when `bytes` more would pass the limit; changes nothing then.
  static void Charge(size_t bytes);
  static void Discharge(size_t bytes);
  static size_t Used();
  static size_t Limit();
  static void SetLimit(size_t bytes);
  /// Throws when a text or an array of `bytes` could not be kept; asked while it is being built.
  static void Check(size_t bytes);
};

class StringObject final : public HeapObject {
 public:
  explicit StringObject(WStr text);
  ~StringObject() override;
  const WStr text;
};

class MatrixObject final : public HeapObject {
 public:
  explicit MatrixObject(const Matrix3& m) : matrix(m) {}
  const Matrix3 matrix;
};

/// An object that holds values and can therefore be part of a circle. The session that made it breaks the
/// circles that are left when it ends.
class Container : public HeapObject {
 public:
  Container();
  ~Container() override;
  /// Drops the held values.
  virtual void Clear() = 0;

 private:
  friend class ContainerList;
  Container* previous_ = nullptr;
  Container* next_ = nullptr;
};

/// The containers made while the list was current, newest first. Lists nest: a script that runs a script.
class ContainerList {
 public:
  ContainerList();
  ContainerList(const ContainerList&) = delete;
  ContainerList& operator=(const ContainerList&) = delete;
  /// Clears what is left: a value that lives longer is empty from then on.
  ~ContainerList();

 private:
  friend class Container;
  struct Anchor;
  Anchor* anchor_;
  ContainerList* outer_;
};

class ArrayObject final : public Container {
 public:
  explicit ArrayObject(size_t count);
  ~ArrayObject() override;
  size_t Count() const { return items_.size(); }
  const Value& operator[](size_t i) const { return items_[i]; }
  void Set(size_t i, const Value& value) { items_[i] = value; }
  /// New places are undefined. Throws when memory does not suffice.
  void Resize(size_t count);
  void Append(const Value& value);
  void Insert(size_t at, const Value& value);
  void Erase(size_t at);
  const std::vector<Value>& items() const { return items_; }
  void Clear() override;

 private:
  void Grow(size_t more);
  std::vector<Value> items_;
};

class CellObject final : public Container {
 public:
  Value value;
  void Clear() override { value = Value(); }
};

/// Anything that can be called.
class Callable : public Container {
 public:
  virtual const WStr& Name() const = 0;
  virtual Value Call(const CallArgs& args) = 0;
  void Clear() override {}
};

/// A class by name: `classOf` gives one, a call makes an instance.
class ClassObject : public Callable {
 public:
  explicit ClassObject(WStr name) : name_(std::move(name)) {}
  const WStr& Name() const override { return name_; }
  /// Fails: this class has no constructor. Classes that can be made override it.
  Value Call(const CallArgs& args) override;

 private:
  WStr name_;
};

/// A thing of the host behind a handle. Names come in lower case. The functions answer false for "no such
/// thing" and throw `ScriptError` for everything else that is wrong.
class HostObject : public HeapObject {
 public:
  virtual WStr ClassName() const = 0;
  virtual WStr Text() const = 0;
  virtual void AppendJson(WStr& out) const = 0;
  virtual bool SameAs(const HostObject& b) const { return this == &b; }
  virtual bool Get(const WStr& name, Value& out) { return false; }
  virtual bool Set(const WStr& name, const Value& value) { return false; }
  virtual bool GetAt(const Value& key, Value& out) { return false; }
  virtual bool SetAt(const Value& key, const Value& value) { return false; }
  /// Items that `for x in` walks and `.count` tells, or -1.
  virtual int64_t Count() { return -1; }
  /// Item `i` from 0, with `Count() >= 0`.
  virtual Value Item(int64_t i) { return {}; }
  // Lists that scripts can change with `append` and `deleteItem`; `i` from 0.
  virtual bool Append(const Value& value) { return false; }
  virtual bool DeleteItem(int64_t i) { return false; }
  /// Names for a message that tells what there is; may be long or empty.
  virtual std::vector<WStr> PropertyNames() { return {}; }
};

/// A function of the program's own. `Body` gets the arguments and gives the result.
class NativeFunction final : public Callable {
 public:
  using Body = Value (*)(const CallArgs&);
  NativeFunction(WStr name, Body body, int minArgs, int maxArgs)
      : name_(std::move(name)), body_(body), minArgs_(minArgs), maxArgs_(maxArgs) {}
  const WStr& Name() const override { return name_; }
  /// Checks the number of arguments first; `maxArgs` -1 means any.
  Value Call(const CallArgs& args) override;

 private:
  WStr name_;
  Body body_;
  int minArgs_, maxArgs_;
};

}  // namespace corvanta::script
