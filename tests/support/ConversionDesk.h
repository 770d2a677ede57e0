#pragma once

#include <cstdlib>
#include <functional>
#include <list>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "convert/Converter.h"
#include "platform/FileSystem.h"
#include "support/SoundBytes.h"
#include "support/TempFolder.h"

namespace tavlo::test {

/// What the stand-ins do from now on, and where they tell how they were called; see
/// support/child/child.cpp.
inline void tellChildren(const std::string& words, const std::string& log) {
    static std::list<std::string> kept;  // the environment may point to it
    for (const std::string& text : {"TAVLO_CHILD_DOES=" + words, "TAVLO_CHILD_LOG=" + log}) {
        ::putenv(kept.emplace_back(text).data());
    }
}

inline std::string replacedIn(std::string text, std::string_view from, std::string_view to) {
    for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size()) {
        text.replace(at, from.size(), to);
    }
    return text;
}

/// Sources, programs that are stand-ins, and what a conversion makes of them. In every text "@"
/// stands for the desk's folder, "#" for files of 12 s that the stand-ins can give, and names have
/// "/" between levels.
class ConversionDesk {
 public:
    ConversionDesk(std::map<std::string, std::string> sources, const std::string& tools,
                   const std::string& does)
        : sources_(std::move(sources)), given_(sources_) {
        for (const auto& [name, bytes] : sources_) folder.write(name, bytes);
        prepare("#.wav", waveBytes(12));
        prepare("#.mp3", mp3Bytes(12));
        prepare("#.wv", wavPackBytes(12));
        prepare("#.m4a", mp4Bytes(12));
        prepare("#.aac", "stream");
        folder.makeFolder("tools");
        std::istringstream stream(tools);
        for (std::string tool; stream >> tool;) {
            const std::string name = toolFileName(tool + ".exe", nativePathStyle());
            linkOrCopy(TAVLO_CHILD, folder.path("tools/" + name));
        }
        tellChildren(
            replacedIn(replacedIn(does, "#", "@as/#"), "@", folder.path() + nativeSeparator()),
            folder.path("as/told"));
        settings.target = {FileType::Mp3, LameStandard};
        settings.usesRecycleBin = false;
    }
    ~ConversionDesk() { tellChildren("", ""); }
    ConversionDesk(const ConversionDesk&) = delete;
    ConversionDesk& operator=(const ConversionDesk&) = delete;

    /// One more file that a stand-in can give.
    void prepare(const std::string& name, const std::string& bytes) {
        folder.write("as/" + name, bytes);
        given_[name] = bytes;
    }

    /// Plans and converts one file, its result wanted in a folder or beside it.
    ConversionResult convert(const std::string& source, const std::string& target = "") {
        Conversion row;
        row.source = folder.path(source);
        if (!target.empty()) row.folder = folder.path(target);
        row = planConversions({row}, settings, ansi_).front();
        const ConversionContext context{texts_, settings, ansi_,   control,     cancel,     runner,
                                        work_,  missed_,  monitor, isRemovable, processWave};
        return Converter(context).convert(row);
    }

    /// What is not as it was, by name: "a.wav=gone o/a.mp3=#.mp3". A file is named after the source
    /// or given file that it holds, whatever tags are around that.
    [[nodiscard]] std::string changes() const {
        std::map<std::string, std::string> kinds;
        for (const auto& [name, bytes] : sources_) kinds[name] = "gone";
        addKinds("", kinds);
        std::string text;
        for (const auto& [name, kind] : kinds) {
            if (kind != "same") text += (text.empty() ? "" : " ") + name + "=" + kind;
        }
        return text;
    }

    /// The lines of the log, errors with "! " in front.
    [[nodiscard]] std::string log() const {
        std::string text;
        for (const LogLine& line : monitor.lines()) {
            text += (line.kind == LogKind::Error ? "! " : "") + line.text + "\n";
        }
        return shortened(text);
    }

    /// How each program was called, line by line: its name and its arguments, blanks as "%20".
    [[nodiscard]] std::string told() const {
        const std::string text = replacedIn(shortened(folder.read("as/told")), "\n", " ");
        return text.empty() ? text : replacedIn(text.substr(1, text.size() - 2), " >", "\n");
    }

    TempFolder folder;
    ConversionSettings settings;
    RunControl control;
    CancelFlag cancel{false};
    MonitorLog monitor;
    std::function<void()> tick = [] {};  ///< while a program runs
    std::function<bool(const std::string&)> isRemovable = [](const std::string&) { return false; };
    WaveProcessing processWave;
    ProcessRunner runner{places(), control, [this](std::string_view) { tick(); }};

 private:
    [[nodiscard]] ToolPlaces places() const {
        ToolPlaces places = systemToolPlaces();
        places.programFolder = folder.path("tools");
        places.searchPath.clear();
        return places;
    }

    void addKinds(const std::string& below, std::map<std::string, std::string>& kinds) const {
        for (const FolderEntry& entry : listFolder(folder.path(below))) {
            const std::string name = below + entry.name;
            if (name == "tools" || name == "as") continue;
            if (!entry.isFolder) kinds[name] = kindOf(name);
            if (entry.isFolder) addKinds(name + "/", kinds);
        }
    }

    [[nodiscard]] std::string kindOf(const std::string& name) const {
        const std::string bytes = folder.read(name);
        const auto source = sources_.find(name);
        if (source != sources_.end() && source->second == bytes) return "same";
        std::string kind = std::to_string(bytes.size()) + "-bytes";
        std::size_t longest = 0;
        for (const auto& [given, part] : given_) {
            if (part.size() <= longest || bytes.find(part) == std::string::npos) continue;
            longest = part.size();
            kind = given;
        }
        return kind;
    }

    // Without what is another one at each run.
    [[nodiscard]] std::string shortened(std::string text) const {
        const std::string work(fileNameOf(work_.path(), nativePathStyle()));
        text = replacedIn(replacedIn(text, folder.path() + nativeSeparator(), "@"), work, "tavlo");
        return nativePathStyle() == PathStyle::Windows ? replacedIn(text, "\\", "/") : text;
    }

    std::map<std::string, std::string> sources_, given_;
    const CodePage ansi_{1252};
    const Texts texts_;
    WorkFolder work_{folder.makeFolder("work")};
    MissedTools missed_;
};

}  // namespace tavlo::test
