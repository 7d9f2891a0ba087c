// SPDX-License-Identifier: MIT
#include "host/io/atomic_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <memory>
#include <string>
#include <system_error>

namespace corvanta {
namespace {

/// A file descriptor that closes itself.
class Descriptor {
 public:
  explicit Descriptor(int fd) : fd_(fd) {}
  ~Descriptor() { Close(); }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  explicit operator bool() const { return fd_ >= 0; }
  int Get() const { return fd_; }
  /// 0, or the error number. Some file systems tell a full disk only here.
  int Close() {
    const int result = fd_ >= 0 ? close(fd_) : 0;
    fd_ = -1;
    return result == 0 ? 0 : errno;
  }

 private:
  int fd_;
};

struct Advice {
  int code;
  const wchar_t* text;
};
constexpr Advice kAdvice[] = {
    {ENOSPC, L"the disk is full; free some space and try again"},
    {EDQUOT, L"your disk quota is used up; free some space and try again"},
    {EFBIG, L"the file would be larger than this system allows"},
    {EROFS, L"the disk is read-only; choose another folder"},
    {EACCES, L"permission denied; check the rights of the file and its folder"},
    {EPERM, L"permission denied; check the rights of the file and its folder"},
    {ENOTDIR, L"a part of the path is not a folder"},
    {EISDIR, L"it is a folder"},
    {ENAMETOOLONG, L"the path is too long"},
    {ELOOP, L"links lead in a circle"},
};

WStr ReasonText(int code, const wchar_t* missing) {
  if (code == ENOENT) return missing;
  for (const Advice& row : kAdvice)
    if (row.code == code) return row.text;
  return FromUtf8(std::generic_category().message(code));
}

WStr CannotWrite(const WStr& path, const WStr& reason) {
  return Format(L"Cannot write \"%s\": %s.", path.c_str(), reason.c_str());
}
WStr CannotWrite(const WStr& path, int code) {
  return CannotWrite(path, ReasonText(code, L"its folder does not exist; make it first"));
}
WStr CannotRead(const WStr& path, const WStr& reason) {
  return Format(L"Cannot read \"%s\": %s.", path.c_str(), reason.c_str());
}

bool IsUsablePath(const WStr& path) { return !path.empty() && path.find(L'\0') == WStr::npos; }

/// 0, or the error number.
int WriteAll(int fd, std::span<const uint8_t> bytes) {
  while (!bytes.empty()) {
    const ssize_t written = write(fd, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return errno;
    bytes = bytes.subspan(written);
  }
  return 0;
}

/// Pipes and some network folders cannot be flushed, and say so by EINVAL; that is no failure.
int Flush(int fd) { return fsync(fd) == 0 || errno == EINVAL || errno == ENOTSUP ? 0 : errno; }

/// The file that links at `path` lead to; `path` itself when it does not exist yet.
std::string ResolveLinks(const std::string& path) {
  const std::unique_ptr<char, decltype(&std::free)> real(realpath(path.c_str(), nullptr), &std::free);
  return real ? real.get() : path;
}

std::string FolderOf(const std::string& path) {
  const size_t slash = path.rfind('/');
  return slash == std::string::npos ? "." : path.substr(0, slash + 1);
}

/// A name in the same folder, short whatever the length of the file's own name, and not used by another process.
std::string TemporaryPath(const std::string& folder) {
  static std::atomic<unsigned> counter{0};
  return folder + "/.tavrilon-" + std::to_string(getpid()) + "-" + std::to_string(counter++) + ".tmp";
}

/// Steps up to the rename; gives 0 or the error number.
int WriteTemporary(const std::string& temporary, const struct stat* old, std::span<const uint8_t> bytes) {
  Descriptor file(open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
  if (!file) return errno;
  if (old && fchmod(file.Get(), old->st_mode & 0777) != 0) return errno;
  if (const int code = WriteAll(file.Get(), bytes)) return code;
  if (const int code = Flush(file.Get())) return code;
  return file.Close();
}

int ReplaceFile(const std::string& target, const struct stat* old, std::span<const uint8_t> bytes) {
  const std::string folder = FolderOf(target);
  std::string temporary = TemporaryPath(folder);
  int code = WriteTemporary(temporary, old, bytes);
  if (code == EEXIST) {  // left behind by a killed process that had the same number; it is nobody's now
    unlink(temporary.c_str());
    code = WriteTemporary(temporary, old, bytes);
  }
  if (code == 0 && rename(temporary.c_str(), target.c_str()) != 0) code = errno;
  if (code != 0) {
    unlink(temporary.c_str());
    return code;
  }
  // The new file is in place; a folder that cannot be flushed only delays when the disk knows.
  Descriptor handle(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (handle) fsync(handle.Get());
  return 0;
}

int WriteStraight(const std::string& target, std::span<const uint8_t> bytes) {
  Descriptor file(open(target.c_str(), O_WRONLY | O_CLOEXEC));
  if (!file) return errno;
  if (const int code = WriteAll(file.Get(), bytes)) return code;
  return file.Close();
}

}  // namespace

WStr WriteFileAtomically(const WStr& path, std::span<const uint8_t> bytes) {
  if (!IsUsablePath(path)) return CannotWrite(path, L"the path is empty or holds a zero character");
  const std::string target = ResolveLinks(ToUtf8(path));
  struct stat old;
  const bool exists = stat(target.c_str(), &old) == 0;
  int code = 0;
  if (exists && S_ISDIR(old.st_mode)) {
    code = EISDIR;
  } else if (exists && !S_ISREG(old.st_mode)) {
    code = WriteStraight(target, bytes);
  } else if (exists && access(target.c_str(), W_OK) != 0) {
    code = errno;
  } else {
    code = ReplaceFile(target, exists ? &old : nullptr, bytes);
  }
  return code ? CannotWrite(path, code) : WStr();
}

FileContents ReadWholeFile(const WStr& path, size_t maxBytes) {
  FileContents out;
  if (!IsUsablePath(path)) {
    out.error = CannotRead(path, L"the path is empty or holds a zero character");
    return out;
  }
  const auto fail = [&](const WStr& reason) {
    out.bytes.clear();
    out.error = CannotRead(path, reason);
    return out;
  };
  Descriptor file(open(ToUtf8(path).c_str(), O_RDONLY | O_CLOEXEC));
  struct stat info;
  if (!file || fstat(file.Get(), &info) != 0) {
    const int code = errno;
    out.missing = code == ENOENT;
    return fail(ReasonText(code, L"there is no such file"));
  }
  const WStr tooLarge = Format(L"it is larger than the %zu bytes that such a file may have", maxBytes);
  if (S_ISREG(info.st_mode) && static_cast<uintmax_t>(info.st_size) > maxBytes) return fail(tooLarge);
  // A file may grow while it is read, and a pipe has no size: so the size is only where to start.
  size_t used = 0;
  out.bytes.resize(std::min<size_t>(maxBytes, S_ISREG(info.st_mode) ? info.st_size : 0) + 1);
  while (true) {
    const ssize_t got = read(file.Get(), out.bytes.data() + used, out.bytes.size() - used);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return fail(ReasonText(errno, L"there is no such file"));
    if (got == 0) break;
    used += got;
    if (used > maxBytes) return fail(tooLarge);
    if (used == out.bytes.size()) out.bytes.resize(std::min(maxBytes, used * 2) + 1);
  }
  out.bytes.resize(used);
  return out;
}

}  // namespace corvanta
