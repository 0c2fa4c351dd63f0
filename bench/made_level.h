#pragma once

#include <string>

namespace quarvel::bench {

/// A level as the editor exports one: that many brushes of six to eight polygons, about 3.5 KB each, every fourth
/// turned, every sixth scaled, and one other actor (lights, starts, sounds) for every two of them. The same text every
/// time.
std::string MakeLevel(int brushes);

} // namespace quarvel::bench
