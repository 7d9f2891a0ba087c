// SPDX-License-Identifier: MIT
// Whatever the text, a run ends with a value or an error: no crash, no endless run, no exhausted stack or memory.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <thread>

#include "host/script/fake_host_test.h"

namespace corvanta::script {
namespace {

/// A smaller memory limit while it lives.
class SmallMemory {
 public:
  SmallMemory() : before_(MemoryUse::Limit()) { MemoryUse::SetLimit(size_t{16} << 20); }
  ~SmallMemory() { MemoryUse::SetLimit(before_); }

 private:
  size_t before_;
};

RunResult RunBounded(const WStr& text) {
  FakeHost host;
  Interpreter vm(host, {20'000, 1000});
  RunResult result = vm.Run(text, L"test");
  if (!result.ok) {
    EXPECT_FALSE(result.message.empty());
  }
  result.value = Value();
  return result;
}

std::vector<WStr> ValidScripts() {
  std::vector<WStr> texts;
  for (const auto& entry : std::filesystem::directory_iterator(TAVRILON_SOURCE_DIR "/tests/host/script/cvs")) {
    std::ifstream file(entry.path());
    std::stringstream bytes;
    bytes << file.rdbuf();
    texts.push_back(FromUtf8(bytes.str()));
  }
  return texts;
}

WStr Repeated(const wchar_t* part, int count) {
  WStr text;
  for (int i = 0; i < count; ++i) text += part;
  return text;
}

TEST(ScriptRobustness, DeepAndLongTextsEndInAnError) {
  constexpr int kMany = 100'000;
  const WStr texts[] = {
      Repeated(L"(", kMany),
      Repeated(L"#(", kMany),
      Repeated(L"[", kMany),
      Repeated(L"- ", kMany) + L"1",
      Repeated(L"not ", kMany) + L"true",
      L"1" + Repeated(L" + 1", kMany),
      L"1" + Repeated(L"^1", kMany),
      L"a" + Repeated(L".a", kMany),
      L"a" + Repeated(L"[1]", kMany),
      L"1" + Repeated(L" as string", kMany),
      Repeated(L"if true then ", kMany) + L"1",
      Repeated(L"fn f = ", kMany) + L"1",
      Repeated(L"a = ", kMany) + L"1",
      Repeated(L"try (", kMany),
      Repeated(L"case 1 of (1: ", kMany),
      Repeated(L"undo on ", kMany) + L"1",
      Repeated(L"for i = 1 to 2 do ", kMany) + L"1",
      L"f " + Repeated(L"a:1 ", kMany),
      L"fn f " + Repeated(L"a ", kMany) + L"= 1",
      Repeated(L"local a = ", kMany) + L"1",
      L"print " + Repeated(L"(print ", kMany),
      Repeated(L"throw ", kMany) + L"1",
      Repeated(L"return ", kMany) + L"1",
      L"f" + Repeated(L"()", kMany),
  };
  for (const WStr& text : texts) {
    SCOPED_TRACE(ToUtf8(text.substr(0, 20)));
    EXPECT_FALSE(RunBounded(text).ok);
  }
  // Long but flat is fine.
  EXPECT_TRUE(RunBounded(Repeated(L"a = 1\n", kMany)).ok);
  EXPECT_TRUE(RunBounded(L"a = 1" + Repeated(L" + 1", 1000)).ok);
}

TEST(ScriptRobustness, RunsAreBoundedInSteps) {
  for (const wchar_t* text : {L"while true do ()", L"do () while true", L"for i = 1 to 1e18 do ()",
                              L"fn f = f(); while true do try (f()) catch ()", L"a = #(1); for x in a do append a x"})
    EXPECT_TRUE(RunBounded(text).interrupted) << ToUtf8(text);
}

TEST(ScriptRobustness, MemoryIsBounded) {
  const SmallMemory small;
  const size_t before = MemoryUse::Used();
  for (const wchar_t* text : {
           L"s = \"x\"; while true do s = s + s",
           L"a = #(); a[1000000000000] = 1",
           L"a = #(1,1); while true do a = a + a",
           L"a = #(1,1); while true do (a = #(a, a); print a)",
           L"a = #(1); for i = 1 to 60 do a = #(a, a)\ntoJson a",
           L"s = \"aaaaaaaaaaaaaaaa\"; for i = 1 to 12 do s += s\nsubstituteString s \"a\" s",
           L"s = \"aaaaaaaaaaaaaaaa\"; for i = 1 to 12 do s += s\njoinStrings (s as array) s",
       }) {
    const RunResult result = RunBounded(text);
    EXPECT_FALSE(result.ok) << ToUtf8(text);
    EXPECT_EQ(result.message.substr(0, 13), L"out of memory") << ToUtf8(text) << ToUtf8(result.message);
    EXPECT_EQ(MemoryUse::Used(), before) << ToUtf8(text);
  }
}

TEST(ScriptRobustness, RecursionThroughEveryDoorEnds) {
  for (const wchar_t* text : {L"fn f x = f x; f 1", L"fn f x y = (qsort #(1, 2) f; 0); f 1 2",
                              L"fn f x = apply f #(x); f 1", L"s = \"execute s\"; execute s", L"fn f k:(f()) = 1; f()"})
    EXPECT_FALSE(RunBounded(text).ok) << ToUtf8(text);
}

TEST(ScriptRobustness, TruncatedAndScrambledScripts) {
  const SmallMemory small;
  std::mt19937 rng(11);
  for (const WStr& text : ValidScripts()) {
    for (size_t cut = 0; cut < text.size(); cut += 1 + rng() % 23) RunBounded(text.substr(0, cut));
    for (int i = 0; i < 60; ++i) {
      WStr scrambled = text;
      for (int edits = 0; edits < 6; ++edits) {
        const size_t at = rng() % scrambled.size();
        switch (rng() % 3) {
          case 0:
            scrambled.erase(at, 1 + rng() % 8);
            break;
          case 1:
            scrambled.insert(at, 1, L"()[]#\"'$.&,:;=-+*\\\n@^0aF"[rng() % 24]);
            break;
          default:
            scrambled.insert(at, text.substr(rng() % text.size(), rng() % 30));
            break;
        }
      }
      RunBounded(scrambled);
    }
  }
}

TEST(ScriptRobustness, RandomBytes) {
  const SmallMemory small;
  std::mt19937 rng(5);
  for (int i = 0; i < 3000; ++i) {
    std::string bytes(rng() % 200, '\0');
    for (char& c : bytes) c = static_cast<char>(i % 2 ? rng() : 32 + rng() % 96);
    RunBounded(FromUtf8(bytes));
  }
}

TEST(ScriptRobustness, InterruptEndsARunAndTryDoesNotCatchIt) {
  FakeHost host;
  Interpreter vm(host);
  std::thread other([] {
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    InterruptScripts();
  });
  const RunResult result = vm.Run(L"while true do try (while true do ()) catch ()", L"test");
  other.join();
  EXPECT_TRUE(result.interrupted);
  EXPECT_EQ(result.message, L"interrupted");
  EXPECT_TRUE(vm.Run(L"for i = 1 to 10000 do ()", L"test").ok);  // the next run is not touched
}

}  // namespace
}  // namespace corvanta::script
