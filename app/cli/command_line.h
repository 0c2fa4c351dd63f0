#pragma once

#include "core/batch.h"

#include <functional>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace quarvel {

/// What the user asks for, not yet checked against the options of a conversion.
struct CommandLine {
  std::vector<std::string> Inputs;
  std::string Output;                                  ///< empty: beside each input
  std::vector<std::string> Sets;                       ///< "Control=Value"
  std::optional<std::string> Textures, Sounds, Meshes; ///< search paths
  std::string SettingsFile;                            ///< empty: none
  std::string WriteT3D;                                ///< where the level's text is to be kept; empty: nowhere
  std::string ListPackage;                             ///< a package to list; empty: none
  std::string ExtractTo;  ///< the folder for what the first input holds; empty: no such task
  std::string ReportFile; ///< JSON of what the runs did; empty: none
  std::string Viewer;     ///< empty: the one among the program's files
  bool Web = false;       ///< the options that make the best page
  bool Open = false;      ///< open the page in the browser when it is written
  bool ListOptions = false;
  bool Markdown = false; ///< the list of options as a page of the documentation
  bool Quiet = false;
  bool Verbose = false;
};

/// Either a command line, or an answer to print (help, version), or what is wrong with the arguments.
struct ParsedCommandLine {
  CommandLine Line;
  std::string Answer;
  std::string Error;
};

ParsedCommandLine ParseCommandLine(int argc, const char* const* argv);

/// Sets what the command line says about the options and leaves the others as they are. Returns what is wrong, or an
/// empty string.
std::string ApplyCommandLine(const CommandLine& line, ConversionSettings& settings);

/// Where the program speaks.
struct Console {
  std::ostream& Out; ///< answers and summaries
  std::ostream& Err; ///< errors and progress
  bool ErrIsTerminal = false;
  std::function<bool()> StopRequested;                                  ///< may be empty
  std::function<bool(const std::filesystem::path&)> OpenInBrowser = {}; ///< may be empty
};

enum class ExitCode {
  Done = 0,
  Failed = 1, ///< an input could not be read or an output not be written
  Usage = 2,
  Stopped = 3,
};

/// The whole program. Nothing is thrown.
ExitCode RunCommandLine(int argc, const char* const* argv, const Console& console,
                        const Conversion& convert = ConvertFile);

} // namespace quarvel
