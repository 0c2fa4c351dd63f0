#include "settings/option_table.h"

#include "base/ascii_text.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <utility>

namespace quarvel {

namespace {

constexpr std::array<std::string_view, 6> imageTypes{"png", "jpg", "gif", "bmp", "tga", "dds"};
constexpr std::array<std::string_view, 4> movements{"walk", "fly", "examine", "none"};

constexpr double unbounded = std::numeric_limits<double>::infinity();
constexpr NumberRange anyNumber{};
constexpr NumberRange positive{0, unbounded, true};
constexpr NumberRange notNegative{0};
constexpr NumberRange count{0, 1e9, false, true};
constexpr NumberRange fraction{0, 1};
constexpr NumberRange lightTexel{0.25, 4096};
constexpr NumberRange lightMapSize{1, 4096, false, true};

template <auto Member>
constexpr OptionField Field() {
  return {[](ConversionSettings& settings) -> OptionValue { return &(settings.*Member); },
          [](const ConversionSettings& settings) -> ConstOptionValue { return &(settings.*Member); }};
}

template <auto Group, auto Member>
constexpr OptionField Field() {
  return {[](ConversionSettings& settings) -> OptionValue { return &(settings.*Group.*Member); },
          [](const ConversionSettings& settings) -> ConstOptionValue { return &(settings.*Group.*Member); }};
}

using Kind = OptionKind;
using Tab = OptionTab;
using Rows = std::vector<OptionInfo>;

OptionInfo Make(Kind kind, std::string control, OptionField field, std::string caption, Tab tab, std::string help,
                std::string dependsOn) {
  OptionInfo option;
  option.Caption = std::move(caption);
  option.Key = control;
  option.Control = std::move(control);
  option.Kind = kind;
  option.Tab = tab;
  option.Field = field;
  option.Help = std::move(help);
  option.DependsOn = std::move(dependsOn);
  return option;
}

OptionInfo Check(std::string control, OptionField field, std::string caption, Tab tab, std::string help,
                 std::string dependsOn = {}) {
  return Make(Kind::CheckBox, std::move(control), field, std::move(caption), tab, std::move(help),
              std::move(dependsOn));
}

OptionInfo Text(std::string control, OptionField field, std::string caption, Tab tab, std::string help,
                std::string dependsOn = {}) {
  return Make(Kind::Text, std::move(control), field, std::move(caption), tab, std::move(help), std::move(dependsOn));
}

OptionInfo Button(std::string control, OptionField field, std::string caption, Tab tab, std::string group,
                  std::string help, std::string dependsOn = {}) {
  OptionInfo option = Make(Kind::OptionButton, std::move(control), field, std::move(caption), tab, std::move(help),
                           std::move(dependsOn));
  option.Group = std::move(group);
  return option;
}

OptionInfo Number(std::string control, OptionField field, std::string caption, Tab tab, NumberRange range,
                  std::string help, std::string dependsOn = {}) {
  OptionInfo option =
      Make(Kind::Number, std::move(control), field, std::move(caption), tab, std::move(help), std::move(dependsOn));
  option.Range = range;
  return option;
}

OptionInfo Integer(std::string control, OptionField field, std::string caption, Tab tab, NumberRange range,
                   std::string help) {
  OptionInfo option = Make(Kind::Integer, std::move(control), field, std::move(caption), tab, std::move(help), {});
  option.Range = range;
  return option;
}

OptionInfo List(std::string control, OptionField field, std::string caption, Tab tab,
                std::span<const std::string_view> items, std::string help, std::string dependsOn = {}) {
  OptionInfo option =
      Make(Kind::List, std::move(control), field, std::move(caption), tab, std::move(help), std::move(dependsOn));
  option.Items = items;
  return option;
}

OptionInfo WithKey(std::string key, OptionInfo option) {
  option.Key = std::move(key);
  return option;
}

// A control's name and its field are one word, so that neither can be paired with another.
#define FIELD(name) #name, Field < &ConversionSettings::name>()

Rows FileAndPathRows() {
  return {
      WithKey("InFile", Text(FIELD(ComboInFileName), "Level", Tab::Files,
                             "The level: a T3D file, a pattern with ? or *, or a list: folder,first.t3d,second.t3d")),
      WithKey("OutFile", Text(FIELD(TextOutFileName), "Scene", Tab::Files,
                              "The scene to write; its extension is replaced by the one of the encoding")),
      WithKey("Scale", Number(FIELD(TextScale), "Scale", Tab::Geometry, positive, "Scene units to one Unreal unit")),
      Text(FIELD(TextSearchPathTxt), "Textures", Tab::Files,
           "Folders with textures, joined with ';'; empty for the folder of the level"),
      Text(FIELD(TextSearchPathSnd), "Sounds", Tab::Files,
           "Folders with sounds, joined with ';'; empty for the folder of the level", "CheckDoSounds"),
      Text(FIELD(TextSearchPathMesh), "Meshes", Tab::Files,
           "Folders with meshes, joined with ';'; empty for the folder of the level", "CheckDoMeshes"),
      List(FIELD(ListBMtypeOut), "Ordinary textures", Tab::Textures, imageTypes, "Image type of ordinary textures"),
      List(FIELD(ListMaskedBMtypeOut), "Masked textures", Tab::Textures, imageTypes, "Image type of masked textures"),
      List(FIELD(ListTerrainBMtypeOut), "Terrain textures", Tab::Textures, imageTypes, "Image type of terrain textures",
           "CheckDoTerrain"),
  };
}

Rows ContentRows() {
  return {
      List(FIELD(ListMovement), "Movement", Tab::Viewpoints, movements,
           "How visitors move: the type of the NavigationInfo node"),
      Check(FIELD(CheckShowTriggers), "Show triggers", Tab::MoversAndTriggers,
            "Puts a translucent box around triggers and teleport entries"),
      Check(FIELD(CheckBuildBrush), "Just 'Build Brush'", Tab::Geometry,
            "Just 'Build Brush': ignore CSG, convert only the builder brush", "CheckDoGeometry"),
      Check(FIELD(CheckMovers), "Convert Movers", Tab::MoversAndTriggers, "Convert movers"),
      Check(FIELD(CheckDoGeometry), "Convert Brushes", Tab::Geometry, "Convert brushes"),
      Check(FIELD(CheckIgnore), "Ignore faces without texture", Tab::Geometry,
            "Leave out faces that have no texture, or the default texture"),
      Check(FIELD(CheckTranslucentSolid), "Translucent faces are solid", Tab::Geometry,
            "Visitors bump into translucent faces, also masked and two-sided ones", "OptionIFSs"),
      Check(FIELD(CheckHeadlight), "Headlight", Tab::Lights, "Visitors carry a light"),
      Number(FIELD(TextTeleHtOff), "Extra teleporter height", Tab::Viewpoints, anyNumber,
             "Extra height in Unreal units to add to teleporters"),
      Number(FIELD(TextTexPanScale), "Panning speed", Tab::Textures, positive,
             "Scaling factor applied to UV Texture Pan speed"),
      Number(FIELD(TextMeshScale), "Mesh scale", Tab::MeshesAndTerrain, positive,
             "Apply this scale to all meshes (normally 1)", "CheckDoMeshes"),
      Number(FIELD(TextTerrainScale), "Terrain scale", Tab::MeshesAndTerrain, positive,
             "Apply this scale to VRML XZ coords (not height)", "CheckDoTerrain"),
      WithKey("Tab", Integer(FIELD(SSTabPrefs), "", Tab::None, count, "The option page that the window shows")),
      Integer(FIELD(FormWidth), "", Tab::None, count, "Width of the window in pixels; 0 for the usual one"),
      Integer(FIELD(FormHeight), "", Tab::None, count, "Height of the window in pixels; 0 for the usual one"),
      Number(FIELD(TextMoverTriggerMargin), "Space around triggers", Tab::MoversAndTriggers, notNegative,
             "Put this much space around triggers to make ProximitySensors. Larger ones are easier to 'hit'",
             "CheckMovers"),
      Check(FIELD(CheckOutputPlayerStarts), "Player starts", Tab::Viewpoints,
            "Write a viewpoint for every player start"),
      Check(FIELD(CheckOutputFlyThruViewpoints), "Viewpoints on the way", Tab::Viewpoints,
            "Write a viewpoint for every point of the fly-through", "CheckOutputFlyThru"),
      Check(FIELD(CheckOutputFlyThru), "Convert Fly-through", Tab::Viewpoints,
            "Write the fly-through along the level's interpolation points"),
      Check(FIELD(CheckEnclose), "Enclose in one Transform", Tab::Output, "Enclose the whole scene in one Transform"),
  };
}

Rows EncodingAndMeshRows() {
  return {
      Button(FIELD(OptionContact), "Contact", Tab::Output, "Encoding", "Where possible, use Contact conventions"),
      Button(FIELD(OptionFlux), "Flux", Tab::Output, "Encoding", "Where possible, use Flux (X3D) conventions"),
      Button(FIELD(OptionVRML97), "VRML97", Tab::Output, "Encoding", "Where possible, use VRML97 conventions"),
      Check(FIELD(CheckReportMissingMeshes), "Report missing meshes", Tab::MeshesAndTerrain,
            "List the meshes that were not found", "CheckDoMeshes"),
      Check(FIELD(CheckInlineWRL), "Include .WRL meshes", Tab::MeshesAndTerrain, "Look for and include .WRL mesh files",
            "CheckDoMeshes"),
      Check(FIELD(CheckInlineX3D), "Include .X3D meshes", Tab::MeshesAndTerrain, "Look for and include .X3D mesh files",
            "CheckDoMeshes"),
      Button(FIELD(OptionIFSs), "Seperate IFSs", Tab::Geometry, "Face sets",
             "Seperate IFSs: one face set per Unreal polygon"),
      Button(FIELD(OptionMeshes), "Mesh IFSs", Tab::Geometry, "Face sets",
             "Mesh IFSs: one face set per texture of a brush"),
      Check(FIELD(CheckDoSounds), "Convert Sounds", Tab::Sounds, "Convert sounds"),
      Check(FIELD(CheckDoLights), "Convert Lights", Tab::Lights, "Convert lights"),
      Check(FIELD(CheckDoMeshes), "Convert Meshes", Tab::MeshesAndTerrain, "Convert meshes"),
      Button(FIELD(OptionTerrainEG), "Elevation grid", Tab::MeshesAndTerrain, "Terrain", "Terrain as an elevation grid",
             "CheckDoTerrain"),
      Button(FIELD(OptionTerrainIFS), "Face sets", Tab::MeshesAndTerrain, "Terrain",
             "Terrain as face sets, without hidden squares", "CheckDoTerrain"),
      Check(FIELD(CheckBreakUpBB), "Break up into meshes", Tab::Geometry, "Break Build Brush into seperate meshes",
            "CheckBuildBrush"),
  };
}

Rows LightRows() {
  return {
      Check(FIELD(CheckLightTransform), "Wrap in transform", Tab::Lights,
            "Wrap in transform: place each light by a Transform of its own", "CheckDoLights"),
      Number(FIELD(TextLightRadiusScale), "Radius scale", Tab::Lights, positive,
             "Scale light radii by this amount (normally 1)", "CheckDoLights"),
      Button(FIELD(OptionIntensityHack), "Scale RGB to Intensity", Tab::Lights, "Light intensity",
             "Scale RGB to Intensity: full colour, the brightness as intensity", "CheckDoLights"),
      Button(FIELD(OptionIntensityOverride), "Use this Intensity", Tab::Lights, "Light intensity",
             "Use this Intensity: one intensity for every light, the brightness in the colour", "CheckDoLights"),
      Check(FIELD(CheckIgnoreBlackLight), "Ignore Black Lights", Tab::Lights,
            "Ignore Black Lights: leave out lights without brightness", "CheckDoLights"),
      Number(FIELD(TextAmbientInfluence), "Ambient influence", Tab::Lights, fraction,
             "0 to 1, ambient lights contribute this much light to the surfaces"),
      Check(FIELD(CheckFog), "Fog", Tab::Lights, "Write the fog of the level"),
  };
}

Rows OutputAndViewpointRows() {
  return {
      Text(FIELD(TextJavascriptURL), "Base URL", Tab::Output, "Base URL for images to preload (empty for default)",
           "CheckMakePreloadScript"),
      Check(FIELD(CheckMakePreloadScript), "Make a preload script", Tab::Output,
            "Make a script that preloads the images of the scene"),
      Check(FIELD(CheckXMLtoo), "XML too?", Tab::Output,
            "Output a .xml file so you can see what the x3d looks like in Internet Explorer"),
      Check(FIELD(CheckDoTerrain), "Convert Terrain", Tab::MeshesAndTerrain, "Convert terrain"),
      Check(FIELD(CheckMakeDefaultViewpoint), "Make a default viewpoint", Tab::Viewpoints, "Write a default viewpoint"),
      Button(FIELD(OptionDefViewAsScript), "Bound by a script", Tab::Viewpoints, "Default viewpoint",
             "A script binds the default viewpoint", "CheckMakeDefaultViewpoint"),
      Button(FIELD(OptionDefViewAsProxSensor), "Bound by a proximity sensor", Tab::Viewpoints, "Default viewpoint",
             "A proximity sensor binds the default viewpoint", "CheckMakeDefaultViewpoint"),
      Button(FIELD(OptionDefViewPSAuto), "As large as the level", Tab::Viewpoints, "Sensor size",
             "The sensor is as large as the level", "OptionDefViewAsProxSensor"),
      Button(FIELD(OptionDefViewPSSize), "Of this size", Tab::Viewpoints, "Sensor size",
             "The sensor has the size given here", "OptionDefViewAsProxSensor"),
      Number(FIELD(TextVProxSizeX), "X", Tab::Viewpoints, positive, "Size of the sensor along X, in scene units",
             "OptionDefViewPSSize"),
      Number(FIELD(TextVProxSizeY), "Y", Tab::Viewpoints, positive, "Size of the sensor along Y, in scene units",
             "OptionDefViewPSSize"),
      Number(FIELD(TextVProxSizeZ), "Z", Tab::Viewpoints, positive, "Size of the sensor along Z, in scene units",
             "OptionDefViewPSSize"),
      Check(FIELD(CheckBeep), "Beep when done", Tab::Output, "Beep when the work is done"),
      Check(FIELD(CheckFlyThruDelay), "Start later", Tab::Viewpoints, "Delay the start of the fly-through",
            "CheckOutputFlyThru"),
      Check(FIELD(CheckCreaseAngle), "Crease angle", Tab::Geometry,
            "Write a crease angle: edges below it are shaded smooth"),
      Number(FIELD(TextCreaseAngle), "Degrees", Tab::Geometry, {0, 180}, "The crease angle in degrees",
             "CheckCreaseAngle"),
  };
}

Rows ExtraRows() {
  return {
      Check(FIELD(CheckConforming), "Conform to the standards", Tab::Output,
            "Write what today's viewers and validators ask for"),
      Check(FIELD(CheckCarve), "Carve the rooms", Tab::Geometry,
            "Carve the rooms out of the solid world as the game does, and write what is seen as few large shapes",
            "CheckDoGeometry"),
      Check(FIELD(CheckMergeLevel), "Merge all brushes", Tab::Geometry,
            "Write all brushes that stay in place as few large shapes, which browsers load faster", "CheckDoGeometry"),
      Check(FIELD(CheckOutputStaticLights), "Output Static Lights", Tab::Lights,
            "Output Static Lights: also the many that never change; browsers show the first 8 lights only",
            "CheckDoLights"),
      Check(FIELD(CheckBakeLight), "Bake light", Tab::Lights,
            "Bakes the lights that never change into light maps, with shadows, as the game does; merges the level"),
      Number(FIELD(TextLightTexel), "Texel", Tab::Lights, lightTexel, "Unreal units to one texel of a light map",
             "CheckBakeLight"),
      Number(FIELD(TextLightMapSize), "Map size", Tab::Lights, lightMapSize,
             "Texels along the side of a light map; fewer than 16 become 16", "CheckBakeLight"),
      Number(FIELD(TextSoundRadiusScale), "Radius scale", Tab::Sounds, positive,
             "Scale sound radii by this amount (normally 1)", "CheckDoSounds"),
      Number(FIELD(TextSpriteScale), "Sprite scale", Tab::Lights, positive,
             "Scale for lights with sprites (normally 1)", "CheckDoLights"),
      Number(FIELD(TextLightIntensity), "Intensity", Tab::Lights, fraction, "Intensity of every light, 0 to 1",
             "OptionIntensityOverride"),
      Check(FIELD(CheckGroupCamera), "Group cameras", Tab::Viewpoints,
            "Put each camera into a group of its own, which can be moved"),
      Check(FIELD(CheckMakePage), "Make a page", Tab::Output,
            "Make a page to walk in: one HTML file that holds everything and opens in a browser"),
      Text(FIELD(TextViewer), "Viewer", Tab::Output,
           "The viewer that a page holds: its file x_ite.min.js (empty for the one that comes with the program)",
           "CheckMakePage"),
  };
}

Rows SessionRows() {
  return {
      Check(FIELD(CheckAppendDash), "Append '-' to file name", Tab::Output,
            "Append '-' to file name when CCW is False"),
      Check(FIELD(CheckCCW), "Reverse all faces", Tab::Geometry, "Reverse all face orientations"),
      Check(FIELD(CheckMeshAppendCCW), "Append '-' to mesh names", Tab::MeshesAndTerrain,
            "Append '-' to CCW=False files", "CheckDoMeshes"),
      Check(FIELD(CheckRescanFile), "Reload File", Tab::Files,
            "Reload File: read the level again instead of converting the text in memory"),
      Check(FIELD(CheckSkyZone), "Sky zone", Tab::Viewpoints,
            "Write the sky zone as a scene of its own, shown in the main one"),
      Check(FIELD(CheckShowFlyThru), "Show the path", Tab::Viewpoints, "Draw the path of the fly-through",
            "CheckOutputFlyThru"),
      Number(FIELD(TextBezierSubD), "Bezier smoothness, between 0 and .5", Tab::Viewpoints, {0.01, 0.5},
             "Bezier smoothness, between 0 and .5", "CheckOutputFlyThru"),
      Number(FIELD(TextFlyThruDelay), "Seconds", Tab::Viewpoints, notNegative,
             "Seconds to delay after loading scene before starting fly-thru", "CheckFlyThruDelay"),
      Check(FIELD(CheckPageOnly), "Only the page", Tab::Output, "Write the page and no scenes beside it",
            "CheckMakePage"),
      Number(FIELD(TextStartAtPoly), "First polygon", Tab::Geometry, count,
             "The first polygon of each brush that is converted"),
  };
}

#undef FIELD

template <DestinationOptions ConversionSettings::*Group>
Rows DestinationRows(const std::string& kind) {
  constexpr Tab tab = Tab::Files;
  const std::string copy = kind + "DestDoCopy";
  return {
      Check(copy, Field<Group, &DestinationOptions::DestDoCopy>(), "Copy to the scene", tab,
            "Copy the files found to the scene"),
      Check(kind + "DestOverwrite", Field<Group, &DestinationOptions::DestOverwrite>(), "Overwrite existing files", tab,
            "Overwrite files that are already there", copy),
      Check(kind + "UEd3Behavior", Field<Group, &DestinationOptions::UEd3Behavior>(), "Names with package", tab,
            "Try a file named \"Package.Name\" first, as the newer editor exports them; a folder named like the group "
            "or package is always preferred"),
      Integer(kind + "DestPathBehavior", Field<Group, &DestinationOptions::DestPathBehavior>(), "Place of the copies",
              tab, {0, 2, false, true},
              "Where copies go: 0 beside the scene, 1 in a folder named after their kind, 2 in the library's folders"),
      Text(kind + "DestPrependPath", Field<Group, &DestinationOptions::DestPrependPath>(), "Prepend to references", tab,
           "Put in front of every reference, for instance a web address"),
  };
}

void Append(Rows& table, OptionPlace place, Rows rows) {
  for (OptionInfo& row : rows) {
    row.Place = place;
    table.push_back(std::move(row));
  }
}

Rows MakeTable() {
  Rows table;
  Append(table, OptionPlace::MainSection, FileAndPathRows());
  Append(table, OptionPlace::MainSection, ContentRows());
  Append(table, OptionPlace::MainSection, EncodingAndMeshRows());
  Append(table, OptionPlace::MainSection, LightRows());
  Append(table, OptionPlace::MainSection, OutputAndViewpointRows());
  using Settings = ConversionSettings;
  Append(table, OptionPlace::MainSection, DestinationRows<&Settings::TextureDest>("Texture"));
  Append(table, OptionPlace::MainSection, DestinationRows<&Settings::SoundDest>("Sound"));
  Append(table, OptionPlace::MainSection, DestinationRows<&Settings::MeshDest>("Mesh"));
  Append(table, OptionPlace::ExtraSection, ExtraRows());
  Append(table, OptionPlace::Nowhere, SessionRows());
  return table;
}

/// Levenshtein's distance: the fewest letters to insert, remove or replace that turn one text into the other.
std::size_t EditDistance(std::string_view a, std::string_view b) {
  std::vector<std::size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 0; i < a.size(); ++i) {
    std::size_t diagonal = std::exchange(row[0], i + 1);
    for (std::size_t j = 0; j < b.size(); ++j) {
      const std::size_t replaced = diagonal + (a[i] == b[j] ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({replaced, diagonal + 1, row[j] + 1});
    }
  }
  return row.back();
}

/// The name without the word for its kind: who types "Fog" means "CheckFog".
std::string_view WithoutKindWord(std::string_view control) {
  for (const std::string_view word : {"Check", "Option", "Text", "List", "Combo"})
    if (control.starts_with(word)) return control.substr(word.size());
  return control;
}

std::size_t Unlikeness(const std::string& typed, const OptionInfo& option) {
  return std::min(EditDistance(typed, LowerCase(option.Control)),
                  EditDistance(typed, LowerCase(WithoutKindWord(option.Control))));
}

} // namespace

const std::vector<OptionInfo>& OptionTable() {
  static const Rows table = MakeTable();
  return table;
}

const OptionInfo* FindOption(std::string_view control) {
  for (const OptionInfo& option : OptionTable())
    if (SameText(option.Control, control)) return &option;
  return nullptr;
}

const OptionInfo& NearestOption(std::string_view typed) {
  const std::string wanted = LowerCase(typed);
  return *std::min_element(OptionTable().begin(), OptionTable().end(), [&](const OptionInfo& a, const OptionInfo& b) {
    return Unlikeness(wanted, a) < Unlikeness(wanted, b);
  });
}

std::string_view TabCaption(OptionTab tab) {
  static constexpr std::array<std::string_view, 10> captions{"Files",  "Geometry", "Textures",   "Movers and triggers",
                                                             "Lights", "Sounds",   "Viewpoints", "Meshes and terrain",
                                                             "Output", ""};
  return captions[static_cast<std::size_t>(tab)];
}

} // namespace quarvel
