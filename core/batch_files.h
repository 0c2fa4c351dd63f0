#pragma once

#include <filesystem>
#include <map>
#include <set>
#include <string>

namespace quarvel {

/// Which files the runs of one batch read and write, so that none takes another's place.
class BatchFiles {
 public:
  enum class Kind { LevelScene, SkyScene };

  void AddInput(const std::filesystem::path& file);
  /// Whether this is a file that the batch reads, by whatever name.
  bool IsInput(const std::filesystem::path& file) const;

  /// Gives an output to the input that it is made from, unless a sky scene is at stake, its own or the one that is
  /// there: then the input that has it already is returned, and an empty path when there is none. (That a level's scene
  /// replaces another level's is for the user to decide.)
  std::filesystem::path Claim(const std::filesystem::path& output, const std::filesystem::path& input, Kind kind);

 private:
  struct Owner {
    std::filesystem::path Input;
    Kind Of;
  };

  std::set<std::string> inputs_;                  ///< by FileIdentity
  std::map<std::filesystem::path, Owner> owners_; ///< by the output's resolved path
};

} // namespace quarvel
