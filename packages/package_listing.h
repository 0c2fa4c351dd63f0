#pragma once

#include "packages/package.h"

#include <ostream>

namespace quarvel {

/// Writes one line for each object: its class, full name and size in bytes; for a texture its size in pixels, for a
/// sound its seconds. Names are made fit for a terminal.
void ListPackage(const Package& package, std::ostream& out);

} // namespace quarvel
