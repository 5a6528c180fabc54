#pragma once

#include "render/CommandLine.h"

namespace velmora::render {

/// Opens the project, exports it and puts the result in place; returns the exit code. What goes wrong is said on
/// standard error. Reads and writes no settings; the project's folder stays as it is. An earlier file of the name
/// stands until the new one is whole, also when the program is told to end.
int Render(const Options& options);

} // namespace velmora::render
