#include "images/color_masks.h"

namespace quarvel {

ChannelMask::ChannelMask(std::uint32_t mask, std::uint8_t absent) : mask_(mask), absent_(absent) {
  while (mask != 0 && (mask & 1U) == 0) {
    mask >>= 1U;
    ++shift_;
  }
  most_ = mask;
}

std::uint8_t ChannelMask::operator()(std::uint32_t pixel) const {
  if (most_ == 0) return absent_;
  const std::uint64_t value = (pixel & mask_) >> shift_;
  return static_cast<std::uint8_t>((value * 255 + most_ / 2) / most_);
}

} // namespace quarvel
