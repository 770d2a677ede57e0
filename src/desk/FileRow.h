#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "desk/TextStore.h"
#include "tags/ID3tag.h"

namespace tavlo {

/// What a row keeps as text.
enum class RowText : std::uint8_t {
    Name,
    Folder,  ///< without a separator behind it
    Artist,
    Title,
    Mix,
    Album,
    Year,
    Track,  ///< "7" or "7/12"
    Genre,
    Comment,
    Composer,
    OriginalArtist,
    CopyRight,
    Url,
    EncodedBy,
    Encoder,
};
inline constexpr std::size_t rowTextCount = 16;

/// What a list keeps of one file: a record's fields without its pictures and frames, small enough
/// for hundreds of thousands of them. The texts lie in a `TextStore`.
struct FileRow {
    std::array<std::string_view, rowTextCount> texts;
    std::uint64_t size = 0;     ///< bytes
    std::int64_t modified = 0;  ///< as `FileStatus` has it
    std::uint32_t pictureSize = 0;
    std::int32_t seconds = 0;
    std::int32_t sampleRate = 0;  ///< Hz
    std::int32_t bitrate = 0;     ///< kbit/s
    std::uint16_t diskNumber = 0, disksCount = 0, bpm = 0;
    FileTypes type = FileType::None;
    bool isVbr : 1 = false;
    bool hasStream : 1 = false;
    bool isCompilation : 1 = false;
    bool hasID3v1 : 1 = false;
    bool hasID3v2 : 1 = false;
    bool hasAPEv2 : 1 = false;
    bool hasLyrics : 1 = false;
    bool isReadOnly : 1 = false;
    bool isFailed : 1 = false;  ///< it could not be read

    [[nodiscard]] std::string_view text(RowText which) const {
        return texts[static_cast<std::size_t>(which)];
    }
    [[nodiscard]] std::string path() const;
};

/// The row of a record that was read from a path; what many files share is kept once.
FileRow rowOf(const ID3tag& record, std::string_view path, TextStore& store);

}  // namespace tavlo
