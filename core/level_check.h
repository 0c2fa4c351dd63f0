#pragma once

#include "base/report.h"
#include "t3d/actor_index.h"

#include <string>
#include <string_view>
#include <vector>

namespace quarvel {

/// The class tests of every kind of actor that is converted, in the form of search texts.
const std::vector<std::string_view>& ConvertedClasses();

/// What is wrong with a file that is not a level export of the supported generations: the end of a sentence that begins
/// with the file's name. Empty when it can be converted. `text` is the file, `level` its index.
std::string WhyUnsupported(std::string_view text, const LevelText& level);

/// Counts what the passes will not see: actors that are cut off, and light, trigger, start and teleporter actors of
/// classes that are not converted.
void ReportUnseenActors(const LevelText& level, Report& report);

/// True for the older generation of exports: the text has no "PhysicsVolume=", and its first texture is not qualified.
bool IsLegacyFormat(std::string_view text);

/// The classes of movers that are not among the four known ones, each once, in file order.
std::vector<std::string> OtherMoverClasses(const LevelText& level);

} // namespace quarvel
