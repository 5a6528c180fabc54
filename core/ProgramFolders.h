#pragma once

#include "core/Environment.h"

#include <string>
#include <vector>

/// The program's own folders, at its start.
namespace velmora::core {

/// Makes the "newprojects", "config" and "presets" folders of the path table, and those for effects inside the last,
/// each only if absent, with the folders above them. When the "presets" folder was not there, it gets the packs and
/// presets of the "starterpresets" folder, and an "examples" folder that is not there is made from the
/// "starterexamples" one: each if the table names it. Opening a project takes a folder that can be written.
void MakeProgramFolders(Environment& environment);

/// The folders of new projects that were never saved; one of a running program, this one too, is among them, and held.
std::vector<std::string> AbandonedProjects(const Environment& environment);

/// Removes the folders of new projects that were never saved and that no running instance holds. One that holds sound
/// goes to the trash, or stays when the trash does not take it. Left alone are a folder that somebody holds, one with
/// the journal of a take (`*.take`) that the user has not been asked about, one that belongs to a saved project, and
/// one with folders inside.
void ClearAbandonedProjects(Environment& environment);

} // namespace velmora::core
