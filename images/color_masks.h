#pragma once

#include "images/image.h"

#include <cstdint>

namespace quarvel {

/// Takes one channel out of a pixel's bits and scales it to 0 to 255; a channel without bits yields `absent`.
class ChannelMask {
 public:
  ChannelMask(std::uint32_t mask, std::uint8_t absent);
  std::uint8_t operator()(std::uint32_t pixel) const;

 private:
  std::uint32_t mask_;
  unsigned shift_ = 0;
  std::uint32_t most_ = 0; ///< the largest value of the channel
  std::uint8_t absent_;
};

/// The four channels of a pixel.
class PixelMasks {
 public:
  /// `masks`: red, green, blue, alpha.
  explicit PixelMasks(const std::uint32_t (&masks)[4])
      : red_(masks[0], 0), green_(masks[1], 0), blue_(masks[2], 0), alpha_(masks[3], 255) {}
  Rgba operator()(std::uint32_t pixel) const { return {red_(pixel), green_(pixel), blue_(pixel), alpha_(pixel)}; }

 private:
  ChannelMask red_, green_, blue_, alpha_;
};

} // namespace quarvel
