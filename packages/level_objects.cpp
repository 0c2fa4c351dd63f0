#include "packages/level_objects.h"

#include "base/ascii_text.h"
#include "packages/properties.h"

#include <algorithm>

namespace quarvel {
namespace {

/// A count of things of at least `leastSize` bytes each; the capacity behind it says nothing about the file.
std::size_t ReadPlainCount(ObjectReader& reader, std::size_t leastSize) {
  const std::int32_t count = reader.S32();
  reader.Skip(4);
  if (count < 0 || !reader.Has(static_cast<std::uint64_t>(count) * leastSize)) reader.Fail();
  return reader.Failed() ? 0 : static_cast<std::size_t>(count);
}

void SkipIndices(ObjectReader& reader, int count) {
  for (int i = 0; i < count; ++i)
    reader.Index();
}

void SkipNode(ObjectReader& reader) {
  reader.Skip(16 + 8 + 1); // plane, zone mask, flags
  SkipIndices(reader, 9);  // vertex, surface, three nodes, two bounds, two zones
  reader.Skip(1 + 8);      // vertices, two leaves
}

void SkipSurface(ObjectReader& reader) {
  reader.Index(); // texture
  reader.Skip(4); // flags
  SkipIndices(reader, 6);
  reader.Skip(4); // pan
  reader.Index(); // brush
}

template <typename Skip>
void SkipList(ObjectReader& reader, std::size_t leastSize, Skip skip) {
  const std::size_t count = reader.Count(leastSize);
  for (std::size_t i = 0; i < count && !reader.Failed(); ++i)
    skip(reader);
}

void SkipZones(ObjectReader& reader) {
  const std::int32_t count = reader.S32();
  if (count < 0 || !reader.Has(static_cast<std::uint64_t>(count) * 17)) reader.Fail();
  for (std::int32_t i = 0; i < count && !reader.Failed(); ++i) {
    reader.Index();
    reader.Skip(16); // connectivity and visibility
  }
}

FilePolygon ReadPolygon(const Package& package, ObjectReader& reader) {
  FilePolygon polygon;
  const std::size_t vertices = reader.Count(12);
  polygon.Origin = ReadFileVector(reader);
  polygon.Normal = ReadFileVector(reader);
  polygon.TextureU = ReadFileVector(reader);
  polygon.TextureV = ReadFileVector(reader);
  if (!reader.Has(vertices * 12)) reader.Fail();
  if (reader.Failed()) return polygon;
  polygon.Vertices.reserve(vertices);
  for (std::size_t i = 0; i < vertices; ++i)
    polygon.Vertices.push_back(ReadFileVector(reader));
  polygon.Flags = reader.U32();
  reader.Index(); // the actor
  polygon.Texture = reader.Index();
  polygon.Item = NameAt(package, reader.Index());
  polygon.Link = reader.Index();
  reader.Index(); // the polygon of the brush
  polygon.PanU = reader.S16();
  polygon.PanV = reader.S16();
  return polygon;
}

} // namespace

FileVector ReadFileVector(ObjectReader& reader) {
  FileVector vector;
  for (float& component : vector)
    component = reader.F32();
  return vector;
}

const PackageExport* FindLevel(const Package& package) {
  for (std::size_t i = 0; i < package.Exports.size(); ++i)
    if (SameText(ClassName(package, RefOfExport(i)), "Level")) return &package.Exports[i];
  return nullptr;
}

std::optional<std::vector<ObjectRef>> ReadLevelActors(const Package& package, const PackageExport& level) {
  ObjectReader reader = ReadObject(package, level);
  if (!ReadProperties(package, reader)) return std::nullopt;
  std::vector<ObjectRef> actors(ReadPlainCount(reader, 1));
  for (ObjectRef& actor : actors)
    actor = reader.Index();
  if (reader.Failed()) return std::nullopt;
  std::erase(actors, 0);
  return actors;
}

std::optional<ObjectRef> ReadModelPolys(const Package& package, const PackageExport& model) {
  ObjectReader reader = ReadObject(package, model);
  if (!ReadProperties(package, reader)) return std::nullopt;
  reader.Skip(25);                                   // box
  reader.Skip(package.Version < 62 ? 12 : 16);       // sphere
  reader.Skip(std::uint64_t{reader.Count(12)} * 12); // vectors
  reader.Skip(std::uint64_t{reader.Count(12)} * 12); // points
  SkipList(reader, 43, SkipNode);
  SkipList(reader, 16, SkipSurface);
  SkipList(reader, 2, [](ObjectReader& vertex) { SkipIndices(vertex, 2); });
  reader.Skip(4);
  SkipZones(reader);
  const ObjectRef polys = reader.Index();
  if (reader.Failed()) return std::nullopt;
  return polys;
}

std::optional<std::vector<FilePolygon>> ReadPolys(const Package& package, const PackageExport& polys) {
  ObjectReader reader = ReadObject(package, polys);
  if (!ReadProperties(package, reader)) return std::nullopt;
  const std::size_t count = ReadPlainCount(reader, 62);
  std::vector<FilePolygon> polygons;
  polygons.reserve(count);
  for (std::size_t i = 0; i < count && !reader.Failed(); ++i)
    polygons.push_back(ReadPolygon(package, reader));
  if (reader.Failed()) return std::nullopt;
  return polygons;
}

} // namespace quarvel
