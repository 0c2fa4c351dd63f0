#pragma once

#include <filesystem>

namespace quarvel {

/// The running program's own file; empty when the system does not tell.
std::filesystem::path ProgramPath();

/// The folder of the files that the program brings along: beside the program in "data", as installed in
/// "../share/quarvel", or in the source tree that the program was built in. Empty when there is none.
std::filesystem::path FindProgramData(const std::filesystem::path& program);

} // namespace quarvel
