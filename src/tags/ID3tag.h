#pragma once

#include <array>
#include <bitset>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tags/FileType.h"
#include "tags/Genre.h"

namespace tavlo {

/// Kinds of ID3v2 frames that feed a field.
inline constexpr std::size_t interpretedFrameCount = 19;

/// Long-form text fields and header data of an ID3v2 tag (ID3v2.3.0 and 2.4.0).
struct cID3v2ext {
    std::uint8_t MajorVersion = 0;  ///< 2, 3 or 4; 0 when no tag was read
    std::uint8_t MinorVersion = 0;
    bool bUnsynchronisation = false;
    bool bExtendedHeader = false;
    bool bExperimentalIndicator = false;
    bool bFooterPresent = false;
    std::uint32_t TagSize = 0;  ///< bytes, without the 10-byte header

    /// Whether the body is one unsynchronised piece; version 4 marks every frame by itself.
    [[nodiscard]] bool isUnsynchronised() const { return bUnsynchronisation && MajorVersion < 4; }

    std::string TrackTitle, Artist, AlbumTitle, Year, Comments, Composer, OriginalArtist;
    std::string CopyRight, EncodedBy, URL, TrackNumber, Genre, Mix, EncoderInfo;
    std::string EncodingHistory;  ///< how it was re-encoded, and from what; only where all is read
    std::string RecordingTime;    ///< the whole TDRC text where it says more than the year
    std::string UnknownFrames;    ///< raw frames, header and body, in file order

    std::bitset<interpretedFrameCount> RowsRead;  ///< of `fieldFrames`: which were there
    bool bDamaged = false;                        ///< not all of the tag could be taken apart
    bool bUnreadRest = false;    ///< bytes that are no padding stand behind the last whole frame
    std::string URLDescription;  ///< of WXXX; these two not in a list
};

/// Fields of a Lyrics3 v2.00 block.
struct cLyricsExt {
    std::string TrackTitle, Artist;
    std::int32_t EndOffset = 0;  ///< distance of the block from the end of the file
};

/// What a format has beyond the common fields: text items "name=value" in their order.
struct cFormatExt {
    std::vector<std::pair<std::string, std::string>> Items;
};

/// A cover picture. A list only learns that it is there; its bytes are loaded on demand.
struct cAlbumArt {
    std::uint64_t Size = 0;          ///< bytes; 0 = no picture
    std::string MIME;                ///< "image/jpeg"; empty where the tag has none
    std::string Description;         ///< as the tag has it
    std::uint8_t PictureType = 0;    ///< ID3v2.3.0, 4.15: 3 = front cover
    std::vector<std::uint8_t> Data;  ///< empty until loaded
    std::uint64_t At = 0;            ///< where its bytes lie in its file as they are; 0 = nowhere
};

/// What a batch change sets; an empty text leaves its field as it is.
struct BasicFields {
    std::string_view artist, album, year, title, mix, genre, composer, copyright, url, number;
};

/// Why a writer left a file, or a part of it, as it was.
enum class Refusal : std::uint8_t {
    None,
    NoWriter,        ///< tags of this format are not written
    NotOpened,       ///< the file could not be opened for writing
    InUse,           ///< because another program holds it
    NotRead,         ///< the disk did not give all of it
    NoID3v2Tag,      ///< there is none, and the settings do not let one be made
    NoID3v1Tag,      ///< the same of the ID3v1 block; the other tags were written
    Damaged,         ///< the tag could not be taken apart, so it cannot be put together again
    UnknownVersion,  ///< of its ID3v2 tag
    NoSound,         ///< the file holds no sound of its type, so that it may be anything
    TooLarge,        ///< for an ID3v2 tag's 28-bit size
    NotCreated,      ///< the temporary file beside it
    NotWritten,      ///< the disk took no more; the file is as it was
    Replaced,        ///< another program changed it meanwhile; that one's file stays
    Torn             ///< the disk gave up half way; the next start puts the old bytes back
};

/// The fields that a person or a job can edit.
enum class Field : std::uint8_t {
    Artist,
    Title,
    Mix,
    Album,
    Year,
    Number,
    Comment,
    Genre,
    Composer,
    OriginalArtist,
    CopyRight,
    EncodedBy,
    URL,
    EncoderInfo,
    EncodingHistory,
    TracksCount,
    DiskNumber,
    DisksCount,
    BPM,
    Compilation,
    AlbumArt
};
inline constexpr std::size_t editableFieldCount = 21;

/// A set of fields, a bit each.
using FieldSet = std::uint32_t;
template <typename... Fields>
constexpr FieldSet fieldSet(Fields... fields) {
    return ((FieldSet{1} << static_cast<unsigned>(fields)) | ...);
}

/// Everything the program keeps of one audio file. Text is UTF-8; getters give the long form
/// and, where that is empty, the short field, both without outer blanks.
class ID3tag {
 public:
    std::string Path;
    FileTypes FileType = FileType::None;
    bool OK = false;  ///< the file was opened, and no writer has refused it
    Refusal Refused = Refusal::None;
    bool ReadOnly = false;
    bool AllowEdits = true;

    std::string Title, Artist, Album, Year, Comment;
    std::uint16_t TrackNumber = 0;  ///< 0 = none
    std::uint8_t Genre = noGenre;
    int TracksCount = 0, DiskNumber = 0, DisksCount = 0, BPM = 0;  ///< 0 = none
    bool IsPartOfCompilation = false;

    std::uint64_t Length = 0;   ///< file size in bytes
    std::int64_t Modified = 0;  ///< time of the file's last change, as `FileStatus` has it
    std::int32_t Seconds = 0;   ///< playing time, rounded down
    int Bitrate = 0;            ///< kbit/s; an average where VBR
    int SampleRate = 0;         ///< Hz
    int Channels = 0;
    int ChannelMode = 0;  ///< 0 stereo, 1 joint stereo, 2 dual channel, 3 single channel
    int BitsPerSample = 0;
    std::uint32_t Frames = 0;  ///< MPEG audio frames
    bool VBR = false;
    bool StreamFound = false;        ///< the file holds the sound that its name and headers promise
    bool TimeIsGuessed = false;      ///< from the first frame alone, for no header tells it
    int MpegVersion = 0, Layer = 0;  ///< 1, 2 or 25 for MPEG-2.5; 1 to 3; 0 = no stream found
    std::string Encoder;
    bool Lossless = false, Float = false;

    cAlbumArt AlbumArt;
    FileTypes AlbumArtType = FileType::None;  ///< Jpeg, Png, Bmp; None for any other picture

    bool IsID3v1Present = false, IsID3v2Present = false;
    bool IsAPE2Present = false, IsLyricsPresent = false;

    cID3v2ext ID3v2Ext;
    cLyricsExt LyricsExt;
    cFormatExt WMAExt, OGGExt, MPCExt, MP4Ext, FLACExt, WavPackExt, MonkeyExt;
    std::string UnknownItems;  ///< raw APEv2 items that the program does not interpret

    /// Fingerprints of the fields when they were read, so that a writer knows which were edited.
    std::array<std::uint32_t, editableFieldCount> MarksAsRead{};

    [[nodiscard]] bool IsMP3File() const { return FileType == FileType::Mp3; }
    [[nodiscard]] bool IsMP4File() const { return FileType == FileType::Mp4; }
    [[nodiscard]] bool IsWindowsMediaFile() const { return FileType == FileType::Wma; }
    [[nodiscard]] bool IsOGGFile() const { return FileType == FileType::Ogg; }
    [[nodiscard]] bool IsMPCFile() const { return FileType == FileType::Mpc; }
    [[nodiscard]] bool IsFLACFile() const { return FileType == FileType::Flac; }
    [[nodiscard]] bool IsWVFile() const { return FileType == FileType::Wv; }
    [[nodiscard]] bool IsAPEFile() const { return FileType == FileType::Ape; }

    [[nodiscard]] std::string Time() const;     ///< 245 s is "4:05"
    [[nodiscard]] std::string Time2x2() const;  ///< 245 s is "04:05"

    [[nodiscard]] std::string_view GetArtist() const;
    [[nodiscard]] std::string_view GetTitle() const;
    [[nodiscard]] std::string_view GetAlbum() const;
    [[nodiscard]] std::string_view GetMix() const;
    [[nodiscard]] std::string_view GetYear() const;
    [[nodiscard]] std::string_view GetGenre() const;
    [[nodiscard]] std::uint8_t GetGenreID() const { return Genre; }
    [[nodiscard]] std::string_view GetComment() const;
    /// The track number as the tag writes it ("7", "3/12"); empty when there is none.
    [[nodiscard]] std::string GetNumber() const;
    /// "3/12" where the count is known.
    [[nodiscard]] std::string GetNumberAndCount() const;
    /// "Title (Mix)", or the title alone.
    [[nodiscard]] std::string GetTitleMix() const;
    /// The same with the kind of bracket that the title was read with.
    [[nodiscard]] std::string GetTitleMixV2() const;
    /// "Artist - Title (Mix)".
    [[nodiscard]] std::string GetArtistTitleMix() const;

    void SetArtist(std::string_view text);
    void SetTitle(std::string_view text);
    void SetMix(std::string_view text);
    void SetAlbum(std::string_view text);
    void SetYear(std::string_view text);
    void SetComment(std::string_view text);
    /// Takes a name; one that is not in the list stays as text beside number 255.
    void SetGenre(std::string_view name);
    void SetGenreID(std::uint8_t number);
    /// Takes "7" or "3/12"; the latter sets TracksCount as well.
    void SetNumber(std::string_view text);
    void SetNumberL(int number);
    /// Splits "Title (Mix)" or "Title [Mix]"; text without a bracket at its end is all title.
    void SetTitleMix(std::string_view text);
    void SetTitleMixV1(std::string_view text);  ///< knows round brackets only
    void SetTitleMixV2(std::string_view text);  ///< knows both kinds

    /// Takes a mix that stands in the title out of it, as it will be when the tag is read again.
    void SplitTitle() { SetTitleMixV2(GetTitleMixV2()); }

    /// Sets the fields that are given. Brackets at a title's end are its mix, unless one is given.
    void SetBasicFields(const BasicFields& fields);
    /// Makes the file writable and sets the fields that are given.
    void UpdateBasicFields(const BasicFields& fields);
    /// Makes the file writable; nothing happens without a path. False when it could not be done.
    bool ClearReadOnlyFlag() const;
    /// Takes over another record's tags, not its stream or what its own format keeps beyond them.
    void FillFromID3(const ID3tag& other);

 private:
    void fillFormatItems();
    void splitOwnTitle();
    bool splitTitleMix(std::string_view text, std::string_view brackets);
    [[nodiscard]] std::string joinedTitleMix(std::string_view brackets) const;

    bool squareBrackets_ = false;
};

/// Where a record keeps the items that a format has beyond the common fields; null where it has
/// none.
cFormatExt ID3tag::*formatItems(FileTypes type);

}  // namespace tavlo
