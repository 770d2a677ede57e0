#pragma once

#include <cstdint>

namespace tavlo {

/// Priority classes by their Windows numbers.
enum class PriorityClass : int { Normal = 0x20, Idle = 0x40, High = 0x80 };

/// Sets this process's class; a failure (no right to rise) is ignored.
void setPriorityClass(PriorityClass priority);

/// The same of a program that this one started, by the number of its process group or, on Windows,
/// its handle.
void setPriorityClassOf(std::intptr_t process, PriorityClass priority);

/// From now on the calling thread works in what the program's other threads leave.
void giveWayToOtherThreads();

}  // namespace tavlo
