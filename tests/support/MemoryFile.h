#pragma once

#include <string>

#include "support/MemoryCalls.h"
#include "support/MemorySink.h"
#include "support/TestProgress.h"
#include "tags/AudioFile.h"
#include "tags/FieldEdits.h"
#include "tags/UpdateTags.h"

namespace tavlo::test {

/// A file in memory with all that is needed to read its record and to write it back.
class MemoryFile {
 public:
    explicit MemoryFile(std::string bytes, TagSettings settings = {},
                        const std::string& path = "song.mp3", int codePage = 1252)
        : path_(path), ansi_(codePage), context{ansi_, settings, errors, progress_, calls} {
        calls.put(path, std::move(bytes));
    }

    ID3tag read(ReadDepth depth = ReadDepth::Full) {
        File file(calls);
        ID3tag record;
        record.FileType = GetFileType(path_);
        record.OK = file.open(path_, Access::Read);
        if (record.OK) record.Path = path_;
        layout = readTags(file, record, {ansi_, depth});
        markAsRead(record);
        return record;
    }
    /// Reads as a list does, lets `edit` change the record and writes it.
    template <typename Edit>
    TagUpdate change(Edit edit) {
        record = read(ReadDepth::List);
        edit(record);
        return UpdateTags(record, context);
    }
    [[nodiscard]] const std::string& bytes() const { return calls.at(path_).bytes; }

 private:
    const std::string path_;
    const CodePage ansi_;
    const Texts texts_;
    TestProgress progress_;

 public:
    MemorySink sink;
    ErrorReport errors{texts_, sink};
    MemoryCalls calls;
    WriteContext context;
    ID3tag record;     ///< as the last change left it
    TagLayout layout;  ///< as the last read found it
};

}  // namespace tavlo::test
