#include "tags/AudioFile.h"

#include <algorithm>
#include <optional>

#include "tags/APEv2.h"
#include "tags/ID3v1.h"
#include "tags/ID3v2.h"
#include "tags/Lyrics3.h"
#include "tags/MpegStream.h"

namespace tavlo {

// A field that stands in several tags gets the last reader's value.
void readMp3(File& file, ID3tag& record, const ReadContext& context) {
    std::uint64_t audioEnd = file.size();
    const auto endBefore = [&](std::optional<std::uint64_t> tag) {
        if (tag) audioEnd = std::min(audioEnd, *tag);
    };
    endBefore(ReadID3v1Tag(file, record, context));
    endBefore(ReadLyrics3Block(file, record, context));
    endBefore(ReadAPETag(file, record, context));
    ReadID3v2Tag(file, record, context);
    readMpegStream(file, record, audioEnd);
}

ID3tag ReadAudioFile(const std::string& path, const ReadContext& context) {
    ID3tag record;
    const FileTypes type = GetFileType(path);
    if ((type & FileType::Tagged) == 0 && type != FileType::Wave) return record;
    File file;
    record.FileType = type;
    record.OK = file.open(path, Access::Read);
    if (!record.OK) return record;
    record.Path = path;
    record.Length = file.size();
    record.ReadOnly = file.isReadOnly();
    record.AllowEdits = !record.ReadOnly && HasEditableTags(path);
    record.Lossless = (type & FileType::Lossless) != 0;
    if (type == FileType::Mp3) readMp3(file, record, context);
    return record;
}

bool LoadDetails(ID3tag& record, const CodePage& ansi) {
    ID3tag full = ReadAudioFile(record.Path, {ansi, ReadDepth::Full});
    if (!full.OK) return false;
    record.AlbumArt = std::move(full.AlbumArt);
    record.AlbumArtType = full.AlbumArtType;
    record.ID3v2Ext.UnknownFrames = std::move(full.ID3v2Ext.UnknownFrames);
    record.UnknownItems = std::move(full.UnknownItems);
    return true;
}

}  // namespace tavlo
