#include "t3d/terrain_record.h"

#include "base/reference.h"
#include "math/number_text.h"
#include "t3d/record_reading.h"

#include <algorithm>

namespace quarvel {

namespace {

/// What stands behind the key, which may be the layer's last.
std::string ItemOf(std::string_view layer, std::string_view key) {
  std::string item;
  if (!TryGetBetween(layer, key, ",", item)) TryGetBetween(layer, key, ")", item);
  return item;
}

Plane4 ReadPlane(std::string_view layer, std::string_view key) {
  Plane4 plane;
  const std::size_t at = layer.find(key);
  if (at == layer.npos) return plane;
  std::string values(GetBetweenFrom(layer, static_cast<TextCursor>(at + 1), "(", ")"));
  std::replace(values.begin(), values.end(), ',', ' ');
  values += ' '; // a word at the very end of a text is not read
  const TextBlock block(values, 1, static_cast<TextCursor>(values.size() + 1));
  GetKeyValue(block, "X=", plane.X);
  GetKeyValue(block, "Y=", plane.Y);
  GetKeyValue(block, "Z=", plane.Z);
  GetKeyValue(block, "W=", plane.W);
  return plane;
}

TerrainLayer ReadLayer(std::string_view text) {
  TerrainLayer layer;
  layer.Texture = ReferencePath(ItemOf(text, "Texture=Texture"));
  layer.AlphaMap = ItemOf(text, "AlphaMap=");
  layer.UScale = ParseLeadingNumber(ItemOf(text, "UScale="));
  layer.VScale = ParseLeadingNumber(ItemOf(text, "VScale="));
  layer.XPlane = ReadPlane(text, "XPlane=");
  layer.YPlane = ReadPlane(text, "YPlane=");
  layer.ZPlane = ReadPlane(text, "ZPlane=");
  layer.WPlane = ReadPlane(text, "WPlane=");
  return layer;
}

/// A layer is one line: what one layer leaves out is not looked for in the next.
void ReadLayers(const TextBlock& block, TerrainRecord& terrain) {
  for (std::size_t i = 0; i < terrain.Layers.size(); ++i) {
    TextCursor at = block.Find(IndexedKey(" Layers", static_cast<int>(i)));
    if (at == 0) continue;
    ++at; // behind the blank or line break that begins the key
    terrain.Layers[i] = ReadLayer(ReadLineAt(block.Text(), at));
  }
}

/// There may be half a million entries, so they are read in one go instead of being looked up one by one.
void ReadVisibility(const TextBlock& block, TerrainRecord& terrain) {
  constexpr std::string_view stem = "QuadVisibilityBitmap(";
  constexpr std::size_t mostEntries = std::size_t{MaxTerrainSide} * MaxTerrainSide / 32;
  for (TextCursor at = FindText(block.Text(), stem, block.From(), block.To()); at != 0;
       at = FindText(block.Text(), stem, at, block.To())) {
    const char before = block.Text()[static_cast<std::size_t>(at - 2)];
    at += static_cast<TextCursor>(stem.size());
    if (std::string_view(" \t\r\n").find(before) == std::string_view::npos) continue;
    const std::string_view line = ReadLineAt(block.Text(), at);
    const std::size_t value = line.find(")=");
    const double index = ParseLeadingNumber(line);
    if (value == line.npos || !(index >= 0 && index < static_cast<double>(mostEntries))) continue;
    const auto entry = static_cast<std::size_t>(index);
    if (entry >= terrain.QuadVisibilityBitmap.size()) terrain.QuadVisibilityBitmap.resize(entry + 1);
    // Exports write the 32 bits as a signed number.
    terrain.QuadVisibilityBitmap[entry] = static_cast<std::uint32_t>(
        RoundToInteger(ParseLeadingNumber(line.substr(value + 2)), -2147483648LL, 4294967295LL));
  }
}

void ReadTerrainKeys(const TextBlock& block, TerrainRecord& terrain) {
  terrain.Location = GetVectorOr0(block, " Location=");
  GetKeyValue(block, "DecoLayerOffset=", terrain.DecoLayerOffset);
  terrain.TerrainScale = GetVectorOr1(block, "TerrainScale=");
  GetKeyValue(block, "TerrainMap=", terrain.TerrainMap);
  terrain.TerrainMap = ReferencePath(terrain.TerrainMap);
  GetKeyValue(block, "SoundVolume=", terrain.SoundVolume);
  GetKeyValue(block, "DrawScale=", terrain.DrawScale);
  GetKeyValue(block, "CollisionRadius=", terrain.CollisionRadius);
  GetKeyValue(block, "CollisionHeight=", terrain.CollisionHeight);
  ReadLayers(block, terrain);
  ReadVisibility(block, terrain);
}

} // namespace

TerrainRecord ReadTerrain(const T3DLevel& level, const ActorBlock& actor) {
  return ReadRecord<TerrainRecord>(level, actor, ReadTerrainKeys);
}

} // namespace quarvel
