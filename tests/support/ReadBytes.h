#pragma once

#include <optional>
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

struct ReadTag {
    std::optional<std::uint64_t> found;  ///< where the tag begins
    ID3tag record;
};

/// What one tag reader makes of a file with these bytes.
inline ReadTag readTagWith(std::optional<TagSpan> (*read)(File&, ID3tag&, const ReadContext&),
                           std::string_view bytes, ReadDepth depth, int codePage) {
    const CodePage ansi(codePage);
    File file;
    file.openMemory(bytesOf(bytes));
    ID3tag record;
    const auto span = read(file, record, {ansi, depth});
    return {span ? std::optional(span->begin) : std::nullopt, std::move(record)};
}

}  // namespace tavlo::test
