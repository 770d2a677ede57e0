#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "desk/FileDesk.h"
#include "support/ListRows.h"
#include "support/MemorySink.h"
#include "support/TagBytes.h"
#include "support/TempFolder.h"
#include "support/TestProgress.h"
#include "support/TestRegistry.h"
#include "support/Waiting.h"
#include "tags/AudioFile.h"

namespace tavlo::test {

/// A desk over a folder of real files.
class DeskFixture : public testing::Test {
 protected:
    DeskFixture() {
        settings.set(Setting::MainSubfolders, true);
        settings.set(Setting::DeleteToRecycleBin, false);
    }

    std::string song(const std::string& name, const std::string& artist = "Artist") const {
        return folder.write(name, tag(3, textFrame(3, "TPE1", artist)) + mpegFrames(3));
    }
    /// Shows what is asked for, or else the folder, to the end.
    void show(std::vector<std::string> paths = {}) {
        desk.show(paths.empty() ? std::vector<std::string>{folder.path()} : std::move(paths));
        settle();
    }
    /// Polls until neither reading nor work goes on.
    void settle() {
        EXPECT_TRUE(soon([&] {
            desk.poll();
            return !desk.isLoading() && !desk.isWorking();
        }));
    }
    [[nodiscard]] std::string names() const { return shownNames(desk.table()); }
    RowId row(const std::string& name) const {
        const auto found = desk.table().rowOfPath(folder.path(name));
        EXPECT_TRUE(found) << name;
        return found.value_or(0);
    }
    void select(const std::vector<std::string>& names) {
        std::vector<RowId> rows;
        for (const std::string& name : names) rows.push_back(row(name));
        desk.select(std::move(rows));
    }
    void edit(TagField field, const std::string& text) {
        TagChanges changes;
        changes.texts[field] = text;
        desk.editSelected(changes);
    }
    [[nodiscard]] ID3tag onDisk(const std::string& name) const {
        return ReadAudioFile(folder.path(name), {CodePage(1252)});
    }
    [[nodiscard]] std::string told(Text text, const std::string& name) const {
        return texts.get(text, folder.path(name));
    }

    const TempFolder folder;
    TestRegistry test;
    RegistryEx store{test.registry()};
    Settings settings{store};
    const Texts texts;
    MemorySink output, messages;
    ErrorReport errors{texts, messages};
    TestProgress progress;
    const JobOptions options;
    Services services{options, settings, texts, errors, output, progress, progress.cancel, 1252};
    FileDesk desk{services};
};

}  // namespace tavlo::test
