#pragma once

#include <atomic>
#include <string_view>

namespace tavlo {

enum class Stream { Output, Error };

bool isTerminal(Stream stream);

/// Whether what is written goes where somebody wanted it: to a terminal, a pipe, a file, or nowhere
/// by a person's own word. False for a program that a desktop started.
bool isHeard(Stream stream);

/// A program that opens windows has no console of its own: where one started it, what is written
/// goes there. Without effect for every other program.
void joinConsole();

/// The width in characters; 80 when it is not known.
int terminalColumns(Stream stream);

/// Writes UTF-8 whole and unbuffered: as characters to a console window, as the same bytes to a
/// pipe or file; false when it could not be written (disk full, reader gone).
bool writeText(Stream stream, std::string_view text);

/// The first Ctrl+C sets the flag, which must live as long as the process; the second ends the
/// process as usual.
/// A request of the system to end sets it as well.
void cancelOnInterrupt(std::atomic<bool>& flag);

/// From now on writing to a reader that has gone fails instead of ending the process.
void surviveClosedPipes();

/// From now on the second Ctrl+C, or a request of the system to end, sets this flag, and only the
/// next one ends the process; with null it is again as before.
void heedSecondInterrupt(std::atomic<bool>* flag);

}  // namespace tavlo
