#include "scene/materials.h"

#include "math/number_text.h"
#include "t3d/brush_record.h"

#include <algorithm>

namespace quarvel {

namespace {

/// The surface bits that change how a texture looks; real exports set others at random.
constexpr std::uint32_t appearanceFlags = SurfaceMasked | SurfaceTranslucent | SurfaceTwoSided | SurfacePansU |
                                          SurfacePansV | SurfaceSmallWavy | SurfaceUnlit | SurfaceShiny;

constexpr const char* defaultTexture = "default";

std::string EntryKey(std::string_view texture, std::uint32_t flags) {
  return LowerCase(texture) + '|' + std::to_string(flags);
}

TextureMotion MotionOf(std::uint32_t flags) {
  if ((flags & SurfacePansU) && (flags & SurfacePansV)) return TextureMotion::PanUV;
  if (flags & SurfacePansU) return TextureMotion::PanU;
  if (flags & SurfacePansV) return TextureMotion::PanV;
  return flags & SurfaceSmallWavy ? TextureMotion::SmallWavy : TextureMotion::Still;
}

TextureUse UseOf(std::uint32_t flags, bool ofTerrain) {
  if (ofTerrain) return TextureUse::Terrain;
  return flags & SurfaceMasked ? TextureUse::Masked : TextureUse::Ordinary;
}

bool IsUnlit(const TextureEntry& entry) { return (entry.Flags & SurfaceUnlit) != 0; }

struct MaterialValues {
  std::string Diffuse, Specular, Shininess, Emissive, Transparency;
};

/// `conforming` keeps the shininess within the range of the field, 0 to 1 (VRML97, clause 6.27).
MaterialValues ValuesFor(const TextureEntry& entry, const std::string& litColor, bool conforming) {
  const bool shiny = (entry.Flags & SurfaceShiny) != 0;
  MaterialValues values;
  values.Diffuse = IsUnlit(entry) ? "1 1 1" : litColor;
  values.Specular = shiny ? "1 1 1" : "0 0 0";
  values.Shininess = !shiny ? "0.145" : conforming ? "0.390625" : "50"; // 50 of 128
  values.Emissive = "0 0 0"; // anything brighter washes the texture out in viewers
  values.Transparency = entry.Flags & SurfaceTranslucent ? ".5" : "0";
  return values;
}

std::string MaterialName(const MaterialValues& values) {
  std::string name = "Mat_" + values.Diffuse + " " + values.Specular + " " + values.Shininess + " " + values.Emissive +
                     " " + values.Transparency;
  std::replace_if(
      name.begin(), name.end(), [](char c) { return c == ' ' || c == '.'; }, '_');
  return name;
}

} // namespace

const char* TextureTransformName(TextureMotion motion) {
  constexpr const char* names[] = {"TEXTRANSUV", "TEXTRANSU", "TEXTRANSV", "TEXTRANSSMALLWAVY", "TEXTRANS"};
  return names[static_cast<int>(motion)];
}

MaterialWriter::MaterialWriter(SceneWriter& scene, ResourceFiles& resources, const ConversionSettings& settings,
                               std::string litColor)
    : scene_(scene), resources_(resources), settings_(settings), litColor_(std::move(litColor)) {}

int MaterialWriter::NumberOf(std::string_view texture, std::uint32_t flags, bool ofTerrain) {
  const std::uint32_t kept = flags & appearanceFlags;
  const std::string key = EntryKey(texture, kept) + (ofTerrain ? "|terrain" : "");
  const auto [at, isNew] = numbers_.try_emplace(key, static_cast<int>(entries_.size()));
  if (!isNew) return at->second;
  TextureEntry entry;
  entry.Name = texture.empty() ? defaultTexture : std::string(texture);
  entry.Flags = kept;
  if (!texture.empty()) entry.File = resources_.FindTexture(texture, UseOf(kept, ofTerrain));
  entry.AppearanceName = names_.Take(MakeDefName("T_" + entry.Name));
  entry.ImageName = ImageNameFor(entry);
  entries_.push_back(std::move(entry));
  return at->second;
}

/// Surfaces that use one image share its name; a masked use may refer to another file of the same texture.
std::string MaterialWriter::ImageNameFor(const TextureEntry& entry) {
  std::string& name = imageNames_[EntryKey(entry.Name, 0) + "|" + entry.File.Url];
  if (name.empty()) name = names_.Take(MakeDefName("IT_" + entry.Name));
  return name;
}

void MaterialWriter::WriteAppearance(int number, RunInterface& user) {
  TextureEntry& entry = entries_[static_cast<std::size_t>(number)];
  if (entry.Defined) {
    scene_.Use("      appearance ", "Appearance", entry.AppearanceName);
    return;
  }
  user.ShowUniqueMaterials(++uniqueMaterialCount_);
  const SceneNode appearance = scene_.Open("      appearance ", "Appearance", entry.AppearanceName);
  // Without a material a surface is unlit (VRML97, clause 4.14.2), but then it has no transparency either.
  const bool withoutMaterial = scene_.Conforming() && IsUnlit(entry) && !(entry.Flags & SurfaceTranslucent);
  if (!withoutMaterial) WriteMaterial(entry);
  if (!entry.File.Url.empty()) WriteTexture(entry);
  WriteTransform(number);
  entry.Defined = true;
}

void MaterialWriter::WriteMaterial(const TextureEntry& entry) {
  const MaterialValues values = ValuesFor(entry, litColor_, scene_.Conforming());
  const std::string name = MaterialName(values);
  if (!materialsWritten_.insert(name).second) {
    scene_.Use("        material ", "Material", name);
    return;
  }
  SceneNode material = scene_.Open("        material ", "Material", name);
  material.Field("          diffuseColor", values.Diffuse);
  material.Field("          ambientIntensity", FormatFlt(settings_.TextAmbientInfluence));
  material.Field("          specularColor", values.Specular);
  material.Field("          shininess", values.Shininess);
  if (IsUnlit(entry)) material.TextField("          emissiveColor", values.Emissive);
  material.Attribute("emissiveColor", values.Emissive);
  material.Field("          transparency", values.Transparency);
}

void MaterialWriter::WriteTexture(const TextureEntry& entry) {
  if (!IsUnlit(entry) || scene_.Conforming()) return WriteImage(entry);
  const bool contact = settings_.OptionContact;
  SceneNode wrapper = scene_.Open("", contact ? "texture" : "MultiTexture", {}, {.Scope = SceneScope::Document});
  if (contact)
    scene_.NoteQuirk("the element \"texture\" in the .x3d, which X3D does not know");
  else
    wrapper.Attribute("mode", "MODULATE");
  WriteImage(entry);
}

void MaterialWriter::WriteImage(const TextureEntry& entry, std::string_view lead) {
  if (!imagesWritten_.insert(entry.ImageName).second) {
    scene_.Use(lead, "ImageTexture", entry.ImageName);
    return;
  }
  SceneNode image = scene_.Open(lead, "ImageTexture", entry.ImageName);
  image.Strings("          url", entry.File.Url);
}

void MaterialWriter::WriteTransform(int number, std::string_view lead) {
  const TextureMotion motion = MotionOf(Entry(number).Flags);
  const char* name = TextureTransformName(motion);
  int& definedBy = definedBy_[static_cast<std::size_t>(motion)];
  if (definedBy >= 0) {
    scene_.Use(lead, "TextureTransform", name);
    return;
  }
  definedBy = number;
  SceneNode transform = scene_.Open(lead, "TextureTransform", name);
  transform.Field("          translation", "0 0");
  transform.Field("          scale", "1 1");
}

void MaterialWriter::WriteBakedAppearance(int number, int page, RunInterface& user) {
  const TextureEntry& entry = Entry(number);
  const auto [at, isNew] = bakedNames_.try_emplace({number, page});
  if (!isNew) {
    scene_.Use("      appearance ", "Appearance", at->second);
    return;
  }
  at->second = page == NoPage ? entry.AppearanceName : names_.Take(entry.AppearanceName + "_L" + std::to_string(page));
  user.ShowUniqueMaterials(++uniqueMaterialCount_);
  const SceneNode appearance = scene_.Open("      appearance ", "Appearance", at->second);
  if ((entry.Flags & SurfaceTranslucent) && !scene_.IsX3DClassic()) {
    // VRML97 has no transparent colours.
    SceneNode material = scene_.Open("        material ", "Material", {}, {.Scope = SceneScope::Text});
    material.Field("          diffuseColor", "0 0 0");
    material.Field("          emissiveColor", ".5 .5 .5");
    material.Field("          transparency", ".5");
  }
  WriteBakedTextures(entry, page);
  if (page == NoPage || entry.File.Url.empty())
    WriteTransform(number);
  else if (MotionOf(entry.Flags) != TextureMotion::Still)
    WriteMapTransform(number);
}

void MaterialWriter::WriteBakedTextures(const TextureEntry& entry, int page) {
  const bool hasImage = !entry.File.Url.empty();
  if (page == NoPage) {
    if (hasImage) WriteImage(entry);
    return;
  }
  if (!hasImage) return WritePage(page, "        texture ");
  const SceneScope maps = scene_.IsX3DClassic() ? SceneScope::Both : SceneScope::Document;
  SceneNode both = scene_.Open("        texture ", "MultiTexture", {}, {.Scope = maps});
  both.List("          mode", "\"MODULATE\" \"MODULATE\"", ListLayout::OneLine);
  both.Nodes("          texture");
  WriteImage(entry, scene_.IsX3DClassic() ? "            " : "        texture ");
  WritePage(page, "            ");
}

/// A page of light maps, which VRML97 knows no use for.
void MaterialWriter::WritePage(int page, std::string_view lead) {
  const SceneScope maps = scene_.IsX3DClassic() ? SceneScope::Both : SceneScope::Document;
  const std::string name = "LIGHTMAP" + std::to_string(page);
  if (!pagesWritten_.insert(page).second) return scene_.Use(lead, "ImageTexture", name, maps);
  SceneNode image = scene_.Open(lead, "ImageTexture", name, {.Scope = maps});
  image.Strings("              url", pageUrls_[static_cast<std::size_t>(page)]);
  image.Flag("              repeatS", false);
  image.Flag("              repeatT", false);
}

/// What moves is the surface's own texture; its light map stands still.
void MaterialWriter::WriteMapTransform(int number) {
  const SceneScope maps = scene_.IsX3DClassic() ? SceneScope::Both : SceneScope::Document;
  SceneNode both = scene_.Open("        textureTransform ", "MultiTextureTransform", {}, {.Scope = maps});
  both.Nodes("          textureTransform");
  WriteTransform(number, scene_.IsX3DClassic() ? "            " : "        textureTransform ");
  const SceneNode still = scene_.Open("            ", "TextureTransform", {}, {.Scope = maps});
}

} // namespace quarvel
