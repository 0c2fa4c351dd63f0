#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <vector>

namespace quarvel {

/// What was baked into light maps.
struct BakedLightSummary {
  std::size_t Lamps = 0;
  std::size_t Zones = 0; ///< that have an ambient light of their own, where it matters
  std::uint64_t Texels = 0;
  std::size_t Pages = 0;
  double Seconds = 0;
};

/// What carving made of the brushes of a level, and of its sky.
struct CarvingResult {
  bool Done = false; ///< false: no level was carved, and the rest says nothing
  int Added = 0, Subtracted = 0, Semisolid = 0, NonSolid = 0, Portals = 0;
  int Sheets = 0;         ///< brushes that are not closed
  int SurfacesBefore = 0; ///< polygons of these brushes
  int SurfacesAfter = 0;
  int OpenEdges = 0;
  double EmptyVolume = 0; ///< cubic scene units, which are metres
  double PrepareSeconds = 0, CarveSeconds = 0, WeldSeconds = 0, WriteSeconds = 0;
};

/// What the scenes of one run come to, as far as they are written.
struct RunTotals {
  int Brushes = 0; ///< brushes and movers converted
  int Faces = 0;
  CarvingResult Carving;
  BakedLightSummary Light;
  std::vector<std::filesystem::path> FilesWritten; ///< all of them, in the order of writing
};

} // namespace quarvel
