#pragma once

#include <string>
#include <string_view>
#include <unordered_map>

namespace quarvel {

/// A text as a DEF name: the characters that VRML97 (grammar, IdFirstChar and IdRestChars), the X3D classic encoding
/// and XML attributes do not allow become "_", and a name that may not begin as it does gets a "_" in front. Ordinary
/// names come through unchanged, very long ones are cut.
std::string MakeDefName(std::string_view text);

/// A text for a quoted string of the scene: apostrophes become one backquote, double quotes two, and characters that
/// would end the string or its attribute become "_".
std::string MakeSceneText(std::string_view text);

/// Hands out names of which no two are equal: a repeated one gets "_2", "_3", ...
class UniqueNames {
 public:
  std::string Take(std::string name);

 private:
  std::unordered_map<std::string, int> taken_;
};

} // namespace quarvel
