#pragma once

#include "base/report.h"
#include "t3d/level.h"

#include <string>

namespace quarvel {

/// What is wrong with a file that is not a level export of the supported generations: the end of a sentence that begins
/// with the file's name. Empty when something of it may arrive in a scene.
std::string WhyUnsupported(const T3DLevel& level);

/// What the level is made of, for a user to whom nothing of it has arrived: "3 Brush, 1 SpecialEvent".
std::string ContentOf(const T3DLevel& level);

/// Counts what the passes will not see: actors that are cut off, and light, trigger, start and teleporter actors of
/// classes that are not converted.
void ReportUnseenActors(const T3DLevel& level, Report& report);

} // namespace quarvel
