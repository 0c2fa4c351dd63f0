#include "packages/texture_object.h"

#include "base/ascii_text.h"
#include "images/module_dds.h"
#include "packages/procedural_texture.h"
#include "packages/properties.h"

#include <algorithm>

namespace quarvel {
namespace {

constexpr int paletteFormat = 0, dxt1Format = 3, rgbaFormat = 5, dxt3Format = 7, dxt5Format = 8;
constexpr int mostSources = 8; ///< procedural textures that show one another

/// The first of a texture's pictures, the largest.
struct Mip {
  Bytes Data;
  std::uint32_t Width = 0, Height = 0;
};

TexturePicture NoPicture(std::string reason) {
  TexturePicture none;
  none.Error = std::move(reason);
  return none;
}

TexturePicture PictureOf(Image image, const TextureFacts& facts) {
  TexturePicture picture;
  picture.Picture = std::move(image);
  picture.Masked = facts.Masked;
  picture.IsAnimated = facts.Next != 0;
  return picture;
}

/// Reads one list of pictures and keeps the first.
Mip ReadMips(ObjectReader& reader, int version) {
  Mip first;
  const std::size_t count = reader.Count(11);
  for (std::size_t i = 0; i < count && !reader.Failed(); ++i) {
    if (version >= 63) reader.Skip(4); // the offset behind the data
    Mip mip;
    mip.Data = reader.Take(reader.Count(1));
    mip.Width = reader.U32();
    mip.Height = reader.U32();
    reader.Skip(2); // the sides' logarithms
    if (i == 0) first = mip;
  }
  return first;
}

std::optional<std::vector<Rgba>> ReadPalette(const PackageObject& palette) {
  ObjectReader reader = ReadObject(*palette.In, palette.In->Exports[palette.Export]);
  if (!ReadProperties(*palette.In, reader)) return std::nullopt;
  const Bytes colors = reader.Take(std::uint64_t{reader.Count(4)} * 4);
  if (reader.Failed() || colors.empty()) return std::nullopt;
  std::vector<Rgba> entries(256, Rgba{0, 0, 0, 255});
  for (std::size_t i = 0; i < entries.size() && i * 4 < colors.size(); ++i)
    std::copy_n(colors.begin() + static_cast<std::ptrdiff_t>(i * 4), 3, entries[i].begin());
  return entries;
}

/// Gives a picture its palette, or the reason why it has none.
TexturePicture WithPalette(Image picture, const PackageObject& texture, const TextureFacts& facts,
                           const ImportFinder& imports) {
  if (facts.Palette == 0) return NoPicture("it has no palette");
  const PackageObject palette = Follow(*texture.In, facts.Palette, imports);
  if (!palette) {
    for (std::size_t i = 0; i < 256; ++i) {
      const auto grey = static_cast<std::uint8_t>(i);
      picture.Palette.push_back({grey, grey, grey, 255});
    }
    TexturePicture grey = PictureOf(std::move(picture), facts);
    grey.MissingPalette = FullName(*texture.In, facts.Palette, texture.In->Name);
    return grey;
  }
  auto colors = ReadPalette(palette);
  if (!colors) return NoPicture("its palette is damaged");
  picture.Palette = std::move(*colors);
  return PictureOf(std::move(picture), facts);
}

TexturePicture DecodeMip(const Mip& mip, int format, const PackageObject& texture, const TextureFacts& facts,
                         const ImportFinder& imports) {
  const auto width = static_cast<int>(std::min<std::uint32_t>(mip.Width, MaxPixelSide + 1));
  const auto height = static_cast<int>(std::min<std::uint32_t>(mip.Height, MaxPixelSide + 1));
  if (!MayReadPixels(width, height)) return NoPicture("its size is not believable");
  const std::size_t pixels = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
  if (format == paletteFormat || format == rgbaFormat) {
    const std::size_t bytes = format == rgbaFormat ? pixels * 4 : pixels;
    if (mip.Data.size() < bytes) return NoPicture("it has too few pixels");
    Image picture;
    picture.Width = width;
    picture.Height = height;
    picture.Format = format == rgbaFormat ? PixelFormat::Rgba8 : PixelFormat::Palette8;
    picture.Values.assign(mip.Data.begin(), mip.Data.begin() + static_cast<std::ptrdiff_t>(bytes));
    if (format == paletteFormat) return WithPalette(std::move(picture), texture, facts, imports);
    MakeOpaqueIfAllTransparent(picture);
    return PictureOf(std::move(picture), facts);
  }
  if (format != dxt1Format && format != dxt3Format && format != dxt5Format)
    return NoPicture("its pixel format " + std::to_string(format) + " is not known");
  const DdsFormat blocks = format == dxt1Format   ? DdsFormat::Dxt1
                           : format == dxt3Format ? DdsFormat::Dxt3
                                                  : DdsFormat::Dxt5;
  ImageResult decoded = ReadDxt(mip.Data, width, height, blocks);
  if (!decoded) return NoPicture("it has too few pixels");
  return PictureOf(std::move(*decoded.Picture), facts);
}

TextureFacts FactsOf(const std::vector<Property>& properties) {
  TextureFacts facts;
  facts.Width = std::max(0, IntOr(properties, "USize", 0));
  facts.Height = std::max(0, IntOr(properties, "VSize", 0));
  facts.Masked = BoolOr(properties, "bMasked", false);
  facts.Format = IntOr(properties, "Format", paletteFormat);
  if (BoolOr(properties, "bHasComp", false)) facts.CompressedFormat = IntOr(properties, "CompFormat", dxt1Format);
  facts.Palette = ObjectOr0(properties, "Palette");
  facts.Source = ObjectOr0(properties, "SourceTexture");
  facts.Next = ObjectOr0(properties, "AnimNext");
  return facts;
}

/// The picture of a texture that has no pixels of its own.
TexturePicture MakeStill(const PackageObject& texture, const TextureFacts& facts, const ImportFinder& imports) {
  const std::string_view className = ClassName(*texture.In, RefOfExport(texture.Export));
  auto indices = MakeProceduralStill(className, facts.Width, facts.Height);
  if (!indices) return NoPicture("it has no pixels");
  TexturePicture still = WithPalette(std::move(*indices), texture, facts, imports);
  still.Kind = PictureKind::Still;
  return still;
}

TexturePicture ReadPicture(const PackageObject& texture, const ImportFinder& imports, int sources) {
  ObjectReader reader = ReadObject(*texture.In, texture.In->Exports[texture.Export]);
  const auto properties = ReadProperties(*texture.In, reader);
  if (!properties) return NoPicture("its properties are damaged");
  const TextureFacts facts = FactsOf(*properties);
  const Mip plain = ReadMips(reader, texture.In->Version);
  if (reader.Failed()) return NoPicture("its pixels reach beyond it");
  if (!plain.Data.empty()) return DecodeMip(plain, facts.Format, texture, facts, imports);
  if (facts.CompressedFormat >= 0) {
    const Mip compressed = ReadMips(reader, texture.In->Version);
    if (!reader.Failed() && !compressed.Data.empty())
      return DecodeMip(compressed, facts.CompressedFormat, texture, facts, imports);
  }
  if (facts.Source == 0) return MakeStill(texture, facts, imports);
  if (sources == mostSources) return NoPicture("the textures that it shows lead back to itself");
  const PackageObject source = Follow(*texture.In, facts.Source, imports);
  if (!source) return NoPicture("the texture that it shows is in a package that is not at hand");
  TexturePicture picture = ReadPicture(source, imports, sources + 1);
  if (picture.Kind == PictureKind::Pixels) picture.Kind = PictureKind::Source;
  picture.Masked = picture.Masked || facts.Masked;
  return picture;
}

} // namespace

bool IsTextureClass(std::string_view className) {
  constexpr std::string_view ending = "Texture";
  return className.size() >= ending.size() && SameText(className.substr(className.size() - ending.size()), ending);
}

PackageObject Follow(const Package& package, ObjectRef object, const ImportFinder& imports) {
  if (ExportOf(package, object)) return {&package, static_cast<std::size_t>(object) - 1};
  if (ImportOf(package, object) && imports) return imports(package, object);
  return {};
}

std::optional<TextureFacts> ReadTextureFacts(const PackageObject& texture) {
  ObjectReader reader = ReadObject(*texture.In, texture.In->Exports[texture.Export]);
  const auto properties = ReadProperties(*texture.In, reader);
  if (!properties) return std::nullopt;
  return FactsOf(*properties);
}

TexturePicture ReadTexturePicture(const PackageObject& texture, const ImportFinder& imports) {
  return ReadPicture(texture, imports, 0);
}

} // namespace quarvel
