#include "tags/ID3v2ToAPE.h"

#include <algorithm>
#include <array>

#include "core/TextCase.h"
#include "tags/APEv2Items.h"
#include "tags/ID3v2Fields.h"
#include "tags/ID3v2Kept.h"
#include "tags/Picture.h"
#include "tags/TagText.h"

namespace tavlo {

namespace {
struct KeyOfFrame {
    std::string_view id, key;
};

// Text frames, and URL frames behind them (ID3v2.4.0 native frames, 4.2 and 4.3).
constexpr auto keysOfFrames = std::to_array<KeyOfFrame>({
    {"TPE2", "Album Artist"},
    {"TPE3", "Conductor"},
    {"TPE4", "MixArtist"},
    {"TEXT", "Lyricist"},
    {"TOLY", "Original Lyricist"},
    {"TOPE", "Original Artist"},
    {"TOAL", "Original Album"},
    {"TOFN", "Original Filename"},
    {"TORY", "OriginalYear"},
    {"TDOR", "OriginalDate"},
    {"TIT1", "Grouping"},
    {"GRP1", "Grouping"},
    {"TIT3", "Subtitle"},
    {"TSST", "DiscSubtitle"},
    {"TPUB", "Publisher"},
    {"TSRC", "ISRC"},
    {"TBPM", "BPM"},
    {"TLAN", "Language"},
    {"TKEY", "INITIALKEY"},
    {"TMOO", "Mood"},
    {"TMED", "Media"},
    {"TCMP", "Compilation"},
    {"TSOA", "ALBUMSORT"},
    {"TSOP", "ARTISTSORT"},
    {"TSOT", "TITLESORT"},
    {"TSO2", "ALBUMARTISTSORT"},
    {"TSOC", "COMPOSERSORT"},
    {"TIPL", "Involved People"},
    {"IPLS", "Involved People"},
    {"TMCL", "Musician Credits"},
    {"TSSE", "ENCODERSETTINGS"},
    {"TDRC", "Record Date"},
    {"TDRL", "RELEASETIME"},
    {"TDEN", "ENCODINGTIME"},
    {"TDTG", "TAGGINGTIME"},
    {"TLEN", "LENGTH"},
    {"TRSN", "RadioStation"},
    {"TRSO", "RadioStationOwner"},
    {"TOWN", "FileOwner"},
    {"TPRO", "ProducedNotice"},
    {"TFLT", "FileType"},
    {"TDLY", "PlaylistDelay"},
    {"MVNM", "MOVEMENTNAME"},
    {"MVIN", "MOVEMENT"},
    {"TCAT", "PodcastCategory"},
    {"TDES", "PodcastDescription"},
    {"TGID", "PodcastId"},
    {"TKWD", "PodcastKeywords"},
    {"TDAT", "DDMM"},
    {"TIME", "HHMM"},
    {"TRDA", "RecordingDates"},
    {"WOAR", "WWWARTIST"},
    {"WOAS", "WWWAUDIOSOURCE"},
    {"WOAF", "WWWAUDIOFILE"},
    {"WCOM", "WWWCOMMERCIALINFO"},
    {"WCOP", "WWWCOPYRIGHT"},
    {"WPAY", "WWWPAYMENT"},
    {"WPUB", "WWWPUBLISHER"},
    {"WORS", "WWWRADIOPAGE"},
    {"WFED", "PODCASTURL"},
});

// By the picture type (ID3v2.3.0, 4.15).
constexpr std::array<std::string_view, 21> pictureKinds{"other",
                                                        "png icon",
                                                        "icon",
                                                        "front",
                                                        "back",
                                                        "leaflet",
                                                        "media",
                                                        "lead artist",
                                                        "artist",
                                                        "conductor",
                                                        "band",
                                                        "composer",
                                                        "lyricist",
                                                        "recording location",
                                                        "during recording",
                                                        "during performance",
                                                        "video capture",
                                                        "colored fish",
                                                        "illustration",
                                                        "band logo",
                                                        "publisher logo"};

std::string_view keyOfFrame(std::string_view id) {
    const auto* row = std::ranges::find(keysOfFrames, id, &KeyOfFrame::id);
    return row == keysOfFrames.end() ? std::string_view() : row->key;
}

// "MusicBrainz Album Id" is MUSICBRAINZ_ALBUMID, as other taggers have it.
std::string keyOfDescription(std::string_view description) {
    constexpr std::string_view family = "MusicBrainz ";
    if (equalsNoCase(description, "Acoustid Id")) return "ACOUSTID_ID";
    if (!equalsNoCase(description.substr(0, family.size()), family)) {
        return std::string(description);
    }
    std::string key = "MUSICBRAINZ_";
    for (const char c : description.substr(family.size())) {
        if (c != ' ') key += c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    }
    return key;
}

// APEv2 item keys: 2 to 255 characters from blank to tilde, but for names of other formats.
bool isKey(std::string_view key) {
    constexpr std::array<std::string_view, 4> taken{"ID3", "TAG", "OggS", "MP+"};
    const bool isPrintable =
        std::ranges::all_of(key, [](char c) { return c >= 0x20 && c <= 0x7E; });
    return key.size() >= 2 && key.size() <= ape::longestKey && isPrintable &&
           std::ranges::none_of(taken, [&](std::string_view t) { return equalsNoCase(t, key); });
}

class Carrier {
 public:
    Carrier(File& file, const FoundFrames& frames, const TagChange& change, const FoundItems& items,
            const CodePage& ansi)
        : file_(file), frames_(frames), change_(change), items_(items), ansi_(ansi) {
        if (frames.isPlain) plain_.openMemory(frames.plain);
    }

    Carried run() {
        for (const FoundFrame& frame : frames_.frames) {
            if (!carry(frame)) carried_.homeless.push_back(nameOf(frame.header.id));
        }
        if (frames_.restEnd > frames_.end) carried_.homeless.emplace_back("?");
        return std::move(carried_);
    }

 private:
    [[nodiscard]] std::string nameOf(std::string_view id) const {
        const std::string_view successor = version_ == 2 ? successorOf(id) : "";
        return std::string(successor.empty() ? id : successor);
    }

    // True where nothing of the frame is lost.
    bool carry(const FoundFrame& found) {
        const FieldFrame* row = findFieldFrame(found.header.id, version_);
        if (found.isRead && row != nullptr && isTold(*row)) return agrees(*row);
        const auto content = contentOf(found);
        if (!content) return false;
        const std::string_view id = id_;
        if (id == "TXXX" || id == "COMM" || id == "USLT") return carryDescribed(id, *content);
        if (id == "WXXX") return carryUrl(*content);
        if (id == "APIC") return carryPicture(found, *content);
        if (id == "UFID") return carryIdentifier(*content);
        if (id == "POPM") return carryRating(*content);
        if (id == "PCNT") return carryCount(*content);
        const std::string_view key = keyOfFrame(id);
        if (key.empty()) return false;
        if (id[0] == 'W') return addText(key, ansi_.toUtf8(textOf(*content)));
        return addText(key, textBehindEncoding(*content));
    }

    // Whether items are made of the record's fields anyway.
    [[nodiscard]] bool isTold(const FieldFrame& frame) const {
        FieldSet all = 0;
        for (const FieldItem& item : fieldItems()) all |= item.fields;
        const bool hasMore = frame.id == "TDRC" && !record_.ID3v2Ext.RecordingTime.empty();
        return (frame.fields & ~all) == 0 && !hasMore;
    }

    // Items of the file's own stay; they may tell otherwise.
    bool agrees(const FieldFrame& frame) {
        if (change_.edits(frame.fields)) return true;
        return std::ranges::all_of(fieldItems(), [&](const FieldItem& item) {
            const FoundItem* own = (item.fields & frame.fields) != 0 ? itemOf(item.key) : nullptr;
            return own == nullptr ||
                   trimBlanks(joinValues(utf8OrAnsi(valueOf(*own), ansi_))) == item.get(record_);
        });
    }

    // The frame as one of version 3 or 4 without prefixes; its name is in `id_`.
    std::optional<Bytes> contentOf(const FoundFrame& found) {
        const std::size_t headerSize = frameHeaderSize(version_);
        File& source = frames_.isPlain ? plain_ : file_;
        const Bytes body = source.view(found.begin + headerSize, found.header.bodySize);
        id_ = found.header.id;
        bytes_.clear();
        if (version_ == 2 || id_.ends_with('\0') || id_.ends_with(' ')) {
            const std::string frame = convertFrame(found.header, textOf(body), version_, 3, ansi_);
            const auto header = parseFrameHeader(bytesOfText(frame), 3);
            id_ = header->id;
            if (id_ == "PRIV") return std::nullopt;
            bytes_.assign(frame.begin() + 10, frame.end());
            return Bytes(bytes_);
        }
        if (isPlainFrame(found.header, version_)) return body;
        auto content = decodeFrameBody(found.header, version_, body);
        if (!content) return std::nullopt;
        bytes_ = std::move(*content);
        return Bytes(bytes_);
    }

    static std::optional<TextEncoding> encodingOf(ByteCursor& cursor) {
        const auto byte = cursor.u8();
        if (!byte || *byte > static_cast<std::uint8_t>(TextEncoding::Utf8)) return std::nullopt;
        return static_cast<TextEncoding>(*byte);
    }

    [[nodiscard]] std::string textOfRest(ByteCursor& cursor, TextEncoding encoding) const {
        std::string text = decodeText(encoding, *cursor.take(cursor.left()), ansi_);
        while (text.ends_with('\0')) text.pop_back();
        return text;
    }

    [[nodiscard]] std::string textBehindEncoding(Bytes content) const {
        ByteCursor cursor(content);
        const auto encoding = encodingOf(cursor);
        return encoding ? textOfRest(cursor, *encoding) : std::string();
    }

    bool carryDescribed(std::string_view id, Bytes content) {
        constexpr std::size_t languageSize = 3;
        ByteCursor cursor(content);
        const auto encoding = encodingOf(cursor);
        if (!encoding || (id != "TXXX" && !cursor.take(languageSize))) return false;
        const std::string description =
            decodeText(*encoding, takeTerminated(cursor, *encoding), ansi_);
        const std::string text = textOfRest(cursor, *encoding);
        if (id == "TXXX") return addText(keyOfDescription(description), text);
        const std::string_view key = id == "USLT" ? "Lyrics" : "Comment";
        return addText(
                   description.empty() ? std::string(key) : std::string(key) + ":" + description,
                   text) ||
               (id == "USLT" && addText(key, text));
    }

    bool carryUrl(Bytes content) {
        ByteCursor cursor(content);
        const auto encoding = encodingOf(cursor);
        if (!encoding) return false;
        const std::string description =
            decodeText(*encoding, takeTerminated(cursor, *encoding), ansi_);
        const std::string url = ansi_.toUtf8(textOf(cursor.takeUntil(0)));
        return addText(description.empty() ? "WWW" : "WWW:" + description, url) ||
               addText("WWW", url);
    }

    bool carryPicture(const FoundFrame& found, Bytes content) {
        const auto picture = parsePictureFrame(content, content.size(), 3, ansi_);
        if (!picture) return false;
        if (found.isRead && !isTaken(ape::pictureKey)) return true;  // it becomes the cover
        const std::uint8_t type = picture->art.PictureType;
        if (type >= pictureKinds.size()) return false;
        const std::string key = "Cover Art (" + std::string(pictureKinds[type]) + ")";
        const std::string_view data = textOf(content.subspan(picture->dataOffset));
        std::string value = pictureItemName(picture->art);
        value += '\0';
        value += data;
        if (isTaken(key)) return hasPicture(key, data);
        carried_.items.push_back({key, ape::binaryItem, Pieces(std::move(value))});
        return true;
    }

    bool carryIdentifier(Bytes content) {
        ByteCursor cursor(content);
        const std::string_view owner = textOf(cursor.takeUntil(0));
        if (owner != "http://musicbrainz.org") return false;
        return addText("MUSICBRAINZ_TRACKID", std::string(textOf(cursor.rest())));
    }

    // A rater's address, the rating from 1 to 255 and how often the file was played.
    bool carryRating(Bytes content) {
        ByteCursor cursor(content);
        cursor.takeUntil(0);
        const auto rating = cursor.u8();
        if (!rating) return false;
        const bool isCarried = *rating == 0 || addText("Rating", std::to_string(*rating));
        return (cursor.left() == 0 || carryCount(cursor.rest())) && isCarried;
    }

    bool carryCount(Bytes digits) {
        constexpr std::size_t most = 4;
        while (digits.size() > most && digits.front() == 0) digits = digits.subspan(1);
        const auto count = ByteCursor(digits).bigEndian(std::min(most, digits.size()));
        if (digits.empty() || digits.size() > most || !count) return false;
        return *count == 0 || addText("Play Counter", std::to_string(*count));
    }

    // Values of several frames with one key stand in one item.
    bool addText(std::string_view key, std::string text) {
        if (text.empty()) return true;
        if (!isKey(key) || findFieldItemNoCase(key) != nullptr) return false;
        if (const FoundItem* own = itemOf(key)) return valueOf(*own) == text;
        for (CarriedItem& item : carried_.items) {
            if (!equalsNoCase(item.key, key)) continue;
            item.value.add('\0' + text);
            return true;
        }
        carried_.items.push_back({std::string(key), 0, Pieces(std::move(text))});
        return true;
    }

    [[nodiscard]] const FoundItem* itemOf(std::string_view key) const {
        const auto found = std::ranges::find_if(
            items_.items, [&](const FoundItem& item) { return equalsNoCase(item.key, key); });
        return found == items_.items.end() ? nullptr : &*found;
    }
    [[nodiscard]] std::string valueOf(const FoundItem& item) {
        const auto size = static_cast<std::size_t>(item.end - item.value);
        return std::string(textOf(file_.view(item.value, size)));
    }
    [[nodiscard]] bool isTaken(std::string_view key) const {
        return itemOf(key) != nullptr ||
               std::ranges::any_of(carried_.items, [&](const CarriedItem& item) {
                   return equalsNoCase(item.key, key);
               });
    }
    bool hasPicture(std::string_view key, std::string_view data) {
        const FoundItem* own = itemOf(key);
        const std::string held(data);  // the view goes with the next one
        return own != nullptr && valueOf(*own).ends_with('\0' + held);
    }

    File& file_;
    const FoundFrames& frames_;
    const TagChange& change_;
    const ID3tag& record_ = change_.after;
    const FoundItems& items_;
    const CodePage& ansi_;
    const int version_ = record_.ID3v2Ext.MajorVersion;
    File plain_;
    std::string id_;
    std::vector<std::uint8_t> bytes_;
    Carried carried_;
};
}  // namespace

Carried carriedItems(File& file, const FoundFrames& frames, const TagChange& change,
                     const FoundItems& items, const CodePage& ansi) {
    return Carrier(file, frames, change, items, ansi).run();
}

}  // namespace tavlo
