#include "core/ExternalTools.h"

#include <array>

#include "platform/Environment.h"
#include "platform/FileSystem.h"

namespace tavlo {
namespace {

constexpr std::array<std::string_view, 21> toolNames{
    "cddae.exe",        "wnaspi32.dll", "lame.exe",     "mppenc.exe",   "mpcenc.exe",
    "mpcdec.exe",       "oggdec.exe",   "oggenc.exe",   "faac.exe",     "faad.exe",
    "mp4creator60.exe", "mplayer.exe",  "alacdec.exe",  "ffmpeg.exe",   "flac.exe",
    "mac.exe",          "wavpack.exe",  "wmal2pcm.exe", "wvunpack.exe", "neroaacdec.exe",
    "neroaacenc.exe"};

constexpr std::string_view programSuffix = ".exe";

/// A library of the other system can never be here, so it is not missed either.
bool isPossible(std::string_view tool, PathStyle style) {
    return style == PathStyle::Windows || tool.ends_with(programSuffix);
}

std::vector<std::string_view> foldersOf(const ToolPlaces& places) {
    const char separator = places.style == PathStyle::Windows ? ';' : ':';
    std::vector<std::string_view> folders{places.programFolder};
    std::string_view rest = places.searchPath;
    while (!rest.empty()) {
        const std::size_t end = rest.find(separator);
        folders.push_back(rest.substr(0, end));
        rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    }
    return folders;
}

}  // namespace

ToolPlaces systemToolPlaces() {
    return {nativePathStyle(), programFolder(), environmentVariable("PATH").value_or(""),
            isProgram};
}

std::string toolFileName(std::string_view tool, PathStyle style) {
    if (style == PathStyle::Posix && tool.ends_with(programSuffix))
        tool.remove_suffix(programSuffix.size());
    return std::string(tool);
}

std::string findTool(std::string_view tool, const ToolPlaces& places) {
    const char separator = places.style == PathStyle::Windows ? '\\' : '/';
    const std::string name = toolFileName(tool, places.style);
    for (const std::string_view folder : foldersOf(places)) {
        // An empty part of PATH would mean the current folder, where no program is trusted.
        if (folder.empty()) continue;
        std::string path = std::string(folder) + separator + name;
        if (places.exists(path)) return path;
    }
    return {};
}

std::span<const std::string_view> externalTools() {
    return toolNames;
}

std::vector<std::string_view> missingToolNames(const ToolPlaces& places) {
    std::vector<std::string_view> missing;
    for (const std::string_view tool : toolNames)
        if (isPossible(tool, places.style) && findTool(tool, places).empty())
            missing.push_back(tool);
    return missing;
}

std::string missingTools(const ToolPlaces& places) {
    std::string missing;
    for (const std::string_view tool : missingToolNames(places)) {
        if (!missing.empty()) missing += ", ";
        missing += toolFileName(tool, places.style);
    }
    return missing;
}

}  // namespace tavlo
