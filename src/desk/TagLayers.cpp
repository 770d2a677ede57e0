#include "desk/TagLayers.h"

#include <algorithm>
#include <array>

#include "core/ByteCursor.h"
#include "desk/FieldAgreement.h"
#include "desk/TagParts.h"
#include "platform/PlainText.h"
#include "tags/APEv2.h"
#include "tags/APEv2Items.h"
#include "tags/FieldEdits.h"
#include "tags/FieldGetters.h"
#include "tags/FieldSetters.h"
#include "tags/ID3v1.h"
#include "tags/ID3v2.h"
#include "tags/Lyrics3.h"

namespace tavlo {

namespace {
// --- Reading -------------------------------------------------------------------------------------

std::string nameOfBlock(File&, const TagLayer& layer) {
    return layer.record.TrackNumber > 0 ? "ID3v1.1" : "ID3v1.0";
}

std::string nameOfLyrics(File&, const TagLayer&) {
    return "Lyrics3 v2.00";
}

std::string nameOfApe(File& file, const TagLayer& layer) {
    ByteCursor footer(file.view(layer.span.end - ape::footerSize, ape::footerSize));
    footer.take(ape::tagMark.size());
    return footer.littleEndian(4) == ape::version1 ? "APEv1" : "APEv2";
}

std::string nameOfId3v2(File&, const TagLayer& layer) {
    const int version = layer.record.ID3v2Ext.MajorVersion;
    return "ID3v2" + (version > 0 ? "." + std::to_string(version) : std::string());
}

struct LayerReader {
    TagKind kind;
    std::optional<TagSpan> (*read)(File&, ID3tag&, const ReadContext&);
    std::string (*name)(File&, const TagLayer&);
};
constexpr std::array<LayerReader, 4> readers{{{TagKind::ID3v1, ReadID3v1Tag, nameOfBlock},
                                              {TagKind::Lyrics3, ReadLyrics3Block, nameOfLyrics},
                                              {TagKind::APEv2, ReadAPETag, nameOfApe},
                                              {TagKind::ID3v2, ReadID3v2Tag, nameOfId3v2}}};

// A block that begins inside one of the other tags at the file's end.
bool isInside(const TagLayer& block, const std::vector<TagLayer>& layers) {
    return block.kind == TagKind::ID3v1 &&
           std::any_of(layers.begin(), layers.end(), [&](const TagLayer& other) {
               const bool isAtEnd = other.kind == TagKind::APEv2 || other.kind == TagKind::Lyrics3;
               return isAtEnd && block.span.begin < other.span.end;
           });
}

// --- Fields --------------------------------------------------------------------------------------

struct LayerField {
    Text caption;
    std::string (*get)(const ID3tag&);
    /// From the other record, which has the field.
    void (*take)(ID3tag&, const ID3tag&);
    bool (*agree)(const FieldValue&, const FieldValue&, const CodePage&);
};

template <auto getter, auto setter>
constexpr auto taken = [](ID3tag& to, const ID3tag& from) { (to.*setter)((from.*getter)()); };

template <std::string cID3v2ext::*member>
std::string longText(const ID3tag& record) {
    return std::string(trimBlanks(record.ID3v2Ext.*member));
}

template <std::string cID3v2ext::*member>
void takeLong(ID3tag& to, const ID3tag& from) {
    to.ID3v2Ext.*member = trimBlanks(from.ID3v2Ext.*member);
}

template <Text caption, std::string cID3v2ext::*member>
constexpr LayerField longField{caption, longText<member>, takeLong<member>, textsAgree};

// A title and its mix are one text in most tags, so that a new title ends the old mix.
void takeTitle(ID3tag& to, const ID3tag& from) {
    to.SetTitleMixV2(from.GetTitleMixV2());
}

std::string numberText(int number) {
    return number > 0 ? std::to_string(number) : std::string();
}

std::string discText(const ID3tag& record) {
    return withCount(numberText(record.DiskNumber), record.DisksCount);
}

void takeDisc(ID3tag& to, const ID3tag& from) {
    if (from.DiskNumber > 0) to.DiskNumber = from.DiskNumber;
    if (from.DisksCount > 0) to.DisksCount = from.DisksCount;
}

std::string pictureText(const ID3tag& record) {
    return record.AlbumArt.Size > 0 ? describePicture(record.AlbumArt) : std::string();
}

void takePicture(ID3tag& to, const ID3tag& from) {
    to.AlbumArt = from.AlbumArt;
    to.AlbumArtType = from.AlbumArtType;
}

// clang-format off
constexpr std::array<LayerField, 19> fields{{
    {Text::ColumnArtist, gotten<&ID3tag::GetArtist>,
     taken<&ID3tag::GetArtist, &ID3tag::SetArtist>, textsAgree},
    {Text::ColumnTitle, gotten<&ID3tag::GetTitle>, takeTitle, titlesAgree},
    {Text::ColumnMix, gotten<&ID3tag::GetMix>, taken<&ID3tag::GetMix, &ID3tag::SetMix>, textsAgree},
    {Text::ColumnAlbum, gotten<&ID3tag::GetAlbum>,
     taken<&ID3tag::GetAlbum, &ID3tag::SetAlbum>, textsAgree},
    {Text::ColumnYear, gotten<&ID3tag::GetYear>,
     taken<&ID3tag::GetYear, &ID3tag::SetYear>, yearsAgree},
    {Text::ColumnTrack, [](const ID3tag& r) { return r.GetNumberAndCount(); },
     taken<&ID3tag::GetNumberAndCount, &ID3tag::SetNumber>, numbersAgree},
    {Text::ColumnGenre, gotten<&ID3tag::GetGenre>,
     taken<&ID3tag::GetGenre, &ID3tag::SetGenre>, genresAgree},
    {Text::ColumnComment, gotten<&ID3tag::GetComment>,
     taken<&ID3tag::GetComment, &ID3tag::SetComment>, commentsAgree},
    longField<Text::ColumnComposer, &cID3v2ext::Composer>,
    longField<Text::InfoOriginalArtist, &cID3v2ext::OriginalArtist>,
    longField<Text::InfoCopyright, &cID3v2ext::CopyRight>,
    longField<Text::InfoUrl, &cID3v2ext::URL>,
    longField<Text::InfoEncodedBy, &cID3v2ext::EncodedBy>,
    longField<Text::ColumnEncoder, &cID3v2ext::EncoderInfo>,
    longField<Text::InfoEncodingHistory, &cID3v2ext::EncodingHistory>,
    {Text::InfoDisc, discText, takeDisc, numbersAgree},
    {Text::InfoBpm, [](const ID3tag& r) { return numberText(r.BPM); },
     [](ID3tag& to, const ID3tag& from) { to.BPM = from.BPM; }, textsAgree},
    {Text::InfoCompilation, [](const ID3tag& r) { return std::string(r.IsPartOfCompilation ? "1" : ""); },
     [](ID3tag& to, const ID3tag& from) { to.IsPartOfCompilation = from.IsPartOfCompilation; },
     textsAgree},
    {Text::InfoPicture, pictureText, takePicture, picturesAgree},
}};
// clang-format on

bool agree(const LayerField& field, const TagLayer& a, const TagLayer& b, const CodePage& ansi) {
    const FieldValue first{field.get(a.record), a.record, a.kind == TagKind::ID3v1};
    const FieldValue second{field.get(b.record), b.record, b.kind == TagKind::ID3v1};
    return first.text.empty() || second.text.empty() || field.agree(first, second, ansi);
}

bool conflicts(const LayerField& field, const std::vector<TagLayer>& layers, const CodePage& ansi) {
    for (std::size_t i = 0; i < layers.size(); ++i) {
        for (std::size_t j = i + 1; j < layers.size(); ++j) {
            if (!agree(field, layers[i], layers[j], ansi)) return true;
        }
    }
    return false;
}

// The strongest layer that says the same, for it knows most of it: a picture's description, or in
// full what ID3v1 had to cut.
const TagLayer& fullest(const LayerField& field, const std::vector<TagLayer>& layers,
                        const TagLayer& chosen, const CodePage& ansi) {
    const std::string wanted = field.get(chosen.record);
    const bool mayBeCut = chosen.kind == TagKind::ID3v1;
    const auto found = std::find_if(layers.rbegin(), layers.rend(), [&](const TagLayer& other) {
        const std::string text = field.get(other.record);
        const bool isComparable = mayBeCut ? !text.empty() : text == wanted;
        return isComparable && agree(field, chosen, other, ansi);
    });
    return found == layers.rend() ? chosen : *found;
}
}  // namespace

std::vector<TagLayer> readLayers(File& file, FileTypes type, const CodePage& ansi) {
    std::vector<TagLayer> layers;
    ID3tag before;  // what an APEv2 tag in front of a Lyrics3 block has to know of it
    for (const LayerReader& reader : readers) {
        TagLayer layer;
        layer.kind = reader.kind;
        layer.record.FileType = type;
        if (reader.kind == TagKind::APEv2) {
            layer.record.IsLyricsPresent = before.IsLyricsPresent;
            layer.record.LyricsExt.EndOffset = before.LyricsExt.EndOffset;
        }
        const auto span = reader.read(file, layer.record, {ansi, ReadDepth::Full});
        if (!span) continue;
        layer.span = *span;
        layer.name = reader.name(file, layer);
        if (reader.kind == TagKind::Lyrics3) before = layer.record;
        layers.push_back(std::move(layer));
    }
    if (!layers.empty() && isInside(layers.front(), layers)) layers.erase(layers.begin());
    return layers;
}

std::vector<LayerRow> layerRows(const std::vector<TagLayer>& layers, const CodePage& ansi) {
    std::vector<LayerRow> rows;
    for (const LayerField& field : fields) {
        LayerRow row{field.caption, {}, conflicts(field, layers, ansi)};
        for (const TagLayer& layer : layers) row.values.push_back(field.get(layer.record));
        rows.push_back(std::move(row));
    }
    return rows;
}

void takeLayer(ID3tag& record, const std::vector<TagLayer>& layers, std::size_t chosen,
               const CodePage& ansi) {
    for (const LayerField& field : fields) {
        if (field.get(layers[chosen].record).empty()) continue;
        field.take(record, fullest(field, layers, layers[chosen], ansi).record);
    }
}

TagUpdate carryOver(ID3tag& record, const std::vector<TagLayer>& layers, std::size_t chosen,
                    WriteContext context) {
    takeLayer(record, layers, chosen, context.ansi);
    markAllEdited(record);  // a tag may tell otherwise what the record tells already
    context.settings.ape2 |= std::any_of(layers.begin(), layers.end(), [](const TagLayer& layer) {
        return layer.kind == TagKind::APEv2;
    });
    return UpdateTags(record, context);
}

}  // namespace tavlo
