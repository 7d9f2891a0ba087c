// SPDX-License-Identifier: MIT
#include "host/io/clipboard.h"

namespace corvanta {

bool Clipboard::SetData(ClipboardFormat format, std::span<const uint8_t> bytes) {
  if (store_) return store_->SetData(format, bytes);
  data_[format].assign(bytes.begin(), bytes.end());
  return true;
}

std::optional<std::vector<uint8_t>> Clipboard::GetData(ClipboardFormat format) const {
  if (store_) return store_->GetData(format);
  const auto found = data_.find(format);
  if (found == data_.end()) return std::nullopt;
  return found->second;
}

void Clipboard::Empty() {
  if (store_) return store_->Empty();
  data_.clear();
}

Clipboard& TheClipboard() {
  static Clipboard clipboard;
  return clipboard;
}

}  // namespace corvanta
