#pragma once

#include <string_view>

#include "platform/CodePage.h"
#include "support/TagBytes.h"
#include "tags/AudioFile.h"

namespace tavlo::test {

/// The record that the MP3 reader makes of a file with these bytes.
inline ID3tag readBytes(std::string_view bytes, int codePage = 1252,
                        ReadDepth depth = ReadDepth::List) {
    const CodePage ansi(codePage);
    File file;
    file.openMemory(bytesOf(bytes));
    ID3tag record;
    record.Path = "memory.mp3";
    record.FileType = FileType::Mp3;
    readMp3(file, record, {ansi, depth});
    return record;
}

}  // namespace tavlo::test
