#include "desk/FileRow.h"

#include <algorithm>
#include <limits>

#include "core/PathText.h"
#include "platform/FileSystem.h"

namespace tavlo {

namespace {
std::uint16_t small(int number) {
    return static_cast<std::uint16_t>(
        std::clamp<int>(number, 0, std::numeric_limits<std::uint16_t>::max()));
}

void keepTexts(FileRow& row, const ID3tag& record, TextStore& store) {
    const auto keep = [&](RowText which, std::string_view text) {
        row.texts[static_cast<std::size_t>(which)] = store.add(text);
    };
    const auto share = [&](RowText which, std::string_view text) {
        row.texts[static_cast<std::size_t>(which)] = store.shared(text);
    };
    const cID3v2ext& more = record.ID3v2Ext;
    share(RowText::Artist, record.GetArtist());
    keep(RowText::Title, record.GetTitle());
    share(RowText::Mix, record.GetMix());
    share(RowText::Album, record.GetAlbum());
    share(RowText::Year, record.GetYear());
    share(RowText::Track, record.GetNumberAndCount());
    share(RowText::Genre, record.GetGenre());
    share(RowText::Comment, record.GetComment());
    share(RowText::Composer, more.Composer);
    share(RowText::OriginalArtist, more.OriginalArtist);
    share(RowText::CopyRight, more.CopyRight);
    share(RowText::Url, more.URL);
    share(RowText::EncodedBy, more.EncodedBy);
    share(RowText::Encoder, record.Encoder);
}
}  // namespace

std::string FileRow::path() const {
    return joinPath(text(RowText::Folder), text(RowText::Name), nativePathStyle());
}

FileRow rowOf(const ID3tag& record, std::string_view path, TextStore& store) {
    const PathStyle style = nativePathStyle();
    FileRow row;
    keepTexts(row, record, store);
    row.texts[static_cast<std::size_t>(RowText::Name)] = store.add(fileNameOf(path, style));
    row.texts[static_cast<std::size_t>(RowText::Folder)] = store.shared(folderOf(path, style));
    row.size = record.Length;
    row.modified = record.Modified;
    row.pictureSize = static_cast<std::uint32_t>(
        std::min<std::uint64_t>(record.AlbumArt.Size, std::numeric_limits<std::uint32_t>::max()));
    row.seconds = record.Seconds;
    row.sampleRate = record.SampleRate;
    row.bitrate = record.Bitrate;
    row.diskNumber = small(record.DiskNumber);
    row.disksCount = small(record.DisksCount);
    row.bpm = small(record.BPM);
    row.type = GetFileType(path);
    row.isVbr = record.VBR;
    row.hasStream = record.Seconds != 0 || record.Layer != 0;
    row.isCompilation = record.IsPartOfCompilation;
    row.hasID3v1 = record.IsID3v1Present;
    row.hasID3v2 = record.IsID3v2Present;
    row.hasAPEv2 = record.IsAPE2Present;
    row.hasLyrics = record.IsLyricsPresent;
    row.isReadOnly = record.ReadOnly;
    row.isFailed = record.FileType != FileType::None && !record.OK;
    if (row.isFailed) row.size = fileInfo(std::string(path)).value_or(FileInfo{}).size;
    return row;
}

}  // namespace tavlo
