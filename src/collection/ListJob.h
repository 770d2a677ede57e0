#pragma once

#include <cstddef>

#include "core/StartUp.h"

namespace tavlo {

/// How a list is printed: for a person, for a program that takes lines, or as JSON lines.
enum class ListForm { Table, TabLines, JsonLines };

/// Prints the audio files of the job's folder (or the one file that it names) that match its mask.
/// `terminalColumns` is the width of a table. Gives the process's exit code.
int listFiles(Services& services, ListForm form, std::size_t terminalColumns);

}  // namespace tavlo
