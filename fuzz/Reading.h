#pragma once

#include <string>

#include "collection/ListJson.h"
#include "fuzz/Promise.h"
#include "platform/Utf8.h"
#include "tags/ID3tag.h"
#include "tags/TagReading.h"
#include "tests/support/RecordTexts.h"

namespace tavlo {

using Reader = void (*)(File&, ID3tag&, const ReadContext&);

inline ID3tag readWith(Reader read, File& file, ReadDepth depth) {
    static const CodePage ansi(1251);
    ID3tag record;
    read(file, record, {ansi, depth});
    return record;
}

/// What a list shows of a record.
inline std::string listed(const ID3tag& record) {
    std::string line;
    appendJsonLine(line, {"song.mp3", "song.mp3", record});
    return line;
}

inline void checkRecord(const ID3tag& record) {
    promise(isValidUtf8(listed(record)));
    for (const std::string* text : test::textsOf(record)) {
        promise(isValidUtf8(*text));
    }
    promise(record.Seconds >= 0 && record.Bitrate >= 0);
    promise((record.Layer == 0) == (record.SampleRate == 0));
}

/// Both depths show the same list; only the full one holds a picture's bytes and unknown frames.
inline void checkReader(Bytes bytes, Reader read) {
    File file;
    file.openMemory(bytes);
    const ID3tag list = readWith(read, file, ReadDepth::List);
    const ID3tag full = readWith(read, file, ReadDepth::Full);
    checkRecord(list);
    checkRecord(full);
    promise(listed(list) == listed(full));
    promise(list.AlbumArt.Data.empty() && full.AlbumArt.Data.size() == full.AlbumArt.Size);
    promise(list.ID3v2Ext.UnknownFrames.empty() && list.UnknownItems.empty());
    promise(full.ID3v2Ext.UnknownFrames.size() <= bytes.size());
    // 8-bit values of APEv1 become UTF-8; bytes that are no item get a head.
    promise(full.UnknownItems.size() <= 3 * bytes.size() + 64);
}

}  // namespace tavlo
