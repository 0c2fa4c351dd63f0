#pragma once

#include "packages/package.h"

#include <array>
#include <optional>
#include <string_view>
#include <vector>

namespace quarvel {

/// X, Y, Z in Unreal units, as the file has them.
using FileVector = std::array<float, 3>;

/// One face of a brush.
struct FilePolygon {
  FileVector Origin{}, Normal{}, TextureU{}, TextureV{};
  std::vector<FileVector> Vertices;
  std::uint32_t Flags = 0;
  ObjectRef Texture = 0;
  std::string_view Item;
  std::int32_t Link = -1; ///< -1 for none
  std::int16_t PanU = 0, PanV = 0;
};

FileVector ReadFileVector(ObjectReader& reader);

/// The level of a package, the first of that class; null when there is none.
const PackageExport* FindLevel(const Package& package);

/// A level's actors in their order; free places are left out. Nothing when the level is damaged.
std::optional<std::vector<ObjectRef>> ReadLevelActors(const Package& package, const PackageExport& level);

/// The object that holds a brush's polygons; 0 for none, nothing when the model is damaged.
std::optional<ObjectRef> ReadModelPolys(const Package& package, const PackageExport& model);

/// The polygons. Nothing when they are damaged.
std::optional<std::vector<FilePolygon>> ReadPolys(const Package& package, const PackageExport& polys);

} // namespace quarvel
