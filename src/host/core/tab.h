// SPDX-License-Identifier: MIT
// Counted arrays whose index check raises the host's exceptions.
#pragma once

#include <stdexcept>
#include <vector>

namespace CorvantaSDK::Util {

class TabOutOfRangeException : public std::out_of_range {
 public:
  TabOutOfRangeException() : out_of_range("Invalid index passed into a Corvanta SDK Tab::operator[]") {}
};

class OutOfRangeException : public std::out_of_range {
 public:
  OutOfRangeException() : out_of_range("Argument index out of bounds, passed into a CorvantaSDK::Array::operator[]") {}
};

}  // namespace CorvantaSDK::Util

namespace corvanta {

/// A vector whose `[]` throws `TabOutOfRangeException`. Pointers in it are not owned.
template <class T>
class Tab {
 public:
  Tab() = default;
  Tab(std::initializer_list<T> items) : items_(items) {}

  int Count() const { return static_cast<int>(items_.size()); }
  bool IsEmpty() const { return items_.empty(); }
  void SetCount(int n) { items_.resize(n > 0 ? n : 0); }
  void Reserve(int n) { items_.reserve(n); }
  void Append(const T& item) { items_.push_back(item); }
  void Insert(int at, const T& item) {
    if (at < 0 || at > Count()) throw CorvantaSDK::Util::TabOutOfRangeException();
    items_.insert(items_.begin() + at, item);
  }
  void Delete(int at, int n = 1) {
    if (at < 0 || n < 0 || at + n > Count()) throw CorvantaSDK::Util::TabOutOfRangeException();
    items_.erase(items_.begin() + at, items_.begin() + at + n);
  }
  void Clear() { items_.clear(); }
  T& operator[](int i) { return items_[Checked(i)]; }
  const T& operator[](int i) const { return items_[Checked(i)]; }

  auto begin() { return items_.begin(); }
  auto end() { return items_.end(); }
  auto begin() const { return items_.begin(); }
  auto end() const { return items_.end(); }
  std::vector<T>& Items() { return items_; }
  const std::vector<T>& Items() const { return items_; }
  bool operator==(const Tab&) const = default;

 private:
  size_t Checked(int i) const {
    if (i < 0 || i >= Count()) throw CorvantaSDK::Util::TabOutOfRangeException();
    return static_cast<size_t>(i);
  }
  std::vector<T> items_;
};

}  // namespace corvanta
