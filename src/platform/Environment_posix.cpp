#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "platform/Environment.h"

namespace tavlo {
namespace {

bool isSet(const std::string& name) {
    return !environmentVariable(name).value_or("").empty();
}

}  // namespace

CommandLine programCommandLine(int argc, char** argv) {
    CommandLine result;
    if (argc > 1) result.arguments.assign(argv + 1, argv + argc);
    return result;
}

std::optional<std::string> environmentVariable(const std::string& name) {
    const char* value = std::getenv(name.c_str());
    if (value == nullptr) return std::nullopt;
    return value;
}

std::string programFile() {
    std::error_code error;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? std::string() : program.string();
}

std::string programFolder() {
    return std::filesystem::path(programFile()).parent_path().string();
}

std::string settingsFolder() {
    const auto absolute = [](const char* variable) {
        const std::string value = environmentVariable(variable).value_or("");
        return value.starts_with('/') ? value : std::string();
    };
    if (const std::string folder = absolute("XDG_CONFIG_HOME"); !folder.empty())
        return folder + "/tavlo";
    const std::string home = absolute("HOME");
    return home.empty() ? std::string() : home + "/.config/tavlo";
}

std::string temporaryFolder() {
    std::error_code error;
    const auto folder = std::filesystem::temp_directory_path(error);
    return error ? std::string("/tmp") : folder.string();
}

std::string currentFolder() {
    std::error_code error;
    const auto folder = std::filesystem::current_path(error);
    return error ? std::string() : folder.string();
}

std::string systemLanguage() {
    for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"})
        if (isSet(variable)) return environmentVariable(variable)->substr(0, 2);
    return {};
}

bool hasDisplay() {
    return isSet("DISPLAY") || isSet("WAYLAND_DISPLAY");
}

}  // namespace tavlo
