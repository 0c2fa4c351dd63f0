#pragma once

#include "actors/run_totals.h"
#include "base/report.h"
#include "base/run_interface.h"
#include "core/batch_files.h"
#include "math/vector.h"
#include "resources/destination.h"
#include "settings/resource_kind.h"

#include <filesystem>
#include <string>
#include <vector>

namespace quarvel {

class SettingsStore;

/// The names of the scenes of one run (and of the optional copy).
struct SceneFileNames {
  std::filesystem::path Text;     ///< ".wrl" or ".x3dv"; with "-" before it when `CheckAppendDash` applies
  std::filesystem::path Document; ///< ".x3d", always without the dash
  std::filesystem::path Copy;     ///< ".xml"; written only with `CheckXMLtoo`
};

enum class RunOutcome {
  Done,    ///< the scene is complete
  Failed,  ///< the input could not be read or an output not be written; `RunResult::Error` says what
  Stopped, ///< the user asked the run to stop; the text scene is incomplete, the other outputs are not written
};

/// What one run did, beyond what its scenes come to.
struct RunResult : RunTotals {
  RunOutcome Outcome = RunOutcome::Done;
  std::string Error;  ///< one sentence without a full stop; empty unless `Failed`
  std::string Reason; ///< the error as a row about the input has it: without folders

  std::filesystem::path InputFile;
  SceneFileNames Scene;    ///< as far as they were written; a path is empty where nothing was. So are those below
  SceneFileNames SkyScene; ///< of the sky, where that is a scene of its own
  std::vector<std::filesystem::path> MissingLists;
  std::filesystem::path PreloadFile;
  std::filesystem::path Page;
  std::filesystem::path Incomplete; ///< the text scene that a stop left unfinished
  /// Every file that could not be written although the scenes were, one sentence each without a full stop.
  std::vector<std::string> FailedFiles;
  std::vector<std::string> Messages;         ///< the message texts that a window shows in boxes
  PerKind<std::vector<std::string>> Missing; ///< what was looked for and not found; sorted, each once
  std::string PreloadScript;                 ///< empty unless asked for

  int UniqueMaterials = 0;
  Bounds3 Bounds = InitBounds(); ///< of the brush geometry, in scene units
  Report Findings;
  double Seconds = 0;
};

/// What survives from one run to the next: the text last read, the file it came from, and the files of the batch.
struct RunMemory {
  std::string T3DText;
  std::string LoadedFileName;
  std::map<std::string, std::string> TextureNames; ///< what the level's package tells beyond the text
  std::vector<Finding> SourceFaults;               ///< what of that package could not be read
  OutputFolders Outputs;                           ///< what the runs of a batch may not take from each other
  std::filesystem::path TypedOutput;               ///< the output, where the user named it; else empty
  BatchFiles Files;
};

/// Derives the scenes' names from the requested output name, whose extension is replaced.
SceneFileNames DeriveSceneFileNames(const std::filesystem::path& outFile, const ConversionSettings& settings);

/// Every scene that a run with this output name writes for its level.
std::vector<std::filesystem::path> ScenesOf(const std::filesystem::path& outFile, const ConversionSettings& settings);

/// Where a run writes the script that preloads the images.
std::filesystem::path PreloadScriptName(const std::filesystem::path& outFile);

/// Converts one level, text or the game's own file, into its scenes, and the page where the settings ask for it. The
/// settings are saved to `store` first. Nothing is thrown: what goes wrong is in the result. An empty `inFile` does
/// nothing.
RunResult ConvertFile(const std::filesystem::path& inFile, const std::filesystem::path& outFile,
                      const ConversionSettings& settings, SettingsStore& store, RunMemory& memory, RunInterface& user);

} // namespace quarvel
