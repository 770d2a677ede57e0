#include "convert/ProcessRunner.h"

#include "platform/Process.h"

namespace tavlo {

bool ProcessRunner::hasTool(std::string_view tool) const {
    return !findTool(tool, places_).empty();
}

bool ProcessRunner::RunProcessAndWait(const std::string& commandLine, bool showWindow,
                                      PriorityClass priorityClass, const std::string& folder) {
    constexpr int longestWait = 100;  // milliseconds
    output_.clear();
    const std::string program = programOf(commandLine);
    const std::string path = findTool(program, places_);
    if (path.empty()) return false;
    const auto process = startProcess({path, commandLine, folder, showWindow, priorityClass});
    if (process == nullptr) return false;
    while (!process->waitFor(longestWait)) {
        if (tick_) tick_(program);
        if (control_.endsNow) process->kill();
        if (const PriorityClass wanted = control_.priority; wanted != priorityClass) {
            process->setPriority(priorityClass = wanted);
        }
        if (const bool wanted = control_.showsWindows; wanted != showWindow) {
            process->setShown(showWindow = wanted);
        }
    }
    output_ = process->output();
    return true;
}

std::string programOf(std::string_view commandLine) {
    const auto words = splitCommandLine(commandLine.substr(0, commandLine.find(' ')));
    return words.empty() ? std::string() : words.front();
}

}  // namespace tavlo
