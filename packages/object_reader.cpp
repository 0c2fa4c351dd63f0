#include "packages/object_reader.h"

#include <algorithm>
#include <bit>

namespace quarvel {

ObjectReader::ObjectReader(Bytes file, std::size_t from, std::size_t to)
    : file_(file), at_(from), to_(std::min(to, file.size())) {
  if (at_ > to_) Fail();
}

void ObjectReader::Fail() {
  failed_ = true;
  at_ = to_;
}

Bytes ObjectReader::Take(std::uint64_t count) {
  if (!Has(count)) {
    Fail();
    return {};
  }
  const Bytes taken = file_.subspan(at_, static_cast<std::size_t>(count));
  at_ += taken.size();
  return taken;
}

std::uint8_t ObjectReader::U8() {
  if (at_ >= to_) {
    Fail();
    return 0;
  }
  return file_[at_++];
}

std::uint16_t ObjectReader::U16() {
  const Bytes bytes = Take(2);
  return bytes.empty() ? std::uint16_t{0} : static_cast<std::uint16_t>(bytes[0] | bytes[1] << 8);
}

std::uint32_t ObjectReader::U32() {
  const Bytes bytes = Take(4);
  if (bytes.empty()) return 0;
  return std::uint32_t{bytes[0]} | std::uint32_t{bytes[1]} << 8 | std::uint32_t{bytes[2]} << 16 |
         std::uint32_t{bytes[3]} << 24;
}

std::uint64_t ObjectReader::U64() {
  const std::uint64_t low = U32();
  return low | std::uint64_t{U32()} << 32;
}

float ObjectReader::F32() { return std::bit_cast<float>(U32()); }

std::int32_t ObjectReader::Index() {
  const std::uint8_t first = U8();
  std::uint64_t value = first & 0x3FU;
  bool more = (first & 0x40U) != 0;
  for (unsigned shift = 6; more; shift += 7) {
    const std::uint8_t next = U8();
    value |= std::uint64_t{next & 0x7FU} << shift;
    more = (next & 0x80U) != 0;
    if (more && shift >= 27) Fail(); // a sixth byte
    if (failed_) return 0;
  }
  if (value > 0x7FFFFFFF) {
    Fail();
    return 0;
  }
  const auto magnitude = static_cast<std::int32_t>(value);
  return (first & 0x80U) != 0 ? -magnitude : magnitude;
}

std::size_t ObjectReader::Count(std::size_t leastSize) {
  const std::int32_t count = Index();
  if (count < 0 || !Has(static_cast<std::uint64_t>(count) * leastSize)) {
    Fail();
    return 0;
  }
  return static_cast<std::size_t>(count);
}

} // namespace quarvel
