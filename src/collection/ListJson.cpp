#include "collection/ListJson.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "core/JsonText.h"

namespace tavlo {

namespace {
using Writer = JsonWriter;

// A track number as a number where it is one; 0 for none, "3/12" as text.
void writeTrackNumber(Writer& json, const std::string& text) {
    const char* end = text.data() + text.size();
    unsigned number = 0;
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (text.empty() || (error == std::errc() && stop == end)) {
        json.Uint(number);
    } else {
        writeText(json, text);
    }
}

void writeAlbumArt(Writer& json, const ID3tag& record) {
    if (record.AlbumArt.Size == 0) {
        json.Null();
        return;
    }
    const std::string_view name = fileTypeName(record.AlbumArtType);
    json.StartObject();
    json.Key("Kind");
    writeText(json, name.empty() ? std::string_view(record.AlbumArt.MIME) : name);
    json.Key("Bytes");
    json.Uint64(record.AlbumArt.Size);
    json.EndObject();
}

struct Key {
    const char* name;
    void (*write)(Writer&, const ListRow&);
};

template <auto field>
void number(Writer& json, const ListRow& row) {
    json.Int64(static_cast<std::int64_t>(row.record.*field));
}
template <auto field>
void flag(Writer& json, const ListRow& row) {
    json.Bool(row.record.*field);
}
template <auto getter>
void text(Writer& json, const ListRow& row) {
    writeText(json, (row.record.*getter)());
}
template <auto field>
void longText(Writer& json, const ListRow& row) {
    writeText(json, row.record.ID3v2Ext.*field);
}

constexpr std::array<Key, 36> keys{{
    {"Path", [](Writer& json, const ListRow& row) { writeName(json, row.path); }},
    {"SubPath", [](Writer& json, const ListRow& row) { writeName(json, row.subPath); }},
    {"FileType", [](Writer& json,
                    const ListRow& row) { writeText(json, fileTypeName(GetFileType(row.path))); }},
    {"Artist", text<&ID3tag::GetArtist>},
    {"Title", text<&ID3tag::GetTitle>},
    {"Mix", text<&ID3tag::GetMix>},
    {"Album", text<&ID3tag::GetAlbum>},
    {"Year", text<&ID3tag::GetYear>},
    {"TrackNumber",
     [](Writer& json, const ListRow& row) { writeTrackNumber(json, row.record.GetNumber()); }},
    {"Genre", text<&ID3tag::GetGenre>},
    {"Comment", text<&ID3tag::GetComment>},
    {"Composer", longText<&cID3v2ext::Composer>},
    {"OriginalArtist", longText<&cID3v2ext::OriginalArtist>},
    {"CopyRight", longText<&cID3v2ext::CopyRight>},
    {"URL", longText<&cID3v2ext::URL>},
    {"EncodedBy", longText<&cID3v2ext::EncodedBy>},
    {"TracksCount", number<&ID3tag::TracksCount>},
    {"DiskNumber", number<&ID3tag::DiskNumber>},
    {"DisksCount", number<&ID3tag::DisksCount>},
    {"BPM", number<&ID3tag::BPM>},
    {"IsPartOfCompilation", flag<&ID3tag::IsPartOfCompilation>},
    {"Length", number<&ID3tag::Length>},
    {"Seconds", number<&ID3tag::Seconds>},
    {"Bitrate", number<&ID3tag::Bitrate>},
    {"SampleRate", number<&ID3tag::SampleRate>},
    {"ChannelMode", number<&ID3tag::ChannelMode>},
    {"Frames", number<&ID3tag::Frames>},
    {"VBR", flag<&ID3tag::VBR>},
    {"MpegVersion", number<&ID3tag::MpegVersion>},
    {"Layer", number<&ID3tag::Layer>},
    {"Encoder", [](Writer& json, const ListRow& row) { writeText(json, row.record.Encoder); }},
    {"AlbumArt", [](Writer& json, const ListRow& row) { writeAlbumArt(json, row.record); }},
    {"IsID3v1Present", flag<&ID3tag::IsID3v1Present>},
    {"IsID3v2Present", flag<&ID3tag::IsID3v2Present>},
    {"IsAPE2Present", flag<&ID3tag::IsAPE2Present>},
    {"IsLyricsPresent", flag<&ID3tag::IsLyricsPresent>},
}};
}  // namespace

void appendJsonLine(std::string& out, const ListRow& row) {
    rapidjson::StringBuffer buffer;
    Writer json(buffer);
    json.StartObject();
    for (const Key& key : keys) {
        json.Key(key.name);
        key.write(json, row);
    }
    json.EndObject();
    out.append(buffer.GetString(), buffer.GetSize()) += '\n';
}

}  // namespace tavlo
