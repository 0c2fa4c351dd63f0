#pragma once

#include "base/run_interface.h"
#include "resources/resource_files.h"
#include "scene/node_writer.h"
#include "settings/conversion_settings.h"

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace quarvel {

/// One texture as one kind of surface uses it.
struct TextureEntry {
  std::string Name;        ///< as the level writes it; "default" for polygons without one
  std::uint32_t Flags = 0; ///< the SurfaceFlag bits that change the appearance
  bool Defined = false;    ///< its appearance has been written
  TextureFile File;        ///< the image; without one only for "default"
  std::string AppearanceName;
  std::string ImageName;
};

/// The texture transforms that the surfaces of a run share, by what their animation does. The order is that of
/// precedence.
enum class TextureMotion { PanUV, PanU, PanV, SmallWavy, Still };

/// DEF name of a shared transform, "TEXTRANSUV" to "TEXTRANS".
const char* TextureTransformName(TextureMotion motion);

/// Writes the appearances of a run: each texture, material, image and transform once, and by name afterwards.
class MaterialWriter {
 public:
  /// `litColor` is the diffuse colour of surfaces that take light.
  MaterialWriter(SceneWriter& scene, ResourceFiles& resources, const ConversionSettings& settings,
                 std::string litColor);

  /// The number of the texture's entry for surfaces with these flags; made when it is new. Letter case does not count.
  int TextureNumber(std::string_view texture, std::uint32_t flags) { return NumberOf(texture, flags, false); }
  /// The same for a terrain, whose images may be of a type of their own.
  int TerrainTextureNumber(std::string_view texture) { return NumberOf(texture, 0, true); }
  const TextureEntry& Entry(int number) const { return entries_[static_cast<std::size_t>(number)]; }

  /// Writes the entry's appearance into the shape that was just opened.
  void WriteAppearance(int number, RunInterface& user);

  /// The same for a surface whose light is baked: without a Material, so that no light changes it. `page` is that of
  /// its light map, NoPage when the corners of the face set carry its light, or none does.
  void WriteBakedAppearance(int number, int page, RunInterface& user);
  /// Where the pages of light maps are: `url` of an ImageTexture. To be set before they are used.
  void SetLightPages(std::vector<std::string> urls) { pageUrls_ = std::move(urls); }
  static constexpr int NoPage = -1;

  int UniqueMaterialCount() const { return uniqueMaterialCount_; }
  /// Number of the texture that defined a shared transform, -1 while none did.
  int DefinedBy(TextureMotion motion) const { return definedBy_[static_cast<std::size_t>(motion)]; }

 private:
  int NumberOf(std::string_view texture, std::uint32_t flags, bool ofTerrain);
  void WriteBakedTextures(const TextureEntry& entry, int page);
  void WritePage(int page, std::string_view lead);
  void WriteMapTransform(int number);
  void WriteMaterial(const TextureEntry& entry);
  void WriteTexture(const TextureEntry& entry);
  void WriteImage(const TextureEntry& entry, std::string_view lead = "        texture ");
  void WriteTransform(int number, std::string_view lead = "        textureTransform ");
  std::string ImageNameFor(const TextureEntry& entry);

  SceneWriter& scene_;
  ResourceFiles& resources_;
  const ConversionSettings& settings_;
  std::string litColor_;
  std::vector<TextureEntry> entries_;
  std::unordered_map<std::string, int> numbers_;
  std::unordered_map<std::string, std::string> imageNames_; ///< by image and URL
  UniqueNames names_;
  std::set<std::string> materialsWritten_;
  std::set<std::string> imagesWritten_;
  std::vector<std::string> pageUrls_;
  std::map<std::pair<int, int>, std::string> bakedNames_; ///< by entry and page
  std::set<int> pagesWritten_;
  int definedBy_[5] = {-1, -1, -1, -1, -1};
  int uniqueMaterialCount_ = 0;
};

} // namespace quarvel
