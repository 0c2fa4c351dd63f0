#pragma once

#include "images/image_type.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace quarvel {

/// Reads little-endian values one after another from a part of a file. A value that reaches beyond the part, or is none
/// that can be, makes the reader fail: from then on all values are 0 and nothing is left.
class ObjectReader {
 public:
  /// Reads from `from` up to `to`; positions are counted from the file's beginning.
  ObjectReader(Bytes file, std::size_t from, std::size_t to);

  bool Failed() const { return failed_; }
  std::size_t At() const { return at_; }
  std::size_t Left() const { return to_ - at_; }
  bool Has(std::uint64_t count) const { return count <= Left(); }
  void Fail();

  std::uint8_t U8();
  std::uint16_t U16();
  std::uint32_t U32();
  std::uint64_t U64();
  std::int16_t S16() { return static_cast<std::int16_t>(U16()); }
  std::int32_t S32() { return static_cast<std::int32_t>(U32()); }
  float F32();
  /// A compact index: 6 bits, then up to four times 7, with sign.
  std::int32_t Index();
  /// A compact index that counts things of at least `leastSize` bytes each; fails when they cannot be there.
  std::size_t Count(std::size_t leastSize);
  Bytes Take(std::uint64_t count);
  void Skip(std::uint64_t count) { Take(count); }

 private:
  Bytes file_;
  std::size_t at_ = 0;
  std::size_t to_ = 0;
  bool failed_ = false;
};

/// Bytes as text.
inline std::string_view TextOf(Bytes bytes) { return {reinterpret_cast<const char*>(bytes.data()), bytes.size()}; }

} // namespace quarvel
