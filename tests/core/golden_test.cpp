#include "core/run_report.h"
#include "core/run_summary.h"
#include "images/image_png.h"
#include "tests/core/converted.h"
#include "tests/csg/made_brushes.h"
#include "tests/images/made_images.h"
#include "tests/made_actors.h"
#include "tests/scene/scene_readers.h"

#include <algorithm>
#include <cstdlib>
#include <gtest/gtest.h>
#include <iomanip>
#include <set>
#include <zlib.h>

namespace quarvel::test {
namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string_view>;

/// Each on top of `Everything`. What does not change a level's scene is left out of its golden.
constexpr const char* sceneOptions[] = {
    "OptionContact=-1",
    "OptionIFSs=-1 CheckCreaseAngle=1 TextCreaseAngle=60",
    "OptionIFSs=-1 CheckTranslucentSolid=1",
    "CheckBuildBrush=1 CheckBreakUpBB=1",
    "CheckIgnore=1",
    "TextStartAtPoly=1",
    "CheckCCW=1",
    "CheckAppendDash=1 CheckCCW=1 CheckMeshAppendCCW=1",
    "CheckEnclose=1",
    "CheckSkyZone=1",
    "CheckShowTriggers=1 TextMoverTriggerMargin=20 TextTeleHtOff=30",
    "CheckMovers=0 CheckDoLights=0 CheckDoSounds=0 CheckDoMeshes=0 CheckDoTerrain=0",
    "TextTexPanScale=2",
    "CheckInlineWRL=0 TextMeshScale=3",
    "CheckMeshAppendCCW=1",
    "CheckInlineX3D=0 MeshDestPathBehavior=1 MeshDestPrependPath=https://example.org/m/",
    "OptionTerrainIFS=-1 TextTerrainScale=2",
    "CheckOutputStaticLights=0",
    "CheckLightTransform=1 TextLightRadiusScale=2 TextAmbientInfluence=0.7",
    "CheckIgnoreBlackLight=1 OptionIntensityOverride=-1 TextLightIntensity=0.4 TextSpriteScale=2",
    "CheckFog=0 CheckHeadlight=0 ListMovement=fly",
    "TextSoundRadiusScale=2 SoundDestPathBehavior=1",
    "ListBMtypeOut=jpg ListMaskedBMtypeOut=gif ListTerrainBMtypeOut=bmp TextureDestPathBehavior=1",
    "CheckOutputPlayerStarts=0 CheckGroupCamera=1",
    "CheckShowFlyThru=1 CheckFlyThruDelay=1 TextFlyThruDelay=3 TextBezierSubD=0.3",
    "CheckOutputFlyThruViewpoints=0 OptionDefViewPSSize=-1 TextVProxSizeX=10 TextVProxSizeY=20 TextVProxSizeZ=30",
    "OptionDefViewAsScript=-1",
    "CheckMakeDefaultViewpoint=0",
    "CheckMergeLevel=1",
    "CheckCarve=1",
    "CheckCarve=1 CheckBakeLight=1",
    "CheckCarve=1 CheckSkyZone=1",
    "CheckBakeLight=1 CheckDoGeometry=0",
};

Lines LinesOf(std::string_view text) {
  Lines lines;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = std::min(text.find('\n', at), text.size() - 1) + 1;
    lines.push_back(text.substr(at, end - at));
    at = end;
  }
  return lines;
}

/// What makes one text of another: the numbers of the lines that go ("-"), and the lines that come ("+"). A kept scene
/// that differs little from another is a few lines this way, which a reviewer can read.
std::string Difference(std::string_view from, std::string_view to) {
  const Lines a = LinesOf(from), b = LinesOf(to);
  // The longest common rest of a from i and of b from j.
  const std::size_t width = b.size() + 1;
  std::vector<std::uint16_t> rest((a.size() + 1) * width);
  for (std::size_t i = a.size(); i-- > 0;)
    for (std::size_t j = b.size(); j-- > 0;) {
      const std::size_t at = i * width + j;
      rest[at] = a[i] == b[j] ? static_cast<std::uint16_t>(rest[at + width + 1] + 1)
                              : std::max(rest[at + width], rest[at + 1]);
    }
  std::string difference;
  const auto goes = [&](std::size_t i, std::size_t j) {
    const bool same = i < a.size() && j < b.size() && a[i] == b[j];
    return i < a.size() && !same && (j == b.size() || rest[(i + 1) * width + j] >= rest[i * width + j + 1]);
  };
  for (std::size_t i = 0, j = 0; i < a.size() || j < b.size();) {
    if (goes(i, j)) {
      difference += "-" + std::to_string(i + 1);
      const std::size_t first = i;
      while (goes(i, j))
        ++i;
      difference += i - first > 1 ? ".." + std::to_string(i) + "\n" : "\n";
    } else if (i < a.size() && j < b.size() && a[i] == b[j]) {
      ++i, ++j;
    } else {
      difference += "+ ";
      difference += b[j++];
    }
  }
  return difference;
}

/// Compares with the file that was looked at and kept. With QUARVEL_KEEP_GOLDENS set, the file takes the text instead.
void ExpectKept(const std::string& name, const std::string& text) {
  const fs::path file = fs::path(QUARVEL_TEST_DATA_DIR) / "golden" / name;
  if (std::getenv("QUARVEL_KEEP_GOLDENS") != nullptr) {
    std::ofstream(file, std::ios::binary) << text;
    return;
  }
  if (const std::string kept = ReadFile(file); kept != text)
    ADD_FAILURE() << name << " differs:\n"
                  << Difference(kept, text).substr(0, 2000)
                  << "\nWhen that is right, run this test with QUARVEL_KEEP_GOLDENS=1 and look at what git shows.";
}

/// Settings under which every converter writes what it can.
ConversionSettings Everything(const fs::path& library) {
  ConversionSettings settings;
  settings.TextSearchPathTxt = QUARVEL_SAMPLES_DIR "/textures;" + library.string();
  settings.TextSearchPathSnd = QUARVEL_SAMPLES_DIR "/sounds";
  settings.TextSearchPathMesh = QUARVEL_SAMPLES_DIR "/meshes;" + library.string();
  settings.CheckOutputStaticLights = settings.CheckOutputFlyThru = settings.CheckOutputFlyThruViewpoints = true;
  settings.CheckMakeDefaultViewpoint = settings.OptionDefViewAsProxSensor = true;
  settings.TextLightTexel = {"64", 64};
  settings.TextLightMapSize = {"64", 64};
  return settings;
}

std::string MoverOf(std::string brush) { return brush.replace(brush.find("Class=Brush"), 11, "Class=Mover"); }

/// Rooms to carve and to light, of every kind of brush.
std::string Rooms() {
  const std::string add = " CsgOper=CSG_Add\n", subtract = " CsgOper=CSG_Subtract\n", flags = " PolyFlags=";
  const std::string sky = " Region=(Zone=SkyZoneInfo'L.Sky')\n", world = " Region=(Zone=LevelInfo'L.LevelInfo0')\n";
  CsgBrush gap = SubtractBox({2000, 0, 0}, {2100, 100, 100}), water = AddBox({0, 0, 60}, {1024, 1536, 60});
  gap.Polygons.pop_back();
  water.Polygons.erase(water.Polygons.begin(), water.Polygons.end() - 1);
  return "Begin Map\n" + BoxActor("Hall", SubtractBox({0, 0, 0}, {1024, 1536, 512}), subtract, "plaster") +
         BoxActor("Passage", SubtractBox({1024, 256, 0}, {1536, 512, 256}), subtract, "quay") +
         BoxActor("Pillar", AddBox({400, 400, 0}, {528, 528, 512}), add, "crate") +
         BoxActor("Turned", AddBox({600, 1000, 0}, {728, 1128, 128}, {0, 4096, 0}), add + " Location=(Z=16)\n",
                  "lamp") +
         BoxActor("Ledge", AddBox({0, 1300, 100}, {200, 1536, 140}), add + flags + "32\n", "planks") +
         BoxActor("Pane", AddBox({800, 300, 0}, {808, 500, 128}), add + flags + "12\n", "glass") +
         BoxActor("Grate", AddBox({100, 100, 0}, {108, 200, 64}), add + flags + "266\n", "grating") +
         BoxActor("Fall", AddBox({1000, 700, 0}, {1024, 900, 400}), add + flags + "1032\n", "fall") +
         BoxActor("Banner", AddBox({300, 1300, 300}, {308, 1380, 400}), add + flags + "8\n", "planks") +
         BoxActor("Glow", AddBox({300, 1400, 0}, {340, 1440, 40}), add + flags + "4194304\n", "flame") +
         BoxActor("Sign", AddBox({1014, 1000, 200}, {1024, 1100, 300}), add + flags + "1048576\n", "brick") +
         BoxActor("Dent", SubtractBox({500, 1400, 0}, {600, 1500, 60}), subtract + flags + "32\n", "brick") +
         BoxActor("Bare", AddBox({500, 1050, 0}, {700, 1090, 200}), add, "None") +
         BoxActor("Unseen", AddBox({510, 1000, 0}, {560, 1200, 50}), add + flags + "1\n", "metal") +
         BoxActor("Linked", AddBox({100, 500, 0}, {150, 600, 50}), add + " url=https---example--org\n", "crate") +
         BoxActor("Far", AddBox({0, 0, 0}, {100, 100, 2e7}), add, "crate") + BoxActor("Gap", gap, subtract, "crate") +
         BoxActor("Water", water, add + flags + "67108868\n", "quay") +
         BoxActor("Door", AddBox({1024, 256, 0}, {1040, 512, 256}), add + flags + "67108872\n", "metal") +
         MoverOf(BoxActor("Lift", AddBox({900, 1200, 0}, {1000, 1300, 16}), " KeyPos(1)=(Z=200)\n", "metal")) +
         "Begin Actor Class=Light Name=Warm\n Location=(X=200,Y=200,Z=300)\n LightHue=20\n LightSaturation=64\n"
         " LightRadius=48\nEnd Actor\n"
         "Begin Actor Class=Spotlight Name=Cone\n Location=(X=700,Y=1300,Z=480)\n Rotation=(Pitch=-16384)\n"
         " LightHue=160\n LightSaturation=32\n LightBrightness=255\n LightRadius=64\n LightCone=64\nEnd Actor\n"
         "Begin Actor Class=Light Name=Special\n Location=(X=900,Y=1050,Z=250)\n bSpecialLit=True\nEnd Actor\n"
         "Begin Actor Class=Light Name=Shining\n Location=(X=512,Y=256,Z=400)\n Texture=Texture'flare'\n"
         " Style=STY_Translucent\nEnd Actor\n"
         "Begin Actor Class=Light Name=Blinking\n Location=(X=1300,Y=400,Z=128)\n LightType=LT_Blink\nEnd Actor\n"
         "Begin Actor Class=PlayerStart Name=Start\n Location=(X=100,Y=1000,Z=40)\nEnd Actor\n"
         "Begin Actor Class=SkyZoneInfo Name=Sky\n Location=(X=5000,Y=5000,Z=5000)\n" +
         sky + "End Actor\n" +
         // The pivot of the sky's room stands in the rock, as the editor leaves it, so that no zone holds it.
         BoxActor("SkyRoom", SubtractBox({4800, 4800, 4800}, {9800, 5200, 5200}), world + subtract, "plaster") +
         BoxActor("Moon", AddBox({5000, 5000, 5100}, {5100, 5100, 5200}), sky + add, "lamp") +
         BoxActor("Hill", AddBox({4800, 4800, 4800}, {4900, 4900, 4900}), world + add, "planks") + "End Map\n";
}

/// An image as it is seen: its size and its sum, and of a light map every fourth texel of every fourth row.
std::string PictureText(const std::string& png, bool texels) {
  const auto page = ReadPng({reinterpret_cast<const std::uint8_t*>(png.data()), png.size()});
  if (!page || !page.Picture) return "no picture\n";
  const Image& image = *page.Picture;
  std::ostringstream text;
  unsigned long sum = 1;
  for (const std::uint8_t value : image.Values)
    sum = (sum * 31 + value) % 1000003;
  text << image.Width << " x " << image.Height << ", sum " << sum << std::hex << std::setfill('0');
  const auto width = static_cast<std::size_t>(image.Width);
  for (std::size_t i = 0; texels && i < image.Values.size() / 4; ++i) {
    if (i / width % 4 != 0 || i % 4 != 0) continue;
    text << (i % width == 0 ? "\n" : " ");
    for (std::size_t channel = 0; channel < 3; ++channel)
      text << std::setw(2) << int{image.Values[4 * i + channel]};
  }
  return text.str() + "\n";
}

/// A level of one of everything.
class Golden : public testing::TestWithParam<const char*> {
 protected:
  Golden() {
    const Blob hills = MadeBmp(4, 3, 16, {}, Blob{0, 128, 0, 144, 0,   128, 0, 96, 0,   160, 0, 128,
                                                  0, 128, 0, 128, 255, 127, 0, 0,  255, 255, 0, 128});
    library_.Write("golden_hills.bmp", hills);
    for (const char* mesh : {"Other/Urn.wrl", "Other/Urn.x3d", "Old.wrl", "New.x3d", "Gate-.wrl"})
      library_.Write(mesh, mesh);
    library_.Write("Vase.x3d", "<X3D><Scene><Script DEF='S'/><Group DEF='T'/>"
                               "<Sound><AudioClip url='\"sounds/Bell.wav\"'/></Sound>"
                               "<ROUTE fromNode='S' fromField='a' toNode='T' toField='b'/>"
                               "<ROUTE fromNode='T' fromField='b' toNode='S' toField='a'/></Scene></X3D>");
    level_ = LevelOf(Name());
    settings_ = Everything(library_.Path());
  }

  std::string Name() const { return GetParam(); }

  static std::string LevelOf(const std::string& name) {
    const fs::path data = QUARVEL_TEST_DATA_DIR;
    if (name == "rooms") return Rooms();
    std::string level = ReadFile(data / "golden" / (name == "odd2" ? "odd.t3d" : name + ".t3d"));
    if (name == "first") level += ReadFile(data / "golden.t3d");
    if (name == "odd2") level.insert(level.find("     Title="), "     PhysicsVolume=None\n");
    return level;
  }

  Converted Make(const std::string& options) const { return MakeIn(TemporaryFolder(), options); }
  Converted MakeIn(const TemporaryFolder& folder, const std::string& options) const {
    ConversionSettings settings = settings_;
    SetOptions(options, settings);
    Converted converted = ConvertIn(folder, level_, settings);
    EXPECT_EQ(converted.Result.Outcome, RunOutcome::Done) << options << ": " << converted.Result.Error;
    return converted;
  }

  TemporaryFolder library_;
  std::string level_;
  ConversionSettings settings_;
};

TEST_P(Golden, ScenesStayAsTheyAre) {
  const Converted plain = Make(""), classic = Make("OptionFlux=-1");
  const Converted conforming = Make("CheckConforming=1"), both = Make("CheckConforming=1 OptionFlux=-1");
  if (Name() == "odd2") {
    level_ = LevelOf("odd");
    const Converted first = Make("");
    ExpectKept("odd2.wrl.diff", Difference(first.Text, plain.Text));
    ExpectKept("odd2.x3d.diff", Difference(first.Document, plain.Document));
  } else {
    ExpectKept(Name() + ".wrl", plain.Text);
    ExpectKept(Name() + ".x3d", plain.Document);
  }
  ExpectKept(Name() + ".x3dv.diff", Difference(plain.Text, classic.Text));
  ExpectKept(Name() + "-conforming.wrl.diff", Difference(plain.Text, conforming.Text));
  ExpectKept(Name() + "-conforming.x3d.diff", Difference(plain.Document, conforming.Document));
  ExpectKept(Name() + "-conforming.x3dv.diff", Difference(conforming.Text, both.Text));
  EXPECT_EQ(classic.Document, plain.Document);
  EXPECT_EQ(both.Document, conforming.Document);
  for (const ReadScene& scene :
       {ReadVrml(plain.Text), ReadVrml(conforming.Text), ReadVrml(both.Text), ReadX3D(conforming.Document)})
    EXPECT_EQ(scene.Faults, std::vector<std::string>());
}

/// The levels whose goldens a set of options is worth: a copy of what is seen elsewhere is not.
bool IsWorthIt(const std::string& level, std::string_view options) {
  const auto begins = [&](std::initializer_list<std::string_view> all) {
    return std::any_of(all.begin(), all.end(), [&](std::string_view one) { return options.starts_with(one); });
  };
  if (level == "first") return !begins({"CheckCarve", "CheckMerge"});
  if (level == "rooms") return begins({"CheckCarve", "CheckMerge", "CheckCCW", "TextTexPan", "CheckBake"});
  if (level == "odd")
    return begins({"OptionContact", "CheckIgnore", "CheckShowTriggers", "CheckOutputStaticLights",
                   "CheckLightTransform", "TextSoundRadius", "CheckMerge", "CheckOutputFlyThru"});
  return level == "second";
}

/// The scenes of such options are to be taken by strict viewers, and to hold the same in both encodings.
void ExpectStrict(const Converted& converted, bool isConforming, bool isSame) {
  const ReadScene text = ReadVrml(converted.Text), document = ReadX3D(converted.Document);
  const std::vector<std::string> none;
  EXPECT_EQ(text.Faults, none);
  EXPECT_EQ(isConforming ? document.Faults : WithoutQuirks(document.Faults), none);
  EXPECT_EQ(isSame ? Differences(text, document) : none, none);
}

TEST_P(Golden, OptionsChangeWhatTheyAreFor) {
  const Converted plain = Make("");
  std::string changes;
  for (const char* set : sceneOptions) {
    const TemporaryFolder folder;
    if (!IsWorthIt(Name(), set)) continue;
    SCOPED_TRACE(set);
    const std::string options = set, conforming = options + " CheckConforming=1";
    const bool isBaked = options.find("CheckBake") != options.npos;
    const Converted changed = MakeIn(folder, options);
    ExpectStrict(changed, false, false);
    ExpectStrict(Make(conforming), true, !isBaked); // VRML97 has no light maps
    if (!options.starts_with("OptionContact")) ExpectStrict(Make(conforming + " OptionFlux=-1"), true, true);
    const std::string text = Difference(plain.Text, changed.Text),
                      document = Difference(plain.Document, changed.Document);
    if (text + document == "") continue;
    changes += options + "\ntext\n" + text + "document\n" + document;
    for (const fs::path& file : changed.Result.FilesWritten) {
      const std::string name = file.filename().string(), content = ReadFile(file);
      if (name.find("Light") != name.npos) changes += name + " " + PictureText(content, true);
      if (!name.starts_with("level") && name.ends_with(".wrl")) changes += name + "\n" + Difference("", content);
    }
  }
  if (!changes.empty()) ExpectKept(Name() + "-options.diff", changes);
}

/// Everything that is told, and everything that is written.
TEST_P(Golden, ReportsStayAsTheyAre) {
  const TemporaryFolder folder;
  const std::string own = Name() == "rooms"   ? " CheckCarve=1 CheckOutputStaticLights=0"
                          : Name() == "first" ? " OptionFlux=-1"
                                              : "";
  RunResult result =
      MakeIn(folder, "CheckMakePreloadScript=1 CheckXMLtoo=1 CheckSkyZone=1 CheckIgnoreBlackLight=1" + own).Result;
  result.Seconds = 0;
  CarvingResult& carved = result.Carving;
  carved.PrepareSeconds = carved.CarveSeconds = carved.WeldSeconds = carved.WriteSeconds = 0;
  std::ostringstream summary;
  WriteSummary(summary, result, SummaryLength::Full);
  result.Bounds = InitBounds(); // in its shortest form in the summary
  std::string told = summary.str() + ReportAsJson({result}) + "\n";
  const std::string place = folder.Path().string() + "/";
  for (std::size_t at = told.find(place); at != told.npos; at = told.find(place, at))
    told.erase(at, place.size());
  std::set<std::string> files;
  for (const auto& entry : fs::recursive_directory_iterator(folder.Path()))
    files.insert(fs::relative(entry.path(), folder.Path()).string());
  for (const std::string& file : files) {
    told += file + "\n";
    if (file.ends_with("Textures.txt") || file.ends_with(".js")) told += folder.Read(file);
    if (file.ends_with(".png")) told += PictureText(folder.Read(file), false);
  }
  ExpectKept(Name() + ".txt", told);
  EXPECT_EQ(folder.Read("level.xml"), folder.Read("level.x3d"));
}

/// The bytes that base64 stands for (RFC 4648, clause 4).
std::string FromBase64(std::string_view text) {
  constexpr std::string_view digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string bytes;
  unsigned bits = 0;
  int count = 0;
  for (const char c : text.substr(0, text.find('='))) {
    bits = bits << 6U | static_cast<unsigned>(digits.find(c));
    if ((count += 6) >= 8) bytes += static_cast<char>(bits >> static_cast<unsigned>(count -= 8));
  }
  return bytes;
}

std::string Unzipped(const std::string& packed) {
  std::string text(1 << 20, '\0');
  z_stream stream{};
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(packed.data()));
  stream.avail_in = static_cast<uInt>(packed.size());
  stream.next_out = reinterpret_cast<Bytef*>(text.data());
  stream.avail_out = static_cast<uInt>(text.size());
  inflateInit2(&stream, 31);
  EXPECT_EQ(inflate(&stream, Z_FINISH), Z_STREAM_END);
  text.resize(stream.total_out);
  inflateEnd(&stream);
  return text;
}

/// A page without its style and its own script, which are files of the project, and with its parts unpacked.
std::string PageText(const std::string& html) {
  const std::size_t style = html.find("<style>"), body = html.find("</style>"), script = html.rfind("<script nonce");
  std::string text = html.substr(0, style) + html.substr(body, script - body);
  const std::string nonce = "'nonce-";
  text.erase(text.find(nonce) + nonce.size(), 32);
  for (std::size_t at = text.find("data-name=\""); at != text.npos; at = text.find("data-name=\"", at + 1)) {
    const std::size_t begin = text.find('>', at) + 1, end = text.find('<', begin);
    const std::string part = text.substr(begin, end - begin);
    std::string shown;
    if (const std::size_t data = part.find("base64,"); data != part.npos) {
      const std::string bytes = FromBase64(part.substr(data + 7));
      // How well an image is packed is the library's business.
      const std::string size = std::to_string(bytes.size()) + " bytes";
      shown = part.substr(0, data) + (bytes.starts_with("\x89PNG") ? PictureText(bytes, false) : size);
    } else {
      shown = "\n" + Unzipped(FromBase64(part));
      for (std::size_t tag = shown.find("><"); tag != shown.npos; tag = shown.find("><", tag))
        shown.insert(++tag, "\n"); // the scenes have no lines of their own
    }
    text.replace(begin, end - begin, shown);
  }
  return text;
}

TEST_P(Golden, PagesStayAsTheyAre) {
  if (Name() != "first") return;
  settings_.TextViewer = WriteViewer(library_).string();
  const TemporaryFolder folder;
  fs::copy_file(QUARVEL_SAMPLES_DIR "/textures/flame.png", library_.Path() / "Harbour.Windows.glass.png");
  MakeIn(folder, "CheckMakePage=1 OptionFlux=-1 CheckEnclose=1 CheckAppendDash=1 TextureUEd3Behavior=1");
  ExpectKept(Name() + ".html.txt", PageText(folder.Read("level.html")));
}

INSTANTIATE_TEST_SUITE_P(Levels, Golden, testing::Values("first", "second", "rooms", "odd", "odd2"),
                         [](const auto& level) { return std::string(level.param); });

} // namespace
} // namespace quarvel::test
