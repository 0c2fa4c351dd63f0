#pragma once

#include "core/conversion_run.h"
#include "scene/text_file.h"

#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace quarvel {

/// The scenes of one run. They take their places together when all are written; when the run fails, none of them does
/// and the older ones stay.
class SceneOutputs {
 public:
  /// `typed` is the output that the user named; a link that stands there is followed.
  explicit SceneOutputs(std::filesystem::path typed) : typed_(std::move(typed)) {}

  /// Begins a scene. It lives as long as this object; `name` gets the path when the scene stands.
  TextFile& Begin(const std::filesystem::path& path, TextCoding coding, std::filesystem::path& name);
  /// Puts every scene in its place and tells the result. Returns the error, one sentence without a full stop, or an
  /// empty string.
  [[nodiscard]] std::string Complete(RunResult& result);
  /// The same for a run that was stopped in the middle: the text scene that was being written stays incomplete.
  [[nodiscard]] std::string CompleteStopped(RunResult& result);

  /// Why a scene cannot be written there; empty when nothing speaks against it.
  std::string WhyNot(const std::filesystem::path& path) const { return WhyNotWritable(path, AtLinkOf(path)); }

 private:
  AtLink AtLinkOf(const std::filesystem::path& path) const { return path == typed_ ? AtLink::Follow : AtLink::Replace; }

  std::filesystem::path typed_;
  std::vector<std::pair<std::unique_ptr<TextFile>, std::filesystem::path*>> files_;
};

} // namespace quarvel
