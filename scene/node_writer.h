#pragma once

#include "base/ascii_text.h"
#include "base/report.h"
#include "scene/scene_names.h"
#include "scene/text_file.h"

#include <cstddef>
#include <initializer_list>
#include <pugixml.hpp>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace quarvel {

/// The encoding of the text scene.
enum class TextEncoding {
  Vrml97,     ///< `OptionVRML97`
  Contact,    ///< `OptionContact`: VRML97 with conventions of its own
  X3DClassic, ///< `OptionFlux`: X3D in the classic VRML encoding
};

/// The two scenes of a run.
enum class SceneScope { Both, Text, Document };

/// One ROUTE, named by the DEF names of its ends.
struct Route {
  std::string FromNode, FromField, ToNode, ToField;
  SceneScope Scope = SceneScope::Both;
  bool InText = false; ///< already written there
};

/// What differs from the ordinary when a node is begun. Counts are in blanks.
struct NodeForm {
  SceneScope Scope = SceneScope::Both;
  bool Routed = true;      ///< false where no route will ever name the node: keeping so many names costs
  int BeforeBrace = 1;     ///< in the text, between the type and the opening brace
  int AfterBrace = 0;      ///< behind the opening brace
  bool BraceBelow = false; ///< the opening brace has a line of its own, below the lead
  int Closing = -1;        ///< before the closing brace; -1: as the lead is indented
};

/// How a list stands between its brackets in the text.
enum class ListLayout {
  Lines,         ///< brackets and values on lines of their own
  OneLine,       ///< "field [values]"
  OneLinePadded, ///< "field [values ]"
};

/// Whether the text has brackets around an MFString of one entry, which may do without.
enum class Brackets { None, Tight };

/// A value that differs between the two scenes.
struct PerScene {
  std::string_view InText, InDocument;
};

class SceneWriter;

/// A node that is being written in both encodings at once, until it goes out of scope or is closed. What is begun
/// before that stands inside it. A field is one call: a line of the text and an attribute of the element, with one
/// value. `line` is the indentation and the field's name as they stand in the text.
class SceneNode {
 public:
  SceneNode(SceneNode&& other) noexcept;
  SceneNode& operator=(SceneNode&&) = delete;
  ~SceneNode() noexcept(false); ///< closes the node, unless an exception is under way: that scene is never finished

  void Field(const char* line, const std::string& value);
  void Field(const char* line, const PerScene& value);
  void Flag(const char* line, bool value);               ///< TRUE and FALSE in the text, true and false in the document
  void String(const char* line, std::string_view value); ///< an SFString
  /// An MFString with one entry: quoted in the text, bare in the document unless it conforms.
  void Strings(const char* line, std::string_view value, Brackets brackets = Brackets::None);
  void Strings(const char* line, const PerScene& value, Brackets brackets = Brackets::None);
  void List(const char* line, const std::string& values, ListLayout layout = ListLayout::Lines);
  void List(const char* line, const PerScene& values, ListLayout layout);
  void List(const char* line, const std::string& values, SceneScope scope);
  /// The `url` of a Script with its code, a line of it each; `indent` and `closingIndent` stand before the text's first
  /// and last line.
  void Code(const std::vector<std::string>& lines, std::string_view indent, std::string_view closingIndent);

  void TextField(const char* line, std::string_view value);   ///< in the text only
  void Attribute(const char* name, const std::string& value); ///< in the document only
  /// Fixes the order of attributes where it is not that of the text's lines.
  void AttributeOrder(std::initializer_list<const char*> names);

  /// Begins the list of children, which ends with the node. `closing` indents its end; -1: as its begin is.
  void Children(std::string_view indent, int closing = -1);
  /// The same for another field that holds nodes.
  void Nodes(std::string_view line);
  void Close();

  SceneWriter& Writer() const { return *writer_; }

 private:
  friend class SceneWriter;
  SceneNode(SceneWriter& writer, std::size_t depth);
  void TextList(const char* line, std::string_view values, ListLayout layout);
  bool InText() const;
  pugi::xml_node Element() const;

  SceneWriter* writer_; ///< nullptr once it is closed
  std::size_t depth_;   ///< the number of open nodes, with this one
  int exceptions_;      ///< under way when it was begun
};

/// The two scenes of one run while they are written: converters append lines to `SceneText` and elements to
/// `SceneDocument` side by side, always inside the node that was opened last.
class SceneWriter {
 public:
  /// `file` takes the text of the finished blocks.
  SceneWriter(TextFile& file, TextEncoding encoding, bool conforming);
  SceneWriter(const SceneWriter&) = delete;
  SceneWriter& operator=(const SceneWriter&) = delete;

  TextEncoding Encoding() const { return encoding_; }
  /// Write what today's viewers and validators want, where the default output deliberately differs.
  bool Conforming() const { return conforming_; }
  bool IsX3DClassic() const { return encoding_ == TextEncoding::X3DClassic; }

  /// Begins the document with its XML declaration and a comment.
  void BeginDocument(const char* comment);
  const std::string& SceneText() const { return sceneText_; } ///< not yet flushed to the text file
  const pugi::xml_document& SceneDocument() const { return sceneDocument_; }

  /// Appends the pieces and a line end to the text, where that is no node: a header, a separator.
  template <typename... Pieces>
  void Line(const Pieces&... pieces) {
    (sceneText_.append(std::string_view(pieces)), ...);
    sceneText_.append(LineEnd);
  }

  /// Begins a node: the text line is `lead`, "DEF " and the name when there is one, the type and the opening brace.
  [[nodiscard]] SceneNode Open(std::string_view lead, const char* type, std::string_view def = {},
                               const NodeForm& form = {});
  /// Begins a node that is the only one in its parent's children list: the list's brackets stand on its own lines.
  [[nodiscard]] SceneNode OpenOnlyChild(std::string_view lead, const char* type, std::string_view def);
  /// Writes a node with one field, whose text is one line.
  void OneFieldNode(std::string_view lead, const char* type, const char* field, const std::string& value);
  /// Writes a node with one long list, whose values have a line of their own. No route will ever name it.
  void OneListNode(std::string_view lead, const char* type, std::string_view def, const char* field,
                   const std::string& values, SceneScope scope = SceneScope::Both);
  /// Writes a node that was written before: `lead`, "USE " and the name.
  void Use(std::string_view lead, const char* type, const std::string& name, SceneScope scope = SceneScope::Both);

  /// Declares a prototype by the lines of its text, unless that is done. One may not stand inside a node, so with
  /// `CheckEnclose` this has to be called before the enclosing Transform is begun.
  void DeclarePrototype(const char* name, std::span<const char* const> lines);

  /// The name, made unique in the scene.
  std::string TakeName(std::string name) { return names_.Take(std::move(name)); }
  /// The same among the names of face sets, which stand behind prefixes of their own.
  std::string TakePieceName(std::string name) { return pieceNames_.Take(std::move(name)); }
  /// Says that a node of this name stands there now; opening it does.
  void Define(std::string_view name, SceneScope scope = SceneScope::Both);
  /// Whether a node of this name stands there.
  bool IsDefined(std::string_view name, SceneScope scope) const;

  /// Hands the gathered text to the file, if there is any, as one block: it gets a line end of its own.
  void Flush();
  /// The same without that line end.
  void FlushLines();

  void AddRoute(Route route);
  /// Every route in the order of making.
  const std::vector<Route>& PendingRoutes() const { return pendingRoutes_; }
  /// Writes to the text what routes are still missing there and have both ends in it.
  void WriteReadyRoutes();
  /// Appends the routes to the node that is open; those of which an end never came are left out and reported. Throws
  /// std::logic_error when a node of the text was never closed.
  void FinishRoutes(Report& report);

  /// Notes that what was just written is something that strict viewers of that scene refuse; told at the end of the
  /// run.
  void NoteQuirk(std::string_view what) { quirks_.emplace(what); }
  const std::set<std::string, std::less<>>& Quirks() const { return quirks_; }

 private:
  friend class SceneNode;
  struct OpenNode {
    pugi::xml_node Element; ///< of the nearest node that the document has
    SceneScope Scope = SceneScope::Both;
    int Closing = 0;
    int ChildrenClosing = -1; ///< -1: without a children list
    bool IsOnlyChild = false;
  };

  SceneNode Push(const char* type, std::string_view def, SceneScope scope, int closing);
  void Close(std::size_t depth);
  bool MayRoute(const Route& route) const;
  pugi::xml_node Innermost() const;
  std::string Quoted(std::string_view value) const;

  TextFile& file_;
  TextEncoding encoding_;
  bool conforming_;
  std::string sceneText_;
  pugi::xml_document sceneDocument_;
  std::vector<OpenNode> open_;
  std::size_t openInText_ = 0;       ///< how many of them the text has; no ROUTE may stand inside one
  std::vector<Route> pendingRoutes_; ///< the document gets them at its end
  UniqueNames names_, pieceNames_;
  std::set<std::string> prototypes_;
  std::unordered_map<std::string, unsigned> defined_;
  std::set<std::string, std::less<>> quirks_;
};

/// The value of a script field that has none.
inline constexpr const char* NoValue = "gobbleDgook";

/// Declares a field of the script that was just begun in the document; `value` is left out when it is NoValue in any
/// letter case.
void AddScriptField(SceneWriter& writer, const std::string& name, const std::string& type, const char* accessType,
                    const std::string& value);

/// Makes a route. Its text line is written at once when both nodes stand in the text and a ROUTE may stand here, else
/// as soon as that is so.
void AddRoute(SceneWriter& writer, const std::string& fromNode, const std::string& fromField, const std::string& toNode,
              const std::string& toField, SceneScope scope = SceneScope::Both);

/// Lets the viewer pass through a Collision node that was just begun; `line` is the indentation and "collide". The
/// field is VRML97's (clause 6.8); X3D calls it `enabled`, which a conforming scene writes.
void WritePassable(SceneNode& collision, const char* line);

enum class Cycles { One, Endless };

/// Writes a timer that is enabled. `cycleInterval` in seconds.
void WriteTimeSensor(SceneWriter& writer, const std::string& name, double cycleInterval, Cycles cycles);

} // namespace quarvel
