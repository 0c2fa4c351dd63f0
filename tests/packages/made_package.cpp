#include "tests/packages/made_package.h"

#include "packages/level_export.h"
#include "packages/sound_object.h"
#include "packages/texture_object.h"

namespace quarvel::test {
namespace {

/// The properties that all textures have.
ObjectBytes Texture(MadePackage& package, ObjectRef palette, int width, int height) {
  ObjectBytes texture(package);
  return texture.Object("Palette", palette).Int("USize", width).Int("VSize", height);
}

void AddPixelTextures(MadePackage& package, ObjectRef group, ObjectRef palette) {
  const Blob indices{0, 1, 2, 3, 4, 5, 6, 255};
  package.Export("Texture", "Brick", Texture(package, palette, 4, 2).None().Index(1).Mip(indices, 4, 2), group);
  package.Export("Texture", "Fence",
                 Texture(package, palette, 4, 2).Bool("bMasked", true).None().Index(1).Mip(indices, 4, 2), group);
  package.Export("Texture", "Glass",
                 Texture(package, 0, 1, 2).Byte("Format", 5).None().Index(1).Mip({1, 2, 3, 255, 5, 6, 7, 9}, 1, 2));
  // One block: all pixels the first colour, which is red.
  const Blob red{0x00, 0xF8, 0, 0, 0, 0, 0, 0};
  package.Export("Texture", "Stripe", Texture(package, 0, 4, 4).Byte("Format", 3).None().Index(1).Mip(red, 4, 4));
  package.Export(
      "Texture", "Packed",
      Texture(package, 0, 4, 4).Bool("bHasComp", true).Byte("CompFormat", 3).None().Index(0).Index(1).Mip(red, 4, 4));
  const ObjectRef elsewhere = package.Import("Package", 0, "Elsewhere");
  const ObjectRef foreign = package.Import("Palette", elsewhere, "Autumn");
  package.Export("Texture", "Leaf", Texture(package, foreign, 4, 2).None().Index(1).Mip(indices, 4, 2));
}

void AddProceduralTextures(MadePackage& package, ObjectRef palette, ObjectRef source) {
  package.Export("FireTexture", "Torch", Texture(package, palette, 32, 32).None().Index(0));
  package.Export("WaveTexture", "Pool", Texture(package, palette, 32, 16).None().Index(0));
  package.Export("IceTexture", "Ice",
                 Texture(package, palette, 4, 2).Object("SourceTexture", source).None().Index(1).Mip({}, 4, 2));
}

/// A square in the plane Z = 0; the first of a shape is panned both ways, the next along U.
ObjectBytes& AddPolygon(ObjectBytes& polys, MadePackage& package, ObjectRef texture, std::size_t number) {
  polys.Index(4).Floats({-8, 8, 0}).Floats({0, 0, 1}).Floats({1, 0, 0}).Floats({0, -0.5F, 0});
  polys.Floats({-8, 8, 0}).Floats({8, 8, 0}).Floats({8, -8, 0}).Floats({-8, -8, 0.25F});
  return polys.U32(0x80000002)
      .Index(0)
      .Index(texture)
      .Index(package.Name("OUTSIDE"))
      .Index(3)
      .Index(-1)
      .U16(number < 2 ? 0xFFFF : 0)
      .U16(number < 1 ? 16 : 0);
}

/// A brush's shape: a box, a sphere, empty lists, and the polygons.
ObjectRef AddModel(MadePackage& package, std::string_view name, const std::vector<ObjectRef>& textures) {
  ObjectBytes polys(package);
  polys.None().U32(static_cast<unsigned>(textures.size())).U32(0);
  for (std::size_t i = 0; i < textures.size(); ++i)
    AddPolygon(polys, package, textures[i], i);
  const ObjectRef list = package.Export("Polys", "Polys1", polys);
  ObjectBytes model(package);
  model.None().Add(Blob(package.Version() < 62 ? 37 : 41, 0)).Add(Blob(5, 0)).U32(0).U32(0).Index(list);
  return package.Export("Model", name, model);
}

constexpr unsigned hasStack = 0x02000000;

} // namespace

Blob MadeTextures(int version) {
  MadePackage package(version);
  const ObjectRef group = package.Export("Package", "Walls");
  const ObjectRef palette = package.Export("Palette", "Palette1", PaletteBytes(package));
  AddPixelTextures(package, group, palette);
  AddProceduralTextures(package, palette, 3);
  ObjectBytes sound(package);
  package.Export("Sound", "Hum", sound.None().Index(package.Name("WAV")).Data(WaveBytes(4000)), group);
  return package.Build();
}

Blob MadeLevel(int version) {
  MadePackage package(version);
  const ObjectRef castle = package.Import("Package", 0, "Castle");
  const ObjectRef brick = package.Import("Texture", package.Import("Package", castle, "Walls"), "Brick");
  const ObjectRef palette = package.Export("Palette", "Palette1", PaletteBytes(package));
  const ObjectRef moss =
      package.Export("Texture", "Moss", Texture(package, palette, 2, 1).None().Index(1).Mip({1, 2}, 2, 1));
  const ObjectRef info = package.Export("LevelInfo", "LevelInfo0", {}, 0, hasStack);
  package.SetData(info, ObjectBytes(package).StateFrame().String("Title", "Two\nrooms").Object("Level", info).None());
  const ObjectRef otherBrick = package.Import("Texture", package.Import("Package", 0, "Harbour"), "Brick");
  const ObjectRef model = AddModel(package, "Model2", {brick, moss, otherBrick});
  const FileBytes region = FileBytes().Add(CompactIndex(info)).U32(0xFFFFFFFF).U8(3);
  const ObjectRef brush = package.Export("Brush", "Brush1",
                                         ObjectBytes(package)
                                             .StateFrame()
                                             .Byte("CsgOper", 1)
                                             .Struct("MainScale", "Scale", FileBytes().Floats({1, -2, 1, 0.5F}).U8(5))
                                             .Struct("Region", "PointRegion", region)
                                             .Vector("Location", 16, 0, -1.5F)
                                             .Struct("Rotation", "Rotator", FileBytes().U32(0).U32(0xFFFFC000).U32(0))
                                             .Object("Brush", model)
                                             .Vector("PrePivot", 0, 8, 0)
                                             .None(),
                                         0, hasStack);
  const ObjectRef dispatcher = package.Export("Dispatcher", "Dispatcher0",
                                              ObjectBytes(package)
                                                  .StateFrame()
                                                  .NameOf("OutEvents", "First")
                                                  .NameOf("OutEvents", "Last", 7)
                                                  .Float("Wait", 0.1F)
                                                  .Bool("bHidden", false)
                                                  .Byte("LightType", 99)
                                                  .Object("Texture", 0)
                                                  .Struct("DistanceFogColor", "Color", {0, 128, 9, 0})
                                                  .Struct("Unknown", "Mystery", {1, 2, 3})
                                                  .Struct("TooLong", "Color", {1, 2, 3, 4, 5})
                                                  .Struct("Edge", "Plane", FileBytes().Floats({1, 2, 3, 4}))
                                                  .NameOf("Name", "Another")
                                                  .None(),
                                              0, hasStack);
  ObjectBytes level(package);
  level.None().U32(4).U32(16).Index(info).Index(0).Index(brush).Index(dispatcher);
  package.Export("Level", "MyLevel", level);
  return package.Build();
}

void ReadEverything(const Package& package) {
  for (std::size_t i = 0; i < package.Exports.size(); ++i) {
    const ObjectRef object = RefOfExport(i);
    FullName(package, object, package.Name);
    if (IsTextureClass(ClassName(package, object))) ReadTexturePicture({&package, i});
    if (IsSoundClass(ClassName(package, object)))
      if (const auto sound = ReadSound(package, package.Exports[i])) WaveSeconds(sound->File);
  }
  ExportLevel(package);
}

} // namespace quarvel::test
