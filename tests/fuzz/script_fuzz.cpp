// SPDX-License-Identifier: MIT
// Script text of any bytes ends with a value or an error, in bounded time, stack and memory, and leaves nothing behind.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "host/script/interpreter.h"

using namespace corvanta;
using namespace corvanta::script;

namespace {

/// Takes what scripts send, so that contexts, node paths and macros are reached.
class Host final : public ScriptHost {
 public:
  Value FindNodes(const WStr& pattern, bool) override { return pattern.size() % 2 ? Value::Int(1) : Value(); }
  GlobalUse FindGlobal(const WStr& name) override {
    return name == L"slidertime" ? GlobalUse::Writable : GlobalUse::None;
  }
  Value GetGlobal(const WStr&) override { return Value::Time(0); }
  void BeginUndo() override { ++depth_; }
  void AcceptUndo(const WStr&) override { --depth_; }
  void DefineMacro(const MacroDefinition& macro) override { macros.push_back(macro.body); }
  std::vector<WStr> macros;
  bool IsClosed() const { return depth_ == 0; }

 private:
  int depth_ = 0;
};

void Require(bool holds) {
  if (!holds) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  MemoryUse::SetLimit(size_t{32} << 20);
  const size_t before = MemoryUse::Used();
  {
    Host host;
    Interpreter vm(host, {20'000, 1000});
    const WStr text = FromUtf8(std::string_view(reinterpret_cast<const char*>(data), size));
    const RunResult result = vm.Run(text, L"fuzz");
    Require(host.IsClosed());
    Require(result.ok || !result.report.empty());
    // A macro that was declared has been parsed as a part of its text; alone it must end as well.
    for (const WStr& body : std::vector<WStr>(host.macros)) vm.Run(body, L"macro");
  }
  Require(MemoryUse::Used() == before);
  return 0;
}
