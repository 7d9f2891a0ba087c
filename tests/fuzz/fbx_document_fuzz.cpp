// SPDX-License-Identifier: MIT
// Any bytes as an FBX file, binary or ASCII: refused with an error, or a tree whose arrays are read, each or with an
// error. What was read is written and read again: a second round gives the same bytes.
#include <cstdint>
#include <cstdlib>

#include "plugin/fbx/format/document.h"
#include "plugin/fbx/format/document_writer.h"

using namespace tavrilon::fbx;

namespace {

void Require(bool holds) {
  if (!holds) std::abort();
}

template <class T>
void CopyArray(PropertyView property, FbxDocumentWriter& out) {
  std::vector<T> values;
  const bool good = property.Read(values);
  Require(values.size() == (good ? property.Count() : 0));
  out.Array(std::span<const T>(values));
}

void Copy(PropertyView property, FbxDocumentWriter& out) {
  switch (property.Type()) {
    case PropertyType::Bool:
      return out.Bool(property.AsInt() != 0);
    case PropertyType::Int16:
      return out.Int16(static_cast<int16_t>(property.AsInt()));
    case PropertyType::Int32:
      return out.Int(static_cast<int32_t>(property.AsInt()));
    case PropertyType::Int64:
      return out.Long(property.AsInt());
    case PropertyType::Float:
      return out.Float(static_cast<float>(property.AsDouble()));
    case PropertyType::Double:
      return out.Double(property.AsDouble());
    case PropertyType::String:
      return out.Text(property.AsText());
    case PropertyType::Raw: {
      const std::string_view text = property.AsText();
      return out.Raw({reinterpret_cast<const uint8_t*>(text.data()), text.size()});
    }
    case PropertyType::BoolArray:
    case PropertyType::Int32Array:
      return CopyArray<int32_t>(property, out);
    case PropertyType::Int64Array:
      return CopyArray<int64_t>(property, out);
    case PropertyType::FloatArray:
      return CopyArray<float>(property, out);
    case PropertyType::DoubleArray:
      return CopyArray<double>(property, out);
  }
}

void Copy(RecordView::Range records, FbxDocumentWriter& out) {
  for (const RecordView record : records) {
    Require(!record.Place().empty());
    out.Begin(record.Name());
    for (size_t i = 0; i < record.NumProperties(); ++i) Copy(record.Property(i), out);
    Copy(record.Children(), out);
    out.End();
  }
}

std::vector<uint8_t> Copy(const FbxDocument& document) {
  FbxDocumentWriter out(document.Version());
  Copy(document.Records(), out);
  return out.Finish();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  ReadLimits limits;
  limits.inflatedBytes = 1 << 16;
  FbxDocument first, second;
  if (!first.Parse({data, data + size}, "fuzz.fbx", limits)) {
    Require(!first.GetStatus().IsGood() && first.NumRecords() == 0);
    return 0;
  }
  // Memory of the tree before arrays are read; the constant is what the smallest vectors take.
  Require(first.MemoryUsed() < 40 * size + 1000);
  const std::vector<uint8_t> copy = Copy(first);
  Require(!copy.empty() && second.Parse(copy, "copy.fbx"));
  Require(second.NumRecords() == first.NumRecords());
  Require(Copy(second) == copy && second.GetStatus().IsGood());
  return 0;
}
