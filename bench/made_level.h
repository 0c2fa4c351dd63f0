#pragma once

#include <string>

namespace quarvel::bench {

/// A level as the editor exports one: that many brushes of six to eight polygons, about 4.5 KB each, every fourth
/// turned, every sixth scaled, every fortieth a mover, and one other actor (lights, starts, sounds, triggers) for every
/// two of them. The same text every time.
std::string MakeLevel(int brushes);

} // namespace quarvel::bench
