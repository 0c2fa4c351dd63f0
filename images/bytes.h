#pragma once

#include "images/image_type.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace quarvel {

/// Reads numbers at fixed places of a file's bytes. A place outside of them reads as 0, so that a reader checks `Has`
/// once for a header and not for each field.
class ByteView {
 public:
  explicit ByteView(Bytes bytes) : bytes_(bytes) {}

  bool Has(std::size_t offset, std::size_t count) const {
    return offset <= bytes_.size() && count <= bytes_.size() - offset;
  }
  /// What is there of `count` bytes from a place on.
  Bytes Part(std::size_t offset, std::size_t count) const {
    return offset < bytes_.size() ? bytes_.subspan(offset, std::min(count, bytes_.size() - offset)) : Bytes();
  }
  std::size_t Size() const { return bytes_.size(); }

  std::uint32_t U8(std::size_t offset) const { return offset < bytes_.size() ? bytes_[offset] : 0U; }
  std::uint32_t U16(std::size_t offset) const { return U8(offset) | U8(offset + 1) << 8; } ///< little-endian
  std::uint32_t U32(std::size_t offset) const { return U16(offset) | U16(offset + 2) << 16; }
  std::int32_t S32(std::size_t offset) const { return static_cast<std::int32_t>(U32(offset)); }
  std::uint32_t BigU16(std::size_t offset) const { return U8(offset) << 8 | U8(offset + 1); }
  std::uint32_t BigU32(std::size_t offset) const { return BigU16(offset) << 16 | BigU16(offset + 2); }

 private:
  Bytes bytes_;
};

} // namespace quarvel
