#include <algorithm>
#include <array>

#include "collection/ListJson.h"
#include "collection/ListTable.h"
#include "core/ByteCursor.h"
#include "fuzz/Promise.h"
#include "platform/CodePage.h"
#include "platform/Utf8.h"

using namespace tavlo;

namespace {
bool isControl(char c) {
    return static_cast<unsigned char>(c) < 0x20;
}

ListRow rowOf(std::string_view input) {
    static const CodePage ansi(1251);
    ListRow row{std::string(takePiece(input)), {}, {}};
    row.subPath = row.path;
    ID3tag& record = row.record;
    for (std::string* text :
         {&record.ID3v2Ext.TrackTitle, &record.ID3v2Ext.Artist, &record.ID3v2Ext.AlbumTitle,
          &record.ID3v2Ext.Year, &record.ID3v2Ext.Genre, &record.ID3v2Ext.TrackNumber,
          &record.ID3v2Ext.Mix, &record.Encoder, &record.AlbumArt.MIME}) {
        *text = ansi.toUtf8(takePiece(input));
    }
    record.Comment = ansi.toUtf8(input);
    record.AlbumArt.Size = input.size();
    record.Seconds = static_cast<std::int32_t>(input.size() * 1000);
    return row;
}
}  // namespace

// The input: a path and then texts, with NUL between them.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const ListRow row = rowOf(textOf({data, size}));
    std::string json, tabs;
    appendJsonLine(json, row);
    promise(json.ends_with("}\n") && std::count_if(json.begin(), json.end(), isControl) == 1);
    promise(isValidUtf8(json));
    appendTabLine(tabs, row);
    promise(tabs.ends_with('\n') && std::count(tabs.begin(), tabs.end(), '\n') == 1);

    ListTable table;
    table.add(row);
    const std::string page = table.print(Texts(), 80);
    promise(std::count(page.begin(), page.end(), '\n') == 2);
    return 0;
}
