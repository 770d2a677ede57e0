#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace tavlo::child {

/// What the program does; `arguments` begin with its own path. Gives its exit code.
int run(const std::vector<std::filesystem::path>& arguments);

// What each system does in its own way.

/// A variable of the environment; empty when it is not set.
std::filesystem::path variable(const std::string& name);

/// The priority class of the calling thread: "normal", "idle", "high", or what the system says.
std::string priority();

/// What the process has of the one that started it; empty when it is none of its files, its
/// console or process group, and its way with signals.
std::string inheritance();

/// Starts this program once more with the same output; it sleeps and ends.
void leaveAnother(const std::filesystem::path& program, const std::string& milliseconds);

}  // namespace tavlo::child
