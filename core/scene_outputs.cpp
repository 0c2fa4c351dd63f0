#include "core/scene_outputs.h"

namespace quarvel {

TextFile& SceneOutputs::Begin(const std::filesystem::path& path, TextCoding coding, std::filesystem::path& name) {
  return *files_.emplace_back(std::make_unique<TextFile>(path, coding, AtLinkOf(path)), &name).first;
}

std::string SceneOutputs::Complete(RunResult& result) {
  for (const auto& [file, name] : files_)
    if (!file->Flush()) return file->Path().string() + " cannot be written: " + file->Error();
  for (const auto& [file, name] : files_) {
    if (!file->Complete()) return file->Path().string() + " cannot be written: " + file->Error();
    *name = file->Path();
    result.FilesWritten.push_back(file->Path());
  }
  files_.clear();
  return {};
}

std::string SceneOutputs::CompleteStopped(RunResult& result) {
  if (files_.empty()) return {};
  result.Incomplete = files_.back().first->Path();
  return Complete(result);
}

} // namespace quarvel
