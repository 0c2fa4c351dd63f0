#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace quarvel {

/// What a copy was made from. A copy belongs to the bytes of its source, wherever that lies.
struct CopyOrigin {
  std::string Source;  ///< its path within the library, for people
  std::string Variant; ///< "masked" or "opaque" where one image can become both, else empty
  std::string Hash;    ///< of the source's bytes

  /// The same for all copies that may stand for each other.
  std::string Key() const { return Hash + "|" + Variant; }
};

/// The list "quarvel-copies.txt" beside a scene: which files of its folder and the folders below are copies, and of
/// what. It lets later runs tell their own copies from other files of the same name. Anybody may have written it: what
/// leads out of the folder is passed over.
class CopyList {
 public:
  static constexpr const char* FileName = "quarvel-copies.txt";

  /// Reads the list of that folder, if there is one.
  explicit CopyList(std::filesystem::path folder);

  /// What a file is a copy of; null when it is not listed.
  const CopyOrigin* Find(const std::filesystem::path& file) const;
  /// The copies with that key, sorted.
  std::vector<std::filesystem::path> CopiesOf(const std::string& key) const;
  void Note(const std::filesystem::path& file, CopyOrigin origin);

  /// Writes the list when something was noted, with what other runs listed meanwhile and without copies that are gone.
  /// Returns the reason when that fails, or an empty string.
  [[nodiscard]] std::string Save();

 private:
  using Origins = std::map<std::string, CopyOrigin, std::less<>>; ///< by the path relative to the folder

  std::string RelativeName(const std::filesystem::path& file) const;
  void Add(std::string name, CopyOrigin origin);
  void Read();

  std::filesystem::path folder_;
  Origins origins_;
  Origins noted_;
  std::multimap<std::string, std::string> byKey_;
};

/// A hash of bytes, as the list has it.
std::string HashOf(std::string_view bytes);

} // namespace quarvel
