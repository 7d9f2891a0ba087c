// SPDX-License-Identifier: MIT
#include "host/script/objects.h"

#include "host/script/call_args.h"
#include "host/script/script_error.h"

namespace corvanta::script {

namespace {

size_t g_used = 0;
size_t g_limit = size_t{512} << 20;
ContainerList* g_current = nullptr;

size_t StringBytes(const WStr& text) { return sizeof(StringObject) + text.size() * sizeof(wchar_t); }

}  // namespace

void MemoryUse::Check(size_t bytes) {
  if (bytes > g_limit || g_used > g_limit - bytes)
    FailWith(L"out of memory: strings and arrays of a script may hold %d MB", static_cast<int>(g_limit >> 20));
}
void MemoryUse::Charge(size_t bytes) {
  Check(bytes);
  g_used += bytes;
}
void MemoryUse::Discharge(size_t bytes) { g_used -= bytes; }
size_t MemoryUse::Used() { return g_used; }
size_t MemoryUse::Limit() { return g_limit; }
void MemoryUse::SetLimit(size_t bytes) { g_limit = bytes; }

StringObject::StringObject(WStr t) : text(std::move(t)) { MemoryUse::Charge(StringBytes(text)); }
StringObject::~StringObject() { MemoryUse::Discharge(StringBytes(text)); }

// The anchor is an entry that is always in the ring, so that linking needs no branches.
struct ContainerList::Anchor final : Container {
  void Clear() override {}
};

Container::Container() {
  if (!g_current) return;
  Container* anchor = g_current->anchor_;
  previous_ = anchor;
  next_ = anchor->next_;
  anchor->next_->previous_ = this;
  anchor->next_ = this;
}

Container::~Container() {
  if (!next_) return;
  previous_->next_ = next_;
  next_->previous_ = previous_;
}

ContainerList::ContainerList() : outer_(g_current) {
  g_current = nullptr;
  anchor_ = new Anchor;
  anchor_->previous_ = anchor_->next_ = anchor_;
  g_current = this;
}

ContainerList::~ContainerList() {
  std::vector<Container*> lost;
  while (anchor_->next_ != anchor_) {
    Container* container = anchor_->next_;
    anchor_->next_ = container->next_;
    container->next_->previous_ = anchor_;
    container->next_ = container->previous_ = nullptr;
    container->AddRef();
    lost.push_back(container);
  }
  for (Container* container : lost) container->Clear();
  for (Container* container : lost) container->DropRef();
  g_current = outer_;
  anchor_->next_ = nullptr;
  delete anchor_;
}

ArrayObject::ArrayObject(size_t count) { Resize(count); }
ArrayObject::~ArrayObject() { MemoryUse::Discharge(items_.size() * sizeof(Value)); }

void ArrayObject::Grow(size_t more) {
  if (more > MemoryUse::Limit() / sizeof(Value)) MemoryUse::Check(MemoryUse::Limit() + 1);
  MemoryUse::Charge(more * sizeof(Value));
}
void ArrayObject::Resize(size_t count) {
  if (count > items_.size())
    Grow(count - items_.size());
  else
    MemoryUse::Discharge((items_.size() - count) * sizeof(Value));
  items_.resize(count);
}
void ArrayObject::Append(const Value& value) {
  Grow(1);
  items_.push_back(value);
}
void ArrayObject::Insert(size_t at, const Value& value) {
  Grow(1);
  items_.insert(items_.begin() + static_cast<std::ptrdiff_t>(at), value);
}
void ArrayObject::Erase(size_t at) {
  MemoryUse::Discharge(sizeof(Value));
  items_.erase(items_.begin() + static_cast<std::ptrdiff_t>(at));
}
void ArrayObject::Clear() {
  MemoryUse::Discharge(items_.size() * sizeof(Value));
  const std::vector<Value> gone = std::move(items_);
  items_.clear();
}
Value ClassObject::Call(const CallArgs&) { FailWith(L"%s cannot be made by a call", name_.c_str()); }

Value NativeFunction::Call(const CallArgs& args) {
  const int given = static_cast<int>(args.Count());
  if (given < minArgs_ || (maxArgs_ >= 0 && given > maxArgs_)) {
    WStr wanted = std::to_wstring(minArgs_);
    if (maxArgs_ < 0) wanted = L"at least " + wanted;
    if (maxArgs_ > minArgs_) wanted += L" to " + std::to_wstring(maxArgs_);
    args.WrongCount(wanted);
  }
  for (size_t i = 0; i < args.Count(); ++i)
    if (args[i].Is(Kind::Cell)) args.Wrong(i, L"a value, not a variable with `&`");
  return body_(args);
}

}  // namespace corvanta::script
