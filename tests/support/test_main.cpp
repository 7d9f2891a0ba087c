// SPDX-License-Identifier: MIT
// The tests' own main: a QGuiApplication lives for the whole run, since text drawing needs one. Under
// AddressSanitizer leaks are looked for while it lives: afterwards Qt's unloaded platform plug-in looks like one.
#include <gtest/gtest.h>

#include <QGuiApplication>
#include <cstdio>
#include <cstdlib>

#if defined(__SANITIZE_ADDRESS__)
#define TAVRILON_LEAK_CHECK 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define TAVRILON_LEAK_CHECK 1
#endif
#endif

#ifdef TAVRILON_LEAK_CHECK
#include <sanitizer/lsan_interface.h>
#endif

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  QGuiApplication application(argc, argv);
  int result = RUN_ALL_TESTS();
#ifdef TAVRILON_LEAK_CHECK
  if (__lsan_do_recoverable_leak_check() != 0) {
    std::puts("Memory leaks; see above.");
    result = 1;
  }
  std::fflush(nullptr);
  std::_Exit(result);
#endif
  return result;
}
