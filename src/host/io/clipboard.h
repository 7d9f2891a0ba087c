// SPDX-License-Identifier: MIT
// The host's clipboard: raw bytes by format number. It lives in the process; a desktop session may put its own
// clipboard behind it. What comes out was put there by anybody, so readers verify it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <vector>

namespace corvanta {

using ClipboardFormat = uint32_t;
/// Animation buffers.
inline constexpr ClipboardFormat kAnimationClipboardFormat = 8;

/// What a clipboard outside the process must offer.
class ClipboardStore {
 public:
  virtual ~ClipboardStore() = default;
  /// False when the bytes were not taken.
  virtual bool SetData(ClipboardFormat format, std::span<const uint8_t> bytes) = 0;
  virtual std::optional<std::vector<uint8_t>> GetData(ClipboardFormat format) = 0;
  virtual void Empty() = 0;
};

class Clipboard {
 public:
  /// Puts bytes under a format; other formats stay. False when an outside store refuses them.
  bool SetData(ClipboardFormat format, std::span<const uint8_t> bytes);
  /// Nothing when the format is not there. Empty bytes are data too.
  std::optional<std::vector<uint8_t>> GetData(ClipboardFormat format) const;
  bool HasData(ClipboardFormat format) const { return GetData(format).has_value(); }
  void Empty();

  /// Takes an outside store (it must live until the next call), or null for the process's own. The contents of the two
  /// are not mixed.
  void SetStore(ClipboardStore* store) { store_ = store; }

 private:
  std::map<ClipboardFormat, std::vector<uint8_t>> data_;
  ClipboardStore* store_ = nullptr;
};

/// The clipboard of the process.
Clipboard& TheClipboard();

}  // namespace corvanta
