#include <algorithm>

#include "core/ByteCursor.h"
#include "tags/StreamReaders.h"

namespace tavlo {

namespace {
constexpr std::size_t shortHeadSize = 8, longHeadSize = 16, timesSize = 36;
constexpr int mostAtoms = 1000;  // of one level

struct Atom {
    std::string type;
    std::uint64_t body = 0, end = 0;
};

// An atom may claim to end behind `limit`; one that ends in front of its body is none.
std::optional<Atom> atomAt(File& file, std::uint64_t at, std::uint64_t limit) {
    ByteCursor cursor(file.view(at, longHeadSize));
    const auto size = cursor.bigEndian(4);
    const auto type = cursor.take(4);
    if (!type) return std::nullopt;
    Atom atom{std::string(textOf(*type)), at + shortHeadSize, at + *size};
    if (*size == 0) atom.end = limit;
    if (*size == 1) {
        const auto high = cursor.bigEndian(4);
        const auto low = cursor.bigEndian(4);
        if (!low || *high >> 31U != 0) return std::nullopt;
        atom.body = at + longHeadSize;
        atom.end = at + (std::uint64_t{*high} << 32U | *low);
    }
    return atom.end >= atom.body ? std::optional(atom) : std::nullopt;
}

// The first atom of a type that lies whole between `at` and `end`.
std::optional<Atom> findAtom(File& file, std::uint64_t at, std::uint64_t end,
                             std::string_view type) {
    for (int i = 0; i < mostAtoms && at < end; ++i) {
        auto atom = atomAt(file, at, end);
        if (!atom || atom->end > end) break;
        if (atom->type == type) return atom;
        at = atom->end;
    }
    return std::nullopt;
}

std::optional<Atom> findChild(File& file, const std::optional<Atom>& parent,
                              std::string_view type) {
    return parent ? findAtom(file, parent->body, parent->end, type) : std::nullopt;
}

// The playing time of a media or movie header.
void parseTimes(Bytes bytes, StreamFacts& facts) {
    ByteCursor cursor(bytes);
    const bool isLong = cursor.u8().value_or(0) == 1;
    cursor.take(isLong ? 3 + 16 : 3 + 8);  // flags, times of making and change
    const auto scale = cursor.bigEndian(4);
    const auto high = isLong ? cursor.bigEndian(4) : 0;
    const auto low = cursor.bigEndian(4);
    if (!low || !high) return;
    const bool isUnknown = *low == 0xFFFFFFFFU && (!isLong || *high == 0xFFFFFFFFU);
    facts.timeScale = *scale;
    facts.length = isUnknown ? 0 : std::uint64_t{*high} << 32U | *low;
}

class Bits {
 public:
    explicit Bits(Bytes bytes) : bytes_(bytes) {}

    // Zeroes behind the end.
    std::uint32_t take(unsigned count) {
        std::uint32_t value = 0;
        for (; count > 0; --count, ++at_) {
            const unsigned byte = at_ / 8 < bytes_.size() ? bytes_[at_ / 8] : 0U;
            value = value << 1U | (byte >> (7 - at_ % 8) & 1U);
        }
        return value;
    }

 private:
    Bytes bytes_;
    std::size_t at_ = 0;
};

std::uint32_t takeRate(Bits& bits) {
    constexpr std::uint32_t isPlain = 15;
    const std::uint32_t index = bits.take(4);
    if (index == isPlain) return bits.take(24);
    return index < aacRates.size() ? aacRates[index] : 0;
}

// AAC's own description of the sound; the sample entry around it often has default values.
void parseAudioConfig(Bytes bytes, StreamFacts& facts) {
    constexpr std::uint32_t escape = 31;
    constexpr std::uint32_t plain = 2;
    constexpr std::uint32_t doubledRate = 5;
    constexpr std::uint32_t parametricStereo = 29;
    constexpr std::uint32_t rateMark = 0x2B7;
    constexpr std::uint32_t stereoMark = 0x548;  // of what older players pass over
    Bits bits(bytes);
    std::uint32_t kind = bits.take(5);
    if (kind == escape) kind = 32 + bits.take(6);
    std::uint32_t rate = takeRate(bits);
    std::uint32_t channels = bits.take(4);
    if (kind == doubledRate || kind == parametricStereo) rate = takeRate(bits);
    bool isStereo = kind == parametricStereo;
    if (kind == plain) {
        bits.take(3);
        if (bits.take(11) == rateMark && bits.take(5) == doubledRate && bits.take(1) == 1) {
            rate = takeRate(bits);
            isStereo = bits.take(11) == stereoMark && bits.take(1) == 1;
        }
    }
    if (isStereo && channels == 1) channels = 2;
    if (rate > 0) facts.sampleRate = rate;
    if (channels > 0 && channels <= 7) facts.channels = channels == 7 ? 8 : channels;
}

// Takes a descriptor's head where it has this tag.
bool takeDescriptor(ByteCursor& cursor, std::uint8_t tag) {
    if (cursor.u8() != tag) return false;
    for (int i = 0; i < 4; ++i) {
        if ((cursor.u8().value_or(0) & 0x80U) == 0) break;
    }
    return true;
}

void parseDescriptors(Bytes bytes, StreamFacts& facts) {
    constexpr std::uint8_t stream = 3;
    constexpr std::uint8_t decoder = 4;
    constexpr std::uint8_t decoderData = 5;
    ByteCursor cursor(bytes);
    cursor.take(4);  // version and flags
    if (!takeDescriptor(cursor, stream)) return;
    cursor.take(2);
    const unsigned flags = cursor.u8().value_or(0);
    if ((flags & 0x80U) != 0) cursor.take(2);
    if ((flags & 0x40U) != 0) cursor.take(cursor.u8().value_or(0));
    if ((flags & 0x20U) != 0) cursor.take(2);
    if (!takeDescriptor(cursor, decoder) || !cursor.take(13)) return;
    if (takeDescriptor(cursor, decoderData)) parseAudioConfig(cursor.rest(), facts);
}

void parseAlac(Bytes bytes, StreamFacts& facts) {
    ByteCursor cursor(bytes);
    cursor.take(4 + 4 + 1);  // version and flags, samples in a frame, compatible version
    const auto bits = cursor.u8();
    cursor.take(3);
    const auto channels = cursor.u8();
    cursor.take(2 + 4 + 4);
    const auto rate = cursor.bigEndian(4);
    if (!rate) return;
    facts.bitsPerSample = *bits;
    facts.channels = *channels;
    facts.sampleRate = *rate;
}

// The box of FLAC holds the block that such a file begins with; a rate above 65535 Hz stands only
// there.
void parseFlacRate(Bytes bytes, StreamFacts& facts) {
    ByteCursor cursor(bytes);
    cursor.take(4 + 4 + 10);  // version and flags, the block's head, sizes of blocks and frames
    if (const auto packed = cursor.bigEndian(4)) facts.sampleRate = *packed >> 12U;
}

bool parseSampleEntry(File& file, const Atom& table, StreamFacts& facts) {
    constexpr std::size_t entrySize = 28;
    constexpr std::size_t mostDescription = 128;
    const auto entry = atomAt(file, table.body + 8, table.end);
    if (!entry || entry->end > table.end) return false;
    ByteCursor cursor(file.view(entry->body, entrySize));
    cursor.take(8);
    const std::uint32_t version = cursor.bigEndian(2).value_or(0);
    cursor.take(6);
    facts.channels = cursor.bigEndian(2).value_or(0);
    const std::uint32_t bits = cursor.bigEndian(2).value_or(0);
    cursor.take(4);
    const auto rate = cursor.bigEndian(4);
    if (!rate) return false;
    facts.sampleRate = *rate >> 16U;
    facts.isLossless = entry->type == "alac" || entry->type == "fLaC";
    if (facts.isLossless) facts.bitsPerSample = bits;
    const std::uint64_t inner = entry->body + entrySize +
                                (version == 1   ? 16
                                 : version == 2 ? 36
                                                : 0);
    constexpr std::array<std::pair<std::string_view, void (*)(Bytes, StreamFacts&)>, 3>
        descriptions{{{"esds", parseDescriptors}, {"alac", parseAlac}, {"dfLa", parseFlacRate}}};
    for (const auto& [type, parse] : descriptions) {
        const auto atom = findAtom(file, inner, entry->end, type);
        if (atom) parse(file.view(atom->body, mostDescription), facts);
    }
    return true;
}

bool parseTrack(File& file, const Atom& track, StreamFacts& facts) {
    constexpr std::size_t handlerSize = 12;
    const auto media = findChild(file, track, "mdia");
    const auto handler = findChild(file, media, "hdlr");
    if (!handler || !textOf(file.view(handler->body, handlerSize)).ends_with("soun")) return false;
    const auto samples = findChild(file, findChild(file, media, "minf"), "stbl");
    const auto table = findChild(file, samples, "stsd");
    if (!table || !parseSampleEntry(file, *table, facts)) return false;
    if (const auto times = findChild(file, media, "mdhd")) {
        parseTimes(file.view(times->body, timesSize), facts);
    }
    if (facts.sampleRate == 0) facts.sampleRate = facts.timeScale;
    return true;
}

// The first track of sound.
bool parseMovie(File& file, const Atom& movie, StreamFacts& facts) {
    std::uint64_t at = movie.body;
    for (int i = 0; i < mostAtoms; ++i) {
        const auto track = findAtom(file, at, movie.end, "trak");
        if (!track) return false;
        if (parseTrack(file, *track, facts)) break;
        at = track->end;
    }
    const auto times = facts.length == 0 ? findChild(file, movie, "mvhd") : std::nullopt;
    if (times) parseTimes(file.view(times->body, timesSize), facts);
    return true;
}

bool mayBeFirst(std::string_view type) {
    constexpr std::array<std::string_view, 6> types{"ftyp", "moov", "mdat", "free", "skip", "wide"};
    return std::find(types.begin(), types.end(), type) != types.end();
}
}  // namespace

std::optional<StreamFacts> readMp4(File& file, SoundSpan span) {
    StreamFacts facts;
    std::optional<Atom> movie;
    std::uint64_t at = span.begin;
    for (int i = 0; i < mostAtoms && at < span.end; ++i) {
        const auto atom = atomAt(file, at, span.end);
        if (!atom || (i == 0 && !mayBeFirst(atom->type))) break;
        const bool isNeeded = atom->type == "moov" || atom->type == "mdat";
        if (isNeeded && atom->end > span.end) return std::nullopt;
        if (atom->type == "moov") movie = atom;
        if (atom->type == "mdat") facts.audioBytes += atom->end - atom->body;
        at = atom->end;
    }
    if (!movie || facts.audioBytes == 0 || !parseMovie(file, *movie, facts)) return std::nullopt;
    return facts;
}

}  // namespace tavlo
