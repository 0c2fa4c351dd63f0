#pragma once

#include "base/report.h"
#include "math/matrix.h"
#include "scene/scene_names.h"
#include "scene/text_file.h"

#include <pugixml.hpp>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace quarvel {

/// Ends every line of the scene text.
inline constexpr std::string_view LineEnd = "\r\n";

/// The encoding of the text scene.
enum class TextEncoding {
  Vrml97,     ///< `OptionVRML97`
  Contact,    ///< `OptionContact`: VRML97 with conventions of its own
  X3DClassic, ///< `OptionFlux`: X3D in the classic VRML encoding
};

/// Which of the two scenes a route is for.
enum class RouteScope { Both, Text, Document };

/// One ROUTE, named by the DEF names of its ends.
struct Route {
  std::string FromNode, FromField, ToNode, ToField;
  RouteScope Scope = RouteScope::Both;
  bool InText = false; ///< already written there
};

class SceneWriter;

/// A node that is being written in both encodings at once. A field is one call: a line of the text and an attribute of
/// the element, with one value. `line` is the indentation and the field's name as they stand in the text.
class SceneNode {
 public:
  SceneNode(SceneWriter& writer, pugi::xml_node element) : writer_(&writer), element_(element) {}

  void Field(const char* line, const std::string& value);
  void Flag(const char* line, bool value);               ///< TRUE and FALSE in the text, true and false in the document
  void String(const char* line, std::string_view value); ///< an SFString
  /// An MFString with one entry: quoted in the text, bare in the document unless it conforms. `before` and `after` are
  /// what the text has around the quoted string.
  void Strings(const char* line, std::string_view value, std::string_view before = " ", std::string_view after = "");
  /// A list between brackets that stand on lines of their own; `indent` leads the values.
  void List(const char* line, const std::string& values, std::string_view indent, std::string_view closing);

  void TextField(const char* line, std::string_view value);   ///< in the text only
  void Attribute(const char* name, const std::string& value); ///< in the document only
  /// Fixes the order of attributes where it is not that of the text's lines.
  void AttributeOrder(std::initializer_list<const char*> names);

  pugi::xml_node Element() const { return element_; }
  SceneWriter& Writer() const { return *writer_; }

 private:
  SceneWriter* writer_;
  pugi::xml_node element_;
};

/// The two scenes of one run while they are written: converters append lines to `SceneText` and elements to
/// `SceneDocument` side by side.
class SceneWriter {
 public:
  SceneWriter(TextEncoding encoding, bool conforming);

  std::string SceneText;            ///< lines not yet flushed to the text file
  pugi::xml_document SceneDocument; ///< the X3D XML scene
  std::vector<Route> PendingRoutes; ///< every route in the order of making; the document gets them at its end
  pugi::xml_node Scene;             ///< the element `Scene`
  pugi::xml_node Group;             ///< the element that holds the converted content
  Matrix4 ConversionMatrix = MakeConversionMatrix();
  UniqueNames Names;           ///< of the brushes
  UniqueNames PieceNames;      ///< of their face sets, behind the prefixes
  bool InsideChildren = false; ///< the text stands in a children list, where no ROUTE may

  TextEncoding Encoding() const { return encoding_; }
  /// Write what today's viewers and validators want, where the default output deliberately differs.
  bool Conforming() const { return conforming_; }
  bool IsX3DClassic() const { return encoding_ == TextEncoding::X3DClassic; }

  /// Appends the pieces and a line end to the text.
  template <typename... Pieces>
  void Line(const Pieces&... pieces) {
    (SceneText.append(std::string_view(pieces)), ...);
    SceneText.append(LineEnd);
  }

  /// Begins a node: the text line is `lead`, "DEF " and the name when there is one, the type and `tail`; the element is
  /// appended to `parent`. The closing brace is the caller's line.
  SceneNode Open(pugi::xml_node parent, std::string_view lead, const char* type, std::string_view def = {},
                 std::string_view tail = " {");
  /// As Open, for a node that no route will ever name: there are so many of these that keeping their names costs.
  SceneNode OpenUnrouted(pugi::xml_node parent, std::string_view lead, const char* type, std::string_view def,
                         std::string_view tail = " {");
  /// Writes a node that was written before: `lead`, "USE " and the name.
  void Use(pugi::xml_node parent, std::string_view lead, const char* type, const std::string& name);

  /// Says that a node of this name now stands in the text or the document, for nodes that were not begun with Open.
  void Define(std::string_view name, RouteScope scope = RouteScope::Both);
  bool IsDefined(std::string_view name, RouteScope scope) const;

  /// Hands the gathered text to the file. The block gets a line end of its own.
  void Flush(TextFile& file);

  /// Writes to the text what routes are still missing there and have both ends in it.
  void WriteReadyRoutes();
  /// Appends the routes to the document's scene; those of which an end never came are left out and reported.
  void FinishRoutes(Report& report);

  /// Notes that what was just written is something that strict viewers of that scene refuse; told at the end of the
  /// run.
  void NoteQuirk(std::string_view what) { quirks_.emplace(what); }
  const std::set<std::string, std::less<>>& Quirks() const { return quirks_; }

 private:
  TextEncoding encoding_;
  bool conforming_;
  std::unordered_map<std::string, unsigned> defined_;
  std::set<std::string, std::less<>> quirks_;
};

/// Sets an attribute, replacing one of the same name.
void AddAttribute(pugi::xml_node element, const char* name, const std::string& value);

/// The value of a script field that has none.
inline constexpr const char* NoValue = "gobbleDgook";

/// Declares a script's field in the document; `value` is left out when it is NoValue in any letter case.
void AddScriptField(pugi::xml_node parent, const std::string& name, const char* type, const char* accessType,
                    const std::string& value);

/// Makes a route. Its text line is written at once when both nodes stand in the text and a ROUTE may stand here, else
/// as soon as that is so.
void AddRoute(SceneWriter& writer, const std::string& fromNode, const std::string& fromField, const std::string& toNode,
              const std::string& toField, RouteScope scope = RouteScope::Both);

/// Lets the viewer pass through a Collision node that was just begun; `line` is the indentation and "collide". The
/// field is VRML97's (clause 6.8); X3D calls it `enabled`, which a conforming scene writes.
void WritePassable(SceneNode& collision, const char* line);

/// `cycleInterval` in seconds.
void WriteTimeSensor(SceneWriter& writer, const std::string& name, double cycleInterval, bool loop, bool enabled,
                     pugi::xml_node parent);

} // namespace quarvel
