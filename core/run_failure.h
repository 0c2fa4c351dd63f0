#pragma once

#include <filesystem>
#include <string>

namespace quarvel {

/// Thrown with one sentence when a run cannot go on; caught by the run alone.
struct RunFailed {
  std::string Error;
  std::string Reason{}; ///< the same without folders; empty when it names none
};

/// `why` goes on behind the name of the input: "is a folder".
inline RunFailed InputFailed(const std::filesystem::path& inFile, const std::string& why) {
  return {inFile.string() + " " + why, why};
}

/// `why` goes on behind the name of the output: "cannot be written".
inline RunFailed OutputFailed(const std::filesystem::path& path, const std::string& why) {
  return {path.string() + " " + why, path.filename().string() + " " + why};
}

} // namespace quarvel
