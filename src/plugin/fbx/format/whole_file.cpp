// SPDX-License-Identifier: MIT
#include "plugin/fbx/format/whole_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace tavrilon::fbx {

namespace {

/// A temporary file that goes away unless it is renamed.
class TemporaryFile {
 public:
  explicit TemporaryFile(const std::string& beside) : path_(beside + ".XXXXXX"), handle_(mkstemp(path_.data())) {}
  ~TemporaryFile() {
    Close();
    if (made_ && !kept_) unlink(path_.c_str());
  }
  TemporaryFile(const TemporaryFile&) = delete;

  bool IsOpen() const { return made_; }
  bool Write(std::span<const uint8_t> bytes);
  /// File systems that cannot flush are not an error.
  bool Flush() { return fsync(handle_) == 0 || errno == EINVAL || errno == ENOTSUP; }
  bool TakeRights(const std::string& from);
  bool Close() {
    const int handle = handle_;
    handle_ = -1;
    return handle < 0 || close(handle) == 0;
  }
  bool RenameTo(const std::string& path) { return kept_ = rename(path_.c_str(), path.c_str()) == 0; }

 private:
  std::string path_;
  int handle_;
  bool made_ = handle_ >= 0;
  bool kept_ = false;
};

bool TemporaryFile::Write(std::span<const uint8_t> bytes) {
  while (!bytes.empty()) {
    const ssize_t written = write(handle_, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return false;
    bytes = bytes.subspan(static_cast<size_t>(written));
  }
  return true;
}

// A temporary file is its owner's alone at first.
bool TemporaryFile::TakeRights(const std::string& from) {
  struct stat old {};
  if (stat(from.c_str(), &old) == 0) return fchmod(handle_, old.st_mode & 0777) == 0;
  const mode_t mask = umask(0);
  umask(mask);
  return fchmod(handle_, 0666 & ~mask) == 0;
}

std::string BehindLinks(const std::string& path) {
  char target[PATH_MAX];
  return realpath(path.c_str(), target) ? target : path;
}

}  // namespace

bool WriteWholeFile(const std::string& path, std::span<const uint8_t> bytes, FbxStatus& status) {
  const std::string target = BehindLinks(path);
  struct stat there {};
  if (stat(target.c_str(), &there) == 0 && !S_ISREG(there.st_mode)) {
    return status.Fail(path + ": cannot be written: it is not a plain file");
  }
  TemporaryFile file(target);
  if (file.IsOpen() && file.Write(bytes) && file.TakeRights(target) && file.Flush() && file.Close() &&
      file.RenameTo(target)) {
    return true;
  }
  return status.Fail(path + ": cannot be written: " + std::strerror(errno));
}

}  // namespace tavrilon::fbx
