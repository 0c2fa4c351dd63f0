#include "app/desktop/page_layout.h"

#include <algorithm>

namespace quarvel {

namespace {

using Tab = OptionTab;

std::vector<PageSection> NamedSections() {
  return {
      {Tab::Files, 0, "Folders to look in", {"TextSearchPathTxt", "TextSearchPathSnd", "TextSearchPathMesh"}},
      {Tab::Files, 0, "Level", {"CheckRescanFile"}},

      {Tab::Geometry,
       0,
       "Brushes",
       {"CheckDoGeometry", "CheckBuildBrush", "CheckBreakUpBB", "CheckIgnore", "CheckCCW", "TextStartAtPoly"}},
      {Tab::Geometry, 1, "Face sets", {"OptionMeshes", "OptionIFSs", "CheckTranslucentSolid"}},
      {Tab::Geometry, 1, "Shading", {"CheckCreaseAngle", "+TextCreaseAngle"}},
      {Tab::Geometry, 1, "Whole level", {"CheckCarve", "CheckMergeLevel"}},
      {Tab::Geometry, 0, "World", {"TextScale"}},

      {Tab::Textures, 0, "Image types", {"ListBMtypeOut", "ListMaskedBMtypeOut", "ListTerrainBMtypeOut"}},
      {Tab::Textures, 1, "Moving textures", {"TextTexPanScale"}},

      {Tab::MoversAndTriggers, 0, "Movers", {"CheckMovers", "TextMoverTriggerMargin"}},
      {Tab::MoversAndTriggers, 1, "Triggers", {"CheckShowTriggers"}},

      {Tab::Lights,
       0,
       "Lights",
       {"CheckDoLights", "CheckOutputStaticLights", "CheckIgnoreBlackLight", "CheckLightTransform",
        "TextLightRadiusScale", "TextSpriteScale"}},
      {Tab::Lights, 1, "Light intensity", {"OptionIntensityHack", "OptionIntensityOverride", "TextLightIntensity"}},
      {Tab::Lights, 1, "Light maps", {"CheckBakeLight", "TextLightTexel", "TextLightMapSize"}},
      {Tab::Lights, 1, "Surroundings", {"CheckHeadlight", "CheckFog", "TextAmbientInfluence"}},

      {Tab::Sounds, 0, "Sounds", {"CheckDoSounds", "TextSoundRadiusScale"}},

      {Tab::Viewpoints, 0, "Visitors", {"ListMovement", "CheckOutputPlayerStarts", "CheckGroupCamera"}},
      {Tab::Viewpoints,
       0,
       "Fly-through",
       {"CheckOutputFlyThru", "CheckOutputFlyThruViewpoints", "CheckShowFlyThru", "TextBezierSubD", "CheckFlyThruDelay",
        "+TextFlyThruDelay"}},
      {Tab::Viewpoints,
       1,
       "Default viewpoint",
       {"CheckMakeDefaultViewpoint", "OptionDefViewAsScript", "OptionDefViewAsProxSensor", "OptionDefViewPSAuto",
        "OptionDefViewPSSize", "TextVProxSizeX", "TextVProxSizeY", "TextVProxSizeZ"}},
      {Tab::Viewpoints, 1, "Places", {"TextTeleHtOff", "CheckSkyZone"}},

      {Tab::MeshesAndTerrain,
       0,
       "Meshes",
       {"CheckDoMeshes", "CheckInlineWRL", "CheckInlineX3D", "CheckMeshAppendCCW", "CheckReportMissingMeshes",
        "TextMeshScale"}},
      {Tab::MeshesAndTerrain,
       1,
       "Terrain",
       {"CheckDoTerrain", "OptionTerrainEG", "OptionTerrainIFS", "TextTerrainScale"}},

      {Tab::Output, 0, "Encoding", {"OptionVRML97", "OptionFlux", "OptionContact"}},
      {Tab::Output, 0, "Scene", {"CheckConforming", "CheckEnclose", "CheckXMLtoo", "CheckAppendDash"}},
      {Tab::Output,
       1,
       "Web page",
       {"CheckMakePage", "CheckPageOnly", "TextViewer", "CheckMakePreloadScript", "TextJavascriptURL"}},
      {Tab::Output, 1, "Afterwards", {"CheckBeep"}},
  };
}

bool IsNamed(const std::vector<PageSection>& sections, std::string_view control) {
  return std::any_of(sections.begin(), sections.end(), [&](const PageSection& section) {
    return std::any_of(section.Controls.begin(), section.Controls.end(),
                       [&](std::string_view name) { return WithoutPlus(name) == control; });
  });
}

} // namespace

std::string_view WithoutPlus(std::string_view name) { return name.substr(name.starts_with('+') ? 1 : 0); }

std::vector<PageSection> PageSections() {
  std::vector<PageSection> sections = NamedSections();
  const std::size_t named = sections.size();
  for (const OptionInfo& option : OptionTable()) {
    if (option.Tab == Tab::None || StandsAbovePages(option) || IsDestinationOption(option)) continue;
    if (IsNamed(sections, option.Control)) continue;
    const auto more = std::find_if(sections.begin() + static_cast<std::ptrdiff_t>(named), sections.end(),
                                   [&](const PageSection& section) { return section.Tab == option.Tab; });
    if (more == sections.end())
      sections.push_back({option.Tab, 0, "More", {option.Control}});
    else
      more->Controls.push_back(option.Control);
  }
  return sections;
}

bool StandsAbovePages(const OptionInfo& option) {
  return option.Control == "ComboInFileName" || option.Control == "TextOutFileName";
}

bool IsDestinationOption(const OptionInfo& option) {
  for (const std::string_view kind : {"Texture", "Sound", "Mesh"})
    for (const std::string_view name :
         {"DestDoCopy", "DestOverwrite", "UEd3Behavior", "DestPathBehavior", "DestPrependPath"})
      if (option.Control == std::string(kind) + std::string(name)) return true;
  return false;
}

} // namespace quarvel
