#pragma once

#include "scene/scene_context.h"
#include "tests/images/made_images.h"
#include "tests/temporary_folder.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <string>

namespace quarvel::test {

/// A scene that converters can write into, in a folder of its own.
class SceneFixture : public testing::Test {
 protected:
  SceneFixture() {
    settings_.TextSearchPathTxt = settings_.TextSearchPathMesh = folder_.Path().string() + "/lib";
    folder_.Write("lib/readme.txt", "");
    folder_.Write("out/readme.txt", "");
  }

  /// Begins the scene, with the settings as they are by then.
  void Begin(TextEncoding encoding = TextEncoding::Vrml97, bool conforming = false) {
    const auto out = folder_.Path() / "out/level.wrl";
    group_.reset();
    settings_.OptionFlux = encoding == TextEncoding::X3DClassic;
    settings_.OptionContact = encoding == TextEncoding::Contact;
    settings_.CheckConforming = conforming;
    file_ = std::make_unique<TextFile>(out, TextCoding::AsIs);
    resources_ = std::make_unique<ResourceFiles>(settings_, folder_.Path() / "level.t3d", out, report_);
    context_ = std::make_unique<SceneContext>(*file_, settings_, *resources_, user_, report_, "1 1 1");
    group_.emplace(context_->Scene.Open("", "Group", {}, {.Scope = SceneScope::Document}));
  }

  void WriteImage(const std::string& name, const Blob& content) { folder_.Write("lib/" + name, content); }

  /// All text written so far, without carriage returns.
  std::string Text() {
    context_->Scene.Flush();
    file_->Flush();
    std::string text = folder_.Read("out/level.wrl");
    std::erase(text, '\r');
    return text;
  }

  pugi::xml_node Element(const std::string& path) const {
    return context_->Scene.SceneDocument().select_node(path.c_str()).node();
  }
  std::size_t CountElements(const std::string& path) const {
    return context_->Scene.SceneDocument().select_nodes(path.c_str()).size();
  }

  SceneWriter& Scene() { return context_->Scene; }

  TemporaryFolder folder_;
  ConversionSettings settings_;
  Report report_;
  RunInterface user_;
  std::unique_ptr<TextFile> file_;
  std::unique_ptr<ResourceFiles> resources_;
  std::unique_ptr<SceneContext> context_;
  std::optional<SceneNode> group_; ///< around all that is written
};

/// Whether an actor is reported with such a reason.
inline bool Reports(const Report& report, std::string_view actor, std::string_view part) {
  return std::any_of(report.Findings().begin(), report.Findings().end(), [&](const Finding& finding) {
    return finding.Actor == actor && finding.Reason.find(part) != std::string::npos;
  });
}

inline std::size_t CountOf(const std::string& text, const std::string& what) {
  std::size_t count = 0;
  for (std::size_t at = text.find(what); at != text.npos; at = text.find(what, at + 1))
    ++count;
  return count;
}

} // namespace quarvel::test
