#pragma once

#include "scene/node_writer.h"
#include "settings/conversion_settings.h"

#include <string>

namespace quarvel {

/// Writes the header comment lines and the navigation node of the text scene, and flushes them.
void WriteTextHeader(SceneWriter& scene, TextFile& file, const ConversionSettings& settings);

/// Builds the head of the document down to the element that holds the content. With `CheckEnclose` the Transform that
/// encloses everything is opened in both encodings; its name is `sceneName`.
void WriteDocumentHead(SceneWriter& scene, TextFile& file, const ConversionSettings& settings,
                       const std::string& sceneName);

/// Closes what WriteDocumentHead opened in the text.
void CloseEnclosingTransform(SceneWriter& scene, const ConversionSettings& settings);

} // namespace quarvel
