// SPDX-License-Identifier: MIT
#include <algorithm>

#include "host/script/builtins.h"
#include "host/script/interpreter.h"
#include "host/script/operators.h"
#include "host/script/script_error.h"

namespace corvanta::script {

namespace {

size_t Place(const CallArgs& args, size_t i, size_t last) {
  const int64_t at = args.Int(i);
  if (at < 1 || at > static_cast<int64_t>(last)) args.Wrong(i, L"an index from 1 to " + std::to_wstring(last));
  return static_cast<size_t>(at - 1);
}

size_t Find(const ArrayObject& items, const Value& wanted) {
  size_t i = 0;
  while (i < items.Count() && !Equal(items[i], wanted)) ++i;
  return i;
}

Value Append(const CallArgs& args) {
  if (args[0].Is(Kind::Object) && args[0].AsObject().Append(args[1])) return args[0];
  args.Array(0).Append(args[1]);
  return args[0];
}
Value AppendIfUnique(const CallArgs& args) {
  ArrayObject& items = args.Array(0);
  const bool fresh = Find(items, args[1]) == items.Count();
  if (fresh) items.Append(args[1]);
  return Value::Bool(fresh);
}
Value InsertItem(const CallArgs& args) {
  ArrayObject& items = args.Array(1);
  items.Insert(Place(args, 2, items.Count() + 1), args[0]);
  return args[1];
}
Value DeleteItem(const CallArgs& args) {
  if (args[0].Is(Kind::Object)) {
    const auto count = args[0].AsObject().Count();
    if (count > 0 && args[0].AsObject().DeleteItem(static_cast<int64_t>(Place(args, 1, static_cast<size_t>(count)))))
      return args[0];
  }
  ArrayObject& items = args.Array(0);
  if (items.Count() == 0) Fail(L"deleteItem: the array is empty");
  items.Erase(Place(args, 1, items.Count()));
  return args[0];
}
Value FindItem(const CallArgs& args) {
  const Value list = args[0].Is(Kind::Object) ? Convert(args[0], ConversionType::Array) : args[0];
  if (!list.Is(Kind::Array)) args.Wrong(0, L"an array");
  const ArrayObject& items = list.AsArray();
  const size_t at = Find(items, args[1]);
  return Value::Int(at == items.Count() ? 0 : static_cast<int64_t>(at + 1));
}
Value Join(const CallArgs& args) {
  ArrayObject& items = args.Array(0);
  const std::vector<Value> more = args.Array(1).items();  // joining an array to itself is fine
  for (const Value& item : more) items.Append(item);
  return args[0];
}
Value Copy(const CallArgs& args) {
  const ArrayObject& items = args.Array(0);
  Value copy = Value::Array(items.Count());
  for (size_t i = 0; i < items.Count(); ++i) copy.AsArray().Set(i, items[i]);
  return copy;
}
Value Reverse(const CallArgs& args) {
  ArrayObject& items = args.Array(0);
  for (size_t i = 0, j = items.Count(); i + 1 < j; ++i) {
    const Value a = items[i], b = items[--j];
    items.Set(i, b);
    items.Set(j, a);
  }
  return args[0];
}

// Merge sort of our own: a script's comparison may contradict itself, which the library's sorts do not survive.
template <class Before>
void MergeSort(std::vector<Value>& items, const Before& before) {
  std::vector<Value> merged(items.size());
  for (size_t width = 1; width < items.size(); width *= 2) {
    for (size_t start = 0; start < items.size(); start += 2 * width) {
      const size_t middle = std::min(start + width, items.size()), end = std::min(start + 2 * width, items.size());
      for (size_t a = start, b = middle, out = start; out < end; ++out) {
        const bool takeSecond = a == middle || (b < end && before(items[b], items[a]));
        merged[out] = items[takeSecond ? b++ : a++];
      }
    }
    items.swap(merged);
  }
}

void PutBack(ArrayObject& array, const std::vector<Value>& items) {
  array.Resize(items.size());
  for (size_t i = 0; i < items.size(); ++i) array.Set(i, items[i]);
}

Value Sort(const CallArgs& args) {
  std::vector<Value> items = args.Array(0).items();
  MergeSort(items, [](const Value& a, const Value& b) { return Compare(a, b) < 0; });
  PutBack(args.Array(0), items);
  return args[0];
}

// The function tells -1, 0 or 1, or any number of that sign.
Value SortBy(const CallArgs& args) {
  std::vector<Value> items = args.Array(0).items();
  Callable& compare = args.Function(1);
  MergeSort(items, [&](const Value& a, const Value& b) {
    const Value pair[] = {a, b};
    const auto order = ToNumber(Interpreter::Current()->Call(compare, pair));
    if (!order) Fail(L"qsort: expected a number from " + compare.Name());
    return *order < 0;
  });
  PutBack(args.Array(0), items);
  return args[0];
}

Value Smallest(const CallArgs& args) {
  const ArrayObject& items = args.Array(0);
  Value best;
  for (size_t i = 0; i < items.Count(); ++i)
    if (i == 0 || Compare(items[i], best) < 0) best = items[i];
  return best;
}
Value Largest(const CallArgs& args) {
  const ArrayObject& items = args.Array(0);
  Value best;
  for (size_t i = 0; i < items.Count(); ++i)
    if (i == 0 || Compare(items[i], best) > 0) best = items[i];
  return best;
}

Value ApplyTo(const CallArgs& args) {
  const std::vector<Value> values = args.Array(1).items();
  return Interpreter::Current()->Call(args.Function(0), values);
}

const BuiltinRow kRows[] = {
    {L"append", Append, 2, 2},
    {L"appendIfUnique", AppendIfUnique, 2, 2},
    {L"insertItem", InsertItem, 3, 3},
    {L"deleteItem", DeleteItem, 2, 2},
    {L"findItem", FindItem, 2, 2},
    {L"join", Join, 2, 2},
    {L"copy", Copy, 1, 1},
    {L"reverse", Reverse, 1, 1},
    {L"sort", Sort, 1, 1},
    {L"qsort", SortBy, 2, 2},
    {L"amin", Smallest, 1, 1},
    {L"amax", Largest, 1, 1},
    {L"apply", ApplyTo, 2, 2},
};

}  // namespace

std::span<const BuiltinRow> ArrayBuiltins() { return kRows; }

}  // namespace corvanta::script
