// SPDX-License-Identifier: MIT
#include "host/script/text.h"

#include <charconv>
#include <cmath>

#include "host/script/objects.h"
#include "host/script/operators.h"
#include "host/script/script_error.h"

namespace corvanta::script {

namespace {

constexpr int kTextDepth = 32;
constexpr int kJsonDepth = 128;

// The shortest digits: of the single value when `f` is one, else of the double.
std::string Digits(double f) {
  if (f == 0) return "0";  // no minus zero in texts
  if (!std::isfinite(f)) return std::isnan(f) ? "nan" : f > 0 ? "inf" : "-inf";
  char buffer[40];
  const auto single = static_cast<float>(f);
  const auto end = static_cast<double>(single) == f ? std::to_chars(buffer, buffer + sizeof buffer, single)
                                                    : std::to_chars(buffer, buffer + sizeof buffer, f);
  return std::string(buffer, end.ptr);
}

WStr Widen(const std::string& ascii) { return WStr(ascii.begin(), ascii.end()); }

WStr Quoted(const WStr& text) {
  WStr out = L"\"";
  for (const wchar_t c : text) {
    if (c == L'"' || c == L'\\') out += L'\\';
    if (c == L'\n')
      out += L"\\n";
    else if (c == L'\t')
      out += L"\\t";
    else if (c == L'\r')
      out += L"\\r";
    else
      out += c;
  }
  return out + L"\"";
}

bool IsPlainName(const WStr& text) {
  for (const wchar_t c : text)
    if (!(c == L'_' || (c >= L'0' && c <= L'9') || (c >= L'a' && c <= L'z') || (c >= L'A' && c <= L'Z') || c > 127))
      return false;
  return !text.empty();
}

WStr PointText(const float* v, int count) {
  WStr out = L"[";
  for (int i = 0; i < count; ++i) out += (i ? L"," : L"") + Widen(Digits(v[i]));
  return out + L"]";
}

// "(quat 0 0 0 1)": a call that makes the value again.
WStr CallText(const wchar_t* name, const float* v, int count, float factor) {
  WStr out = L"(" + WStr(name);
  for (int i = 0; i < count; ++i) out += L" " + Widen(Digits(v[i] * factor));
  return out + L")";
}

class TextWriter {
 public:
  explicit TextWriter(size_t limit) : limit_(limit) {}
  void Write(const Value& value, int depth) {
    if (out.size() > limit_) return;
    MemoryUse::Check(out.size() * sizeof(wchar_t));
    switch (value.kind()) {
      case Kind::Unset:
      case Kind::Undefined:
        out += L"undefined";
        break;
      case Kind::Ok:
        out += L"ok";
        break;
      case Kind::Bool:
        out += value.AsBool() ? L"true" : L"false";
        break;
      case Kind::Int:
        out += std::to_wstring(value.AsInt());
        break;
      case Kind::Float:
        out += FloatText(value.AsFloat());
        break;
      case Kind::Time:
        out += TimeText(value.AsTime());
        break;
      case Kind::Point2:
      case Kind::Point3:
      case Kind::Point4:
        out += PointText(value.Components(), ComponentCount(value.kind()));
        break;
      case Kind::Quat:
        out += CallText(L"quat", value.Components(), 4, 1);
        break;
      case Kind::Colour:
        out += CallText(L"color", value.Components(), 3, 255);
        break;
      case Kind::Interval:
        WriteInterval(value.AsInterval());
        break;
      case Kind::String:
        out += Quoted(value.AsText());
        break;
      case Kind::Name:
        out += L"#" + (IsPlainName(value.AsText()) ? value.AsText() : L"'" + value.AsText() + L"'");
        break;
      case Kind::Matrix:
        WriteMatrix(value.AsMatrix());
        break;
      case Kind::Array:
        WriteArray(value.AsArray(), depth);
        break;
      case Kind::Callable:
        out += value.AsCallable().Name() + L"()";
        break;
      case Kind::Class:
        out += value.AsClass().Name();
        break;
      case Kind::Object:
        out += value.AsObject().Text();
        break;
      case Kind::Cell:
        Write(value.AsCell().value, depth + 1);
        break;
    }
  }
  WStr out;

 private:
  void WriteInterval(const Interval& i) { out += L"(interval " + TimeText(i.start) + L" " + TimeText(i.end) + L")"; }
  void WriteMatrix(const Matrix3& m) {
    out += L"(matrix3";
    for (const Point3& row : m.row) out += L" " + PointText(&row.x, 3);
    out += L")";
  }
  void WriteArray(const ArrayObject& array, int depth) {
    if (depth >= kTextDepth) {
      out += L"#(...)";
      return;
    }
    out += L"#(";
    for (size_t i = 0; i < array.Count() && out.size() <= limit_; ++i) {
      if (i) out += L", ";
      Write(array[i], depth + 1);
    }
    out += L")";
  }
  size_t limit_;
};

void AppendNumbers(WStr& out, const float* v, int count, float factor = 1) {
  out += L'[';
  for (int i = 0; i < count; ++i) {
    if (i) out += L',';
    AppendJsonNumber(out, static_cast<double>(v[i] * factor));
  }
  out += L']';
}

void AppendJson(WStr& out, const Value& value, int depth) {
  MemoryUse::Check(out.size() * sizeof(wchar_t));
  switch (value.kind()) {
    case Kind::Unset:
    case Kind::Undefined:
    case Kind::Ok:
      out += L"null";
      break;
    case Kind::Bool:
      out += value.AsBool() ? L"true" : L"false";
      break;
    case Kind::Int:
      out += std::to_wstring(value.AsInt());
      break;
    case Kind::Float:
      AppendJsonNumber(out, value.AsFloat());
      break;
    case Kind::Time:
      AppendJsonNumber(out, FramesFromTicks(value.AsTime()));
      break;
    case Kind::Point2:
    case Kind::Point3:
    case Kind::Point4:
    case Kind::Quat:
      AppendNumbers(out, value.Components(), ComponentCount(value.kind()));
      break;
    case Kind::Colour:
      AppendNumbers(out, value.Components(), 3, 255);
      break;
    case Kind::Interval:
      out += L'[';
      AppendJsonNumber(out, FramesFromTicks(value.AsInterval().start));
      out += L',';
      AppendJsonNumber(out, FramesFromTicks(value.AsInterval().end));
      out += L']';
      break;
    case Kind::String:
    case Kind::Name:
      AppendJsonString(out, value.AsText());
      break;
    case Kind::Matrix:
      for (int i = 0; i < 4; ++i) {
        out += i ? L',' : L'[';
        AppendNumbers(out, &value.AsMatrix().row[i].x, 3);
      }
      out += L']';
      break;
    case Kind::Array: {
      if (depth >= kJsonDepth) Fail(L"toJson: the array is nested too deeply or holds itself");
      out += L'[';
      const ArrayObject& array = value.AsArray();
      for (size_t i = 0; i < array.Count(); ++i) {
        if (i) out += L',';
        AppendJson(out, array[i], depth + 1);
      }
      out += L']';
      break;
    }
    case Kind::Callable:
    case Kind::Class:
      AppendJsonString(out, value.AsCallable().Name());
      break;
    case Kind::Object:
      value.AsObject().AppendJson(out);
      break;
    case Kind::Cell:
      AppendJson(out, value.AsCell().value, depth + 1);
      break;
  }
}

}  // namespace

WStr FloatText(double f) {
  std::string digits = Digits(f);
  if (digits.find_first_of(".en") == std::string::npos) digits += ".0";
  return Widen(digits);
}

WStr TimeText(TimeValue t) { return Widen(Digits(FramesFromTicks(t))) + L"f"; }

WStr PlainText(const Value& value) {
  if (value.Is(Kind::String)) return value.AsText();
  return QuotedText(value);
}

WStr QuotedText(const Value& value, size_t limit) {
  TextWriter writer(limit);
  writer.Write(value, 0);
  if (writer.out.size() > limit) {
    writer.out.resize(limit);
    writer.out += L"...";
  }
  return std::move(writer.out);
}

WStr ToJson(const Value& value) {
  WStr out;
  AppendJson(out, value, 0);
  return out;
}

void AppendJsonString(WStr& out, std::wstring_view text) {
  out += L'"';
  for (const wchar_t c : text) {
    if (c == L'"' || c == L'\\') {
      out += L'\\';
      out += c;
    } else if (c == L'\n') {
      out += L"\\n";
    } else if (c < 32) {
      out += Format(L"\\u%04x", static_cast<int>(c));
    } else {
      out += c;
    }
  }
  out += L'"';
}

void AppendJsonNumber(WStr& out, double f) { out += std::isfinite(f) ? Widen(Digits(f)) : L"null"; }

}  // namespace corvanta::script
