#pragma once

#include "actors/triggers.h"
#include "tests/made_actors.h"
#include "tests/temporary_folder.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <memory>
#include <sstream>
#include <string>

namespace quarvel {

/// A scene that actors are written into, at scale 1 unless `Settings` is changed before the scene is first used.
class ActorTest : public ::testing::Test {
 protected:
  SceneContext& Context() {
    if (!made_) made_ = std::make_unique<Made>(Settings, Findings, Folder.Path());
    return made_->Context;
  }
  SceneWriter& Scene() { return Context().Scene; }

  /// The text written so far, with plain line ends.
  std::string Text() {
    std::string text = Scene().SceneText();
    text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());
    return text;
  }

  /// The elements of the document's content, without indentation.
  std::string Document() {
    std::ostringstream out;
    for (const pugi::xml_node node : Scene().SceneDocument().child("Scene").children())
      node.print(out, "", pugi::format_raw);
    return out.str();
  }

  bool Reported(const std::string& actor, const std::string& part) const {
    return std::any_of(Findings.Findings().begin(), Findings.Findings().end(), [&](const Finding& finding) {
      return finding.Actor == actor && finding.Reason.find(part) != std::string::npos;
    });
  }

  ConversionSettings Settings = [] {
    ConversionSettings settings;
    settings.TextScale = {"1", 1};
    return settings;
  }();
  Report Findings;
  TriggerList Linked;
  TemporaryFolder Folder; ///< the scene's, with the level's folder "in" below

 private:
  struct Made {
    Made(const ConversionSettings& settings, Report& findings, const std::filesystem::path& folder)
        : File(folder / "level.wrl", TextCoding::AsIs),
          Resources(settings, folder / "in" / "level.t3d", folder / "level.wrl", findings),
          Context(File, settings, Resources, User, findings, "0.8 0.8 0.8"),
          Root(Context.Scene.Open("", "Scene", {}, {.Scope = SceneScope::Document})),
          Group(Context.Scene.Open("", "Group", {}, {.Scope = SceneScope::Document})) {}
    TextFile File;
    ResourceFiles Resources;
    RunInterface User;
    SceneContext Context;
    SceneNode Root, Group;
  };

  std::unique_ptr<Made> made_;
};

} // namespace quarvel
