#pragma once

#include <string>
#include <utility>

namespace quarvel {

/// The content of a text box that is read as a number: the text as it was typed (and is saved), and its value.
struct NumberText {
  std::string Text;
  double Value = 0;

  NumberText() = default;
  NumberText(std::string text, double value) : Text(std::move(text)), Value(value) {}
  operator double() const { return Value; }
};

/// Where the files that a scene refers to go, and how the scene names them. One group per resource kind.
struct DestinationOptions {
  bool DestDoCopy = true;      ///< copy found files to the destination
  bool DestOverwrite = false;  ///< replace files that are already there
  bool UEd3Behavior = false;   ///< try a file named "Package.Name" first
  int DestPathBehavior = 0;    ///< 0 beside the scene, 1 in a folder of the kind's name, 2 the library's folders
  std::string DestPrependPath; ///< put in front of every reference
};

/// Every option of a run, with its default. A field bears the name of the control that holds it; the table of options
/// (settings/option_table.h) gives each its kind, help text, range and place in the settings file.
struct ConversionSettings {
  // Files
  std::string ComboInFileName;
  std::string TextOutFileName;
  std::string TextSearchPathTxt; ///< folders joined with ";", here and in the two below; empty: the input's folder
  std::string TextSearchPathSnd = R"(d:\data\sound)";
  std::string TextSearchPathMesh = R"(d:\data\3d\unreal)";
  std::string ListBMtypeOut = "png";
  std::string ListMaskedBMtypeOut = "png";
  std::string ListTerrainBMtypeOut = "png";
  bool CheckRescanFile = true;
  DestinationOptions TextureDest;
  DestinationOptions SoundDest;
  DestinationOptions MeshDest;

  // Geometry
  NumberText TextScale{"0.01904761905", 0.01904761905}; ///< scene units per Unreal unit
  bool CheckDoGeometry = true;
  bool CheckBuildBrush = false;
  bool CheckBreakUpBB = false;
  bool CheckIgnore = false;
  bool CheckTranslucentSolid = false;
  bool CheckCarve = false;
  bool CheckMergeLevel = false;
  bool CheckCCW = false;
  bool CheckAppendDash = false;
  bool CheckCreaseAngle = false;
  NumberText TextCreaseAngle{"30", 30}; ///< degrees
  bool OptionIFSs = false;
  bool OptionMeshes = true;
  NumberText TextStartAtPoly{"0", 0}; ///< number of the first polygon of a brush that is converted
  bool CheckEnclose = false;

  // Movers and triggers
  bool CheckMovers = true;
  bool CheckShowTriggers = false;
  NumberText TextMoverTriggerMargin{"100", 100}; ///< Unreal units

  // Textures
  NumberText TextTexPanScale{"1", 1};

  // Meshes and terrain
  bool CheckDoMeshes = true;
  bool CheckReportMissingMeshes = true;
  bool CheckInlineWRL = true;
  bool CheckInlineX3D = true;
  bool CheckMeshAppendCCW = false;
  NumberText TextMeshScale{"1", 1};
  bool CheckDoTerrain = true;
  bool OptionTerrainEG = true;
  bool OptionTerrainIFS = false;
  NumberText TextTerrainScale{"1", 1};

  // Lights
  bool CheckDoLights = true;
  bool CheckOutputStaticLights = false;
  bool CheckLightTransform = false;
  bool CheckIgnoreBlackLight = false;
  NumberText TextLightRadiusScale{"25", 25};
  bool OptionIntensityHack = true;
  bool OptionIntensityOverride = false;
  NumberText TextLightIntensity{"1", 1};
  NumberText TextAmbientInfluence{"0.2", 0.2};
  bool CheckBakeLight = false;
  NumberText TextLightTexel{"16", 16};       ///< Unreal units
  NumberText TextLightMapSize{"1024", 1024}; ///< texels
  NumberText TextSpriteScale{"1", 1};
  bool CheckFog = true;
  bool CheckHeadlight = true;

  // Sounds
  bool CheckDoSounds = true;
  NumberText TextSoundRadiusScale{"1", 1};

  // Viewpoints
  std::string ListMovement = "walk";
  bool CheckOutputPlayerStarts = true;
  bool CheckGroupCamera = false;
  bool CheckOutputFlyThru = false;
  bool CheckOutputFlyThruViewpoints = false;
  bool CheckShowFlyThru = false;
  bool CheckFlyThruDelay = false;
  NumberText TextFlyThruDelay{"0", 0}; ///< seconds
  NumberText TextBezierSubD{"0.1", 0.1};
  bool CheckMakeDefaultViewpoint = false;
  bool OptionDefViewAsScript = true;
  bool OptionDefViewAsProxSensor = false;
  bool OptionDefViewPSAuto = true;
  bool OptionDefViewPSSize = false;
  NumberText TextVProxSizeX{"1000000", 1000000};
  NumberText TextVProxSizeY{"1000000", 1000000};
  NumberText TextVProxSizeZ{"1000000", 1000000};
  NumberText TextTeleHtOff{"0", 0}; ///< Unreal units
  bool CheckSkyZone = false;

  // Output
  bool OptionVRML97 = true;
  bool OptionFlux = false;
  bool OptionContact = false;
  bool CheckXMLtoo = false;
  bool CheckConforming = false;
  bool CheckMakePage = false;
  bool CheckPageOnly = false;
  std::string TextViewer; ///< the viewer's script for a page; empty: the one among the program's files
  bool CheckMakePreloadScript = false;
  std::string TextJavascriptURL;
  bool CheckBeep = false;

  // The window
  int SSTabPrefs = 0;
  int FormWidth = 0; ///< pixels; 0: as the program chooses
  int FormHeight = 0;
};

} // namespace quarvel
