#pragma once

#include "app/cli/command_line.h"

#include <string>

namespace quarvel {

/// Prints what a package holds.
ExitCode RunListPackage(const std::string& file, const Console& console);

/// Writes what the first input holds, or those objects of it that the further inputs name, into a folder.
ExitCode RunExtraction(const CommandLine& line, const Console& console);

/// Writes the text of the level that was read last. Returns what is wrong, or an empty string.
std::string KeepText(const std::string& file, const RunMemory& memory);

} // namespace quarvel
