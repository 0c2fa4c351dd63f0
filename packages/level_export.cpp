#include "packages/level_export.h"

#include "base/ascii_text.h"
#include "base/file_name.h"
#include "base/text_coding.h"
#include "packages/level_objects.h"
#include "packages/property_text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <set>

namespace quarvel {
namespace {

constexpr std::string_view lineEnd = "\r\n";

/// Properties that are arrays also where only their first place is set; its number is then part of the key.
constexpr std::string_view arrays[] = {"AIProfile",   "Events",          "KeyPos",      "KeyRot", "MultiSkins",
                                       "OutDelays",   "OutEvents",       "Sounds",      "Paths",  "upstreamPaths",
                                       "PrunedPaths", "VisNoReachPaths", "InternalTime"};

/// Objects are written once, so a level's text is a small multiple of its file, unless many of them name the same
/// polygons to make it grow.
constexpr std::size_t mostGrowth = 32;
constexpr std::size_t leastLimit = 1 << 20;

struct CaseBlind {
  bool operator()(std::string_view a, std::string_view b) const {
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(),
                                        [](char x, char y) { return LowerCase(x) < LowerCase(y); });
  }
};

class LevelWriter {
 public:
  explicit LevelWriter(const Package& package)
      : package_(package), limit_(std::max(leastLimit, package.File.size() * mostGrowth)),
        arrays_(std::begin(arrays), std::end(arrays)) {}

  ExportedLevel Write() {
    const PackageExport* level = FindLevel(package_);
    if (!level) return Failed("holds no level");
    const auto actors = ReadLevelActors(package_, *level);
    if (!actors) return Failed("holds a damaged level");
    out_.Text = "Begin Map\r\n";
    out_.Text.reserve(package_.File.size() * 2);
    ReadActors(*actors);
    for (const Actor& actor : actors_) {
      WriteActor(actor);
      if (out_.Text.size() > limit_) return Failed("is damaged: its text would be out of proportion to it");
    }
    out_.Text += "End Map\r\n";
    return std::move(out_);
  }

 private:
  struct Actor {
    std::string_view Class, Name;
    std::vector<Property> Properties;
  };

  static ExportedLevel Failed(std::string reason) {
    ExportedLevel level;
    level.Error = std::move(reason);
    return level;
  }

  void Fault(std::string_view name, FindingCode code) {
    out_.Faults.push_back({code, std::string(name), TextOf(code)});
  }

  void ReadActors(const std::vector<ObjectRef>& actors) {
    std::set<ObjectRef> seen;
    for (const ObjectRef ref : actors) {
      const PackageExport* object = ExportOf(package_, ref);
      const std::string_view name = ObjectName(package_, ref);
      if (!object || name.empty() || ClassName(package_, ref).empty()) {
        Fault("object " + std::to_string(ref), FindingCode::ActorNotInFile);
      } else if (seen.insert(ref).second) {
        ReadActor(ref, *object, name);
      }
    }
  }

  void ReadActor(ObjectRef ref, const PackageExport& object, std::string_view name) {
    ObjectReader reader = ReadObject(package_, object);
    auto properties = ReadProperties(package_, reader);
    if (!properties) return Fault(name, FindingCode::DamagedProperties);
    for (const Property& property : *properties)
      if (property.ArrayIndex > 0) arrays_.insert(property.Name);
    actors_.push_back({ClassName(package_, ref), name, std::move(*properties)});
  }

  void WriteActor(const Actor& actor) {
    std::string& text = out_.Text;
    text += "Begin Actor Class=";
    AppendWord(actor.Class);
    text += " Name=";
    AppendWord(actor.Name);
    text += lineEnd;
    for (const Property& property : actor.Properties) {
      if (SameText(property.Name, "Brush")) WriteBrush(actor, ObjectValue(property));
      if (!SameText(property.Name, "Name")) WriteProperty(property);
    }
    text += "     Name=\"";
    AppendPlain(text, actor.Name);
    text += "\"\r\nEnd Actor\r\n";
  }

  void WriteProperty(const Property& property) {
    const std::size_t before = out_.Text.size();
    out_.Text += "     ";
    AppendPlain(out_.Text, property.Name);
    if (arrays_.contains(property.Name)) out_.Text += "(" + std::to_string(property.ArrayIndex) + ")";
    out_.Text += '=';
    if (AppendValue(out_.Text, package_, property)) {
      out_.Text += lineEnd;
    } else {
      out_.Text.resize(before);
    }
  }

  void WriteBrush(const Actor& actor, ObjectRef model) {
    const PackageExport* shape = ExportOf(package_, model);
    if (!shape) return;
    const auto polys = ReadModelPolys(package_, *shape);
    if (!polys) return Fault(actor.Name, FindingCode::DamagedBrush);
    out_.Text += "    Begin Brush Name=";
    AppendWord(ObjectName(package_, model));
    out_.Text += "\r\n       Begin PolyList\r\n";
    if (const PackageExport* list = ExportOf(package_, *polys)) WritePolygons(actor, *list);
    out_.Text += "       End PolyList\r\n    End Brush\r\n";
  }

  void WritePolygons(const Actor& actor, const PackageExport& list) {
    const auto polygons = ReadPolys(package_, list);
    if (!polygons) return Fault(actor.Name, FindingCode::DamagedPolygons);
    for (const FilePolygon& polygon : *polygons)
      WritePolygon(polygon);
  }

  void WritePolygon(const FilePolygon& polygon) {
    std::string& text = out_.Text;
    text += "          Begin Polygon";
    if (!polygon.Item.empty() && !SameText(polygon.Item, "None")) {
      text += " Item=";
      AppendWord(polygon.Item);
    }
    if (polygon.Texture != 0) {
      text += " Texture=";
      AppendWord(TextureWord(polygon.Texture));
    }
    if (polygon.Flags != 0) text += " Flags=" + std::to_string(static_cast<std::int32_t>(polygon.Flags));
    if (polygon.Link != -1) text += " Link=" + std::to_string(polygon.Link);
    text += lineEnd;
    WriteTriple("Origin   ", polygon.Origin);
    WriteTriple("Normal   ", polygon.Normal);
    if (polygon.PanU != 0 || polygon.PanV != 0)
      text += "             Pan      U=" + std::to_string(polygon.PanU) + " V=" + std::to_string(polygon.PanV) + "\r\n";
    WriteTriple("TextureU ", polygon.TextureU);
    WriteTriple("TextureV ", polygon.TextureV);
    for (const FileVector& vertex : polygon.Vertices)
      WriteTriple("Vertex   ", vertex);
    text += "          End Polygon\r\n";
  }

  /// The name that a face calls its texture by.
  const std::string& TextureWord(ObjectRef texture) {
    const auto [at, isNew] = textureWords_.try_emplace(texture);
    if (!isNew) return at->second;
    const std::string full = FullName(package_, texture, OwnPackageName);
    const std::string_view name = ObjectName(package_, texture);
    const auto known = out_.TextureNames.try_emplace(FoldName(name), full).first;
    return at->second = SameText(known->second, full) ? std::string(name) : full;
  }

  void WriteTriple(std::string_view key, const FileVector& vector) {
    out_.Text += "             ";
    out_.Text += key;
    for (std::size_t i = 0; i < vector.size(); ++i) {
      if (i > 0) out_.Text += ',';
      AppendCoordinate(vector[i]);
    }
    out_.Text += lineEnd;
  }

  /// A sign, at least five digits, and six decimals.
  void AppendCoordinate(float value) {
    char digits[64];
    const double number = std::isfinite(value) ? double{value} : 0.0;
    const auto end = std::to_chars(digits, digits + sizeof digits, std::abs(number), std::chars_format::fixed, 6).ptr;
    out_.Text += std::signbit(number) ? '-' : '+';
    if (const auto length = end - digits; length < 12) out_.Text.append(static_cast<std::size_t>(12 - length), '0');
    out_.Text.append(digits, end);
  }

  /// A value that ends at the first blank.
  void AppendWord(std::string_view word) {
    const std::size_t before = out_.Text.size();
    AppendPlain(out_.Text, word);
    std::replace(out_.Text.begin() + static_cast<std::ptrdiff_t>(before), out_.Text.end(), ' ', '_');
  }

  const Package& package_;
  std::size_t limit_;
  std::set<std::string_view, CaseBlind> arrays_;
  std::vector<Actor> actors_;
  std::map<ObjectRef, std::string> textureWords_;
  ExportedLevel out_;
};

} // namespace

ExportedLevel ExportLevel(const Package& package) { return LevelWriter(package).Write(); }

} // namespace quarvel
