// SPDX-License-Identifier: MIT
#include "host/io/atomic_file.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <random>

#include "host/io/temp_folder_test.h"

namespace corvanta {
namespace {

constexpr size_t kLimit = 64 << 20;
using Bytes = std::vector<uint8_t>;

Bytes ReadBack(const WStr& path) {
  const FileContents file = ReadWholeFile(path, kLimit);
  EXPECT_EQ(file.error, L"");
  return file.bytes;
}

TEST(AtomicFile, WritesReplacesAndLeavesNothingElse) {
  TempFolder folder;
  const WStr path = folder.File(L"M\x00E4nnchen \x4E2D.tvs");
  for (const Bytes& bytes : {Bytes{1, 2, 3}, Bytes{}, Bytes(3'000'000, 7)}) {
    EXPECT_EQ(WriteFileAtomically(path, bytes), L"");
    EXPECT_EQ(ReadBack(path), bytes);
    EXPECT_EQ(folder.CountEntries(), 1u);
  }
}

TEST(AtomicFile, KeepsPermissionsAndFollowsLinks) {
  TempFolder folder;
  const WStr path = folder.File(L"real.ini"), link = folder.File(L"link.ini");
  ASSERT_EQ(WriteFileAtomically(path, Bytes{1}), L"");
  chmod(ToUtf8(path).c_str(), 0640);
  ASSERT_EQ(symlink("real.ini", ToUtf8(link).c_str()), 0);
  ASSERT_EQ(WriteFileAtomically(link, Bytes{2}), L"");
  struct stat info;
  ASSERT_EQ(lstat(ToUtf8(link).c_str(), &info), 0);
  EXPECT_TRUE(S_ISLNK(info.st_mode));
  ASSERT_EQ(lstat(ToUtf8(path).c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 0777, 0640u);
  EXPECT_EQ(ReadBack(path), Bytes{2});
}

TEST(AtomicFile, ErrorsNameTheFileAndTheReason) {
  TempFolder folder;
  ASSERT_EQ(WriteFileAtomically(folder.File(L"plain"), Bytes{1}), L"");
  const struct {
    WStr path, reason;
  } rows[] = {
      {folder.File(L"none/a.tvs"), L"its folder does not exist"},
      {folder.File(L"plain/a.tvs"), L"not a folder"},
      {FromUtf8(folder.Path().string()), L"it is a folder"},
      {folder.File(WStr(300, L'n')), L"too long"},
      {L"", L"empty"},
      {folder.File(WStr(L"a\0b", 3)), L"zero character"},
  };
  for (const auto& row : rows) {
    const WStr error = WriteFileAtomically(row.path, Bytes{2});
    EXPECT_NE(error.find(row.reason), WStr::npos) << ToUtf8(error);
    EXPECT_NE(error.find(row.path.substr(0, row.path.find(L'\0'))), WStr::npos) << ToUtf8(error);
  }
  EXPECT_EQ(folder.CountEntries(), 1u);
}

TEST(AtomicFile, ReadErrors) {
  TempFolder folder;
  const FileContents none = ReadWholeFile(folder.File(L"none"), kLimit);
  EXPECT_TRUE(none.missing);
  EXPECT_NE(none.error.find(L"no such file"), WStr::npos);
  ASSERT_EQ(WriteFileAtomically(folder.File(L"ten"), Bytes(10, 1)), L"");
  EXPECT_EQ(ReadWholeFile(folder.File(L"ten"), 10).bytes.size(), 10u);
  const FileContents large = ReadWholeFile(folder.File(L"ten"), 9);
  EXPECT_FALSE(large.missing);
  EXPECT_NE(large.error.find(L"larger"), WStr::npos);
  EXPECT_TRUE(large.bytes.empty());
  EXPECT_NE(ReadWholeFile(FromUtf8(folder.Path().string()), 9).error.find(L"folder"), WStr::npos);
  EXPECT_NE(ReadWholeFile(L"/dev/zero", 1000).error.find(L"larger"), WStr::npos);
}

TEST(AtomicFile, DevicesAreWrittenStraight) {
  EXPECT_EQ(WriteFileAtomically(L"/dev/null", Bytes(100, 1)), L"");
  struct stat info;
  ASSERT_EQ(stat("/dev/null", &info), 0);
  EXPECT_TRUE(S_ISCHR(info.st_mode));
  EXPECT_NE(WriteFileAtomically(L"/dev/full", Bytes(100, 1)).find(L"disk is full"), WStr::npos);
}

/// Runs `body` in a child process and gives its exit code, or -1 when a signal ended it.
template <class Body>
int InChild(Body body) {
  const pid_t child = fork();
  if (child == 0) _exit(body());
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(AtomicFile, FullDiskKeepsTheOldFile) {
  TempFolder folder;
  const WStr path = folder.File(L"scene.tvs");
  ASSERT_EQ(WriteFileAtomically(path, Bytes(1000, 1)), L"");
  const Bytes large(200'000, 2);
  const int code = InChild([&] {
    signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{50'000, 50'000};
    setrlimit(RLIMIT_FSIZE, &limit);
    const WStr error = WriteFileAtomically(path, large);
    return error.find(path) == WStr::npos || error.find(L"larger than this system allows") == WStr::npos;
  });
  EXPECT_EQ(code, 0);
  EXPECT_EQ(ReadBack(path), Bytes(1000, 1));
  EXPECT_EQ(folder.CountEntries(), 1u);
}

TEST(AtomicFile, ReadOnlyFolderAndFileAreRefused) {
  TempFolder folder;
  const WStr path = folder.File(L"scene.tvs"), locked = folder.File(L"locked.tvs");
  ASSERT_EQ(WriteFileAtomically(path, Bytes{1}), L"");
  ASSERT_EQ(WriteFileAtomically(locked, Bytes{1}), L"");
  chmod(folder.Path().c_str(), 0777);
  chmod(ToUtf8(locked).c_str(), 0444);
  // The superuser may write anywhere, so the child becomes somebody else first.
  const int code = InChild([&] {
    if (geteuid() == 0 && setuid(65534) != 0) return 77;
    if (WriteFileAtomically(locked, Bytes{2}).find(L"permission") == WStr::npos) return 1;
    return 0;
  });
  if (code == 77) GTEST_SKIP() << "cannot give up the superuser's rights";
  EXPECT_EQ(code, 0);
  chmod(folder.Path().c_str(), 0555);
  chmod(ToUtf8(path).c_str(), 0666);
  EXPECT_EQ(InChild([&] {
              if (geteuid() == 0 && setuid(65534) != 0) return 77;
              return WriteFileAtomically(path, Bytes{2}).find(L"permission") == WStr::npos ? 1 : 0;
            }),
            0);
  EXPECT_EQ(ReadBack(path), Bytes{1});
  EXPECT_EQ(ReadBack(locked), Bytes{1});
}

TEST(AtomicFile, KillAtAnyMomentLeavesAWholeFile) {
  TempFolder folder;
  const WStr path = folder.File(L"scene.tvs");
  const Bytes versions[] = {Bytes(300'000, 1), Bytes(700'000, 2)};
  ASSERT_EQ(WriteFileAtomically(path, versions[0]), L"");
  std::mt19937 rng(17);
  int seen[2] = {0, 0};
  // A busy machine may need more tries before a child gets as far as one write.
  for (int i = 0; i < 40 || (i < 2000 && seen[1] == 0); ++i) {
    const pid_t child = fork();
    if (child == 0)
      for (int k = i + 1;; ++k)
        if (!WriteFileAtomically(path, versions[k % 2]).empty()) _exit(1);
    usleep(rng() % (8000 + 100 * i));
    kill(child, SIGKILL);
    int status = 0;
    waitpid(child, &status, 0);
    ASSERT_TRUE(WIFSIGNALED(status));
    const Bytes now = ReadBack(path);
    ASSERT_TRUE(now == versions[0] || now == versions[1]) << now.size() << " bytes";
    ++seen[now == versions[1]];
  }
  EXPECT_GT(seen[0], 0);
  EXPECT_GT(seen[1], 0) << "no child got as far as one write: the test proves nothing";
}

}  // namespace
}  // namespace corvanta
