#include "tags/AudioFile.h"

#include <algorithm>
#include <optional>

#include "tags/FieldEdits.h"
#include "tags/ID3v1.h"
#include "tags/Lyrics3.h"
#include "tags/MpegStream.h"
#include "tags/StreamHeaders.h"
#include "tags/WaveFile.h"

namespace tavlo {

// A field that stands in several tags gets the last reader's value.
TagLayout readTags(File& file, ID3tag& record, const ReadContext& context) {
    TagLayout layout;
    layout.id3v1 = ReadID3v1Tag(file, record, context);
    layout.lyrics = ReadLyrics3Block(file, record, context);
    if (context.depth == ReadDepth::Places) {
        layout.ape = ReadAPETag(file, record, context, layout.items);
        layout.id3v2 = ReadID3v2Tag(file, record, context, layout.frames);
    } else {
        layout.ape = ReadAPETag(file, record, context);
        layout.id3v2 = ReadID3v2Tag(file, record, context);
    }
    return layout;
}

namespace {
std::uint64_t audioEnd(const File& file, const TagLayout& layout) {
    std::uint64_t end = file.size();
    for (const auto& tag : {layout.id3v1, layout.lyrics, layout.ape}) {
        if (tag) end = std::min(end, tag->begin);
    }
    return end;
}
}  // namespace

void readMp3(File& file, ID3tag& record, const ReadContext& context) {
    const TagLayout layout = readTags(file, record, context);
    if (context.depth == ReadDepth::Tags) return;
    readMpegStream(file, record, audioEnd(file, layout));
}

ID3tag ReadAudioFile(const std::string& path, const ReadContext& context) {
    ID3tag record;
    const FileTypes type = GetFileType(path);
    if ((type & FileType::Audio) == 0) return record;
    File file;
    record.FileType = type;
    record.OK = file.open(path, Access::Read);
    if (!record.OK) return record;
    record.Path = path;
    record.Length = file.size();
    record.Modified = file.modified();
    record.ReadOnly = file.isReadOnly();
    record.AllowEdits = !record.ReadOnly && HasEditableTags(path);
    record.Lossless = (type & FileType::Lossless) != 0;
    if (type == FileType::Mp3) {
        readMp3(file, record, context);
    } else if (type == FileType::Wave) {
        record.OK = readWave(file, record);
    } else {
        TagLayout layout;
        if ((type & FileType::Ape2Only) != 0) layout = readTags(file, record, context);
        if (context.depth != ReadDepth::Tags) readStream(file, record, audioEnd(file, layout));
    }
    markAsRead(record);
    return record;
}

bool LoadDetails(ID3tag& record, const CodePage& ansi) {
    ID3tag full = ReadAudioFile(record.Path, {ansi, ReadDepth::Full});
    if (!full.OK) return false;
    record.AlbumArt = std::move(full.AlbumArt);
    record.AlbumArtType = full.AlbumArtType;
    record.ID3v2Ext.UnknownFrames = std::move(full.ID3v2Ext.UnknownFrames);
    record.UnknownItems = std::move(full.UnknownItems);
    markAsRead(record);
    return true;
}

}  // namespace tavlo
