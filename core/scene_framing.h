#pragma once

#include "scene/node_writer.h"
#include "settings/conversion_settings.h"

#include <optional>
#include <string>

namespace quarvel {

/// Writes the header comment lines and the navigation node of the text scene, and flushes them.
void WriteTextHeader(SceneWriter& scene, const ConversionSettings& settings);

/// What encloses the content of a scene: the document from its head down to the element that holds the content, and
/// with `CheckEnclose` a Transform in both encodings, whose name is `sceneName`.
class SceneFrame {
 public:
  SceneFrame(SceneWriter& scene, const ConversionSettings& settings, const std::string& sceneName);

  /// Ends the content; the document's scene stays open for the routes.
  void CloseContent();

 private:
  SceneNode root_, scene_;
  std::optional<SceneNode> enclosing_;
  SceneNode group_;
};

} // namespace quarvel
