#pragma once

#include "base/ascii_text.h"
#include "base/run_interface.h"
#include "math/vector.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quarvel {

/// A 1-based character position in the T3D text; 0 means "not found". Positions below 1 are taken as 1.
using TextCursor = std::int32_t;

/// The whole file as 8-bit text: no decoding, line breaks as they stand. Read in pieces between which `user` may
/// process events and ask for a stop (the text read so far is returned then). nullopt when the file cannot be read, or
/// is larger than a TextCursor reaches.
std::optional<std::string> ReadWholeFile(const std::filesystem::path& path, RunInterface& user);

/// First occurrence at or after `from` that starts at or before `to`; 0 when there is none. Never looks beyond the
/// bound.
TextCursor FindText(std::string_view text, std::string_view what, TextCursor from, TextCursor to);

/// The bounds of every search made for one actor, polygon or object, with the positions of the "=" signs between them:
/// a key ends in "=", so looking one up costs a few comparisons, not a scan. What stands in nested "Begin Brush" and
/// "Begin Object" blocks belongs to them and is left out.
class TextBlock {
 public:
  TextBlock(std::string_view text, TextCursor from, TextCursor to);

  /// First occurrence of a key; 0 when there is none. A blank that begins the key also matches a tab and a line break.
  TextCursor Find(std::string_view key) const;

  std::string_view Text() const { return text_; }
  TextCursor From() const { return from_; }
  TextCursor To() const { return to_; }

 private:
  void IndexEqualsSigns(TextCursor from, TextCursor to);

  std::string_view text_;
  TextCursor from_, to_;
  std::vector<TextCursor> equalsSigns_;
};

/// What stands at the head of every actor record.
struct ActorHeader {
  std::string Class; ///< without the package that may qualify it
  std::string Name;
  std::string Tag;
  std::string Event;
  std::string Region;
  bool IsSkyZone = false; ///< the actor stands in the sky zone
};

ActorHeader ReadActorHeader(const TextBlock& block);

/// True when the first occurrence of the key begins the text or follows a comma, blank, tab or line break. Later
/// occurrences are not looked at.
bool IsKeyAt(const TextBlock& block, std::string_view key);

/// The word behind the key, "" when the key is missing; it ends at the first blank, tab or line break.
std::string GetValueWord(const TextBlock& block, std::string_view key);
/// As GetValueWord, or the text between the quotes when the value is quoted. The key may follow any character.
std::string GetStringValue(const TextBlock& block, std::string_view key);
/// The text between the double quotes right after the key, "" when there are none.
std::string GetQuotedValue(const TextBlock& block, std::string_view key);
/// The number behind the key, 0 when it is missing or empty.
double GetKeyOrZero(const TextBlock& block, std::string_view key);

/// Each of these sets `target` and returns true when the key is there, and leaves it alone otherwise. Texts lose one
/// pair of surrounding quotes; booleans are true unless the word is "False"; 16-bit integers are rounded and held in
/// range.
bool GetKeyValue(const TextBlock& block, std::string_view key, std::string& target);
bool GetKeyValue(const TextBlock& block, std::string_view key, bool& target);
bool GetKeyValue(const TextBlock& block, std::string_view key, double& target);
bool GetKeyValue(const TextBlock& block, std::string_view key, std::int16_t& target);

/// Components are read from the ten characters behind "X=", "Y=" and "Z=" on the key's line; a missing one is
/// `fallback`.
Vector3 GetVector(const TextBlock& block, std::string_view key, double fallback);
Vector3 GetVectorOr0(const TextBlock& block, std::string_view key);
Vector3 GetVectorOr1(const TextBlock& block, std::string_view key);
/// As GetVector with "Pitch=", "Yaw=", "Roll="; Unreal units.
Rotator3 GetRotator(const TextBlock& block, std::string_view key);
/// Sets the components of which "R=", "G=" or "B=" is there. False when one lies outside 0 to 255 and was clamped.
bool GetColor(const TextBlock& block, std::string_view key, ColorRGB& target);

/// Counts the numbers of a run that no level can have.
struct NumberCheck {
  std::string Actor; ///< the one that is read
  int Places = 0;
  std::string FirstActor;
};

/// The three numbers behind the key on its line, separated by commas; zeros when the key is missing before `to`.
/// Components beyond plus or minus 1000000 become plus or minus 1, and are counted. The cursor moves behind the
/// line's end.
Vector3 ReadNumberTriple(std::string_view text, std::string_view key, TextCursor& cursor, TextCursor to,
                         NumberCheck& check);
/// The three numbers between `from` and the line's end, or `to`, without that check.
Vector3 ReadTripleOfLine(std::string_view text, TextCursor& cursor, TextCursor to);

/// The rest of the line; the cursor moves to the first character of the next line that is not empty.
std::string_view ReadLineAt(std::string_view text, TextCursor& cursor);
/// The next word with the separator that ended it; the cursor stays on that separator.
std::string_view NextWord(std::string_view text, TextCursor& cursor);
/// The text before the delimiter, and the cursor behind it; "" and 0 when there is no delimiter.
std::string_view NextToken(std::string_view text, std::string_view delimiter, TextCursor& cursor);
/// The text between the n-th opening and the next closing, "" when there is none.
std::string_view GetBetween(std::string_view text, std::string_view opening, std::string_view closing, int n);
std::string_view GetBetweenFrom(std::string_view text, TextCursor cursor, std::string_view opening,
                                std::string_view closing);
bool TryGetBetween(std::string_view text, std::string_view opening, std::string_view closing, std::string& target);

} // namespace quarvel
