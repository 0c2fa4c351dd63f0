#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quarvel::test {

/// The encodings that a strict reader knows (ISO/IEC 14772-1; 19776-2; 19776-1).
enum class SceneEncoding { Vrml97, X3DClassic, X3DXml };

/// True when a word stands in a list of words with blanks between them.
bool IsOneOf(std::string_view word, std::string_view list);

/// What stands between the words and numbers of a field.
inline constexpr std::string_view WordSeparators = " \t\r\n,";
std::vector<std::string> Words(std::string_view text);
/// Words with a blank between them.
std::string Joined(const std::vector<std::string>& words);

/// Node types of a document that stand for no node of the text, as one list of words.
inline constexpr std::string_view FrameTypes = "Group MultiTexture texture NavigationInfo";

/// What the standards say of the node types that a scene may hold.
bool IsNodeType(std::string_view type, SceneEncoding encoding);
bool HasField(std::string_view type, std::string_view field, SceneEncoding encoding);
/// Whether routes may lead from (or to) this event of the type: an event of its own, or that of an exposed field.
bool SendsEvent(std::string_view type, std::string_view event, SceneEncoding encoding);
bool TakesEvent(std::string_view type, std::string_view event, SceneEncoding encoding);
/// Whether a node may stand in this field of another, or below the scene's root when there is no `parent`. An empty
/// `field` stands for any of the parent's fields.
bool MayHold(std::string_view parent, std::string_view field, std::string_view child);
/// How many numbers make one value of the field; 0 where that is not fixed.
int NumbersOf(std::string_view type, std::string_view field);

} // namespace quarvel::test
