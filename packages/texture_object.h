#pragma once

#include "images/image.h"
#include "packages/package.h"

#include <functional>
#include <string_view>

namespace quarvel {

/// An object of a package.
struct PackageObject {
  const Package* In = nullptr; ///< null for none
  std::size_t Export = 0;

  explicit operator bool() const { return In != nullptr; }
};

/// Finds the object that an import of a package means, in whatever package it lies; none when that is not at hand.
using ImportFinder = std::function<PackageObject(const Package&, ObjectRef)>;

/// True for the classes whose objects are textures: Texture and those that are named after it (FireTexture, ...).
bool IsTextureClass(std::string_view className);

/// What a texture's properties tell.
struct TextureFacts {
  int Width = 0, Height = 0; ///< pixels; 0 when the texture does not tell
  bool Masked = false;       ///< palette entry 0 is transparent
  int Format = 0;            ///< of the pixels; 0 is one byte a pixel through the palette
  int CompressedFormat = -1; ///< of the second set of pixels; -1 for none
  ObjectRef Palette = 0;
  ObjectRef Source = 0; ///< the texture that a procedural one shows
  ObjectRef Next = 0;   ///< the next picture of an animation
};

/// Reads a texture's properties; nothing when they are damaged.
std::optional<TextureFacts> ReadTextureFacts(const PackageObject& texture);

/// Where a texture's picture comes from.
enum class PictureKind {
  Pixels,
  Source, ///< of a procedural texture: the picture that it distorts
  Still,  ///< of a procedural texture: made here from its palette
};

struct TexturePicture {
  std::optional<Image> Picture; ///< with a palette, or RGBA
  PictureKind Kind = PictureKind::Pixels;
  bool Masked = false;
  bool IsAnimated = false;    ///< the engine shows further pictures in turn with this one
  std::string MissingPalette; ///< the full name of the one that is not at hand, so that all is grey; else empty
  std::string Error;          ///< why there is none: one clause, lower case, without a full stop

  explicit operator bool() const { return Picture.has_value(); }
};

/// The largest picture of a texture.
TexturePicture ReadTexturePicture(const PackageObject& texture, const ImportFinder& imports = {});

/// Follows a reference of an object's package, through `imports` when it leads to another one.
PackageObject Follow(const Package& package, ObjectRef object, const ImportFinder& imports);

} // namespace quarvel
