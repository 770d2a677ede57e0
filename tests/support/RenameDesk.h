#pragma once

#include <map>
#include <string>
#include <vector>

#include "collection/cFilesRename.h"
#include "platform/FileSystem.h"
#include "support/MemorySink.h"
#include "support/StruckCalls.h"
#include "support/TempFolder.h"
#include "support/TestProgress.h"

namespace tavlo::test {

using Files = std::map<std::string, std::string>;  ///< bytes by name, with "/" between levels

/// A folder of files and a renamer, over calls that can be made to fail.
struct RenameDesk {
    TempFolder folder;
    CodePage ansi{1252};
    Texts texts;
    MemorySink messages;
    ErrorReport errors{texts, messages};
    TestProgress progress;
    StruckCalls calls;
    cFilesRename renamer{
        {ansi, Transliteration::Phonetic, errors, progress, progress.cancel, calls}};

    explicit RenameDesk(const std::string& nameTemplate, const Files& files = {}) {
        renamer.Template = nameTemplate;
        for (const auto& [name, bytes] : files) folder.write(name, bytes);
    }

    [[nodiscard]] std::vector<std::string> paths(const std::vector<std::string>& names) const {
        std::vector<std::string> all;
        for (const std::string& name : names) all.push_back(folder.path(name));
        return all;
    }
    [[nodiscard]] Files files(const std::string& below = "") const {
        Files all;
        for (const FolderEntry& entry : listFolder(folder.path(below))) {
            const std::string name = below + entry.name;
            if (entry.isFolder) {
                all.merge(files(name + "/"));
            } else {
                all[name] = folder.read(name);
            }
        }
        return all;
    }
};

}  // namespace tavlo::test
