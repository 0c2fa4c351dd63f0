#pragma once

#include "core/conversion_run.h"
#include "settings/option_values.h"
#include "settings/settings_store.h"
#include "tests/temporary_folder.h"

#include <sstream>
#include <string>

namespace quarvel::test {

/// A level's text after a conversion in a folder of its own.
struct Converted {
  RunResult Result;
  std::string Text;     ///< the .wrl or .x3dv
  std::string Document; ///< the .x3d
};

inline std::string ReadFile(const std::filesystem::path& path) {
  std::ostringstream text;
  text << std::ifstream(path, std::ios::binary).rdbuf();
  return text.str();
}

/// Settings that find the sample textures.
inline ConversionSettings SampleSettings() {
  ConversionSettings settings;
  settings.TextSearchPathTxt = QUARVEL_SAMPLES_DIR "/textures";
  return settings;
}

/// Sets options as `--set` does: "Control=Value", with blanks between them.
inline void SetOptions(const std::string& options, ConversionSettings& settings) {
  std::istringstream words(options);
  for (std::string word; words >> word;) {
    const std::size_t sign = word.find('=');
    const OptionInfo* option = FindOption(word.substr(0, sign));
    ASSERT_NE(option, nullptr) << word;
    EXPECT_EQ(SetOption(*option, word.substr(sign + 1), settings), "") << word;
  }
}

/// Writes a stand-in for the viewer of a page, and returns the name of its script.
inline std::filesystem::path WriteViewer(const TemporaryFolder& folder) {
  for (const char* name : {"EventUtilities", "Geometry2D", "KeyDeviceSensor", "Scripting", "Text"})
    folder.Write("v/assets/components/" + std::string(name) + "Component.min.js", "");
  for (const char* name : {"x_ite.css", "LICENSE.md"})
    folder.Write("v/" + std::string(name), "the viewer");
  return folder.Write("v/x_ite.min.js", "the viewer");
}

/// Converts `level` to level.wrl (or what the settings make of that name) in `folder`.
inline Converted ConvertIn(const TemporaryFolder& folder, const std::string& level,
                           const ConversionSettings& settings = SampleSettings(), RunInterface* user = nullptr) {
  folder.Write("level.t3d", level);
  RunInterface silent;
  MemoryStore store;
  RunMemory memory;
  const std::filesystem::path outFile = folder.Path() / "level.wrl";
  Converted converted;
  converted.Result =
      ConvertFile(folder.Path() / "level.t3d", outFile, settings, store, memory, user != nullptr ? *user : silent);
  const SceneFileNames names = DeriveSceneFileNames(outFile, settings);
  converted.Text = ReadFile(names.Text);
  converted.Document = ReadFile(names.Document);
  return converted;
}

inline Converted Convert(const std::string& level, const ConversionSettings& settings = SampleSettings(),
                         RunInterface* user = nullptr) {
  const TemporaryFolder folder;
  return ConvertIn(folder, level, settings, user);
}

} // namespace quarvel::test
