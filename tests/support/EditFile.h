#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "core/Texts.h"
#include "support/MemorySink.h"
#include "support/TempFolder.h"
#include "support/TestProgress.h"
#include "tags/AudioFile.h"
#include "tags/UpdateTags.h"

namespace tavlo::test {

/// What the tag writers ask for.
struct Writing {
    explicit Writing(const TagSettings& settings = {}, int codePage = 1252)
        : ansi(codePage), context{ansi, settings, errors, progress} {
        context.settings.force = true;  // what stands for the sound may be any bytes
    }
    Writing(const Writing&) = delete;
    Writing& operator=(const Writing&) = delete;

    CodePage ansi;
    Texts texts;
    MemorySink messages;
    ErrorReport errors{texts, messages};
    TestProgress progress;
    WriteContext context;
};

using Edit = std::function<void(ID3tag&)>;

/// The bytes of a file after an edit of its record was written back.
inline std::string editFile(const std::string& bytes, const Edit& edit,
                            const TagSettings& settings = {}, int codePage = 1252,
                            const std::string& name = "a.mp3") {
    const TempFolder folder;
    Writing writing(settings, codePage);
    ID3tag record = ReadAudioFile(folder.write(name, bytes), {writing.ansi, ReadDepth::Full});
    edit(record);
    EXPECT_EQ(UpdateTags(record, writing.context), TagUpdate::Written) << writing.messages.text;
    return folder.read(name);
}

}  // namespace tavlo::test
