#include <algorithm>

#include "core/ByteCursor.h"
#include "platform/Utf8.h"
#include "tags/StreamReaders.h"

namespace tavlo {

namespace {
constexpr std::size_t pageHeadSize = 27, mostSegments = 255;
constexpr std::uint64_t noGranule = ~std::uint64_t{0};  // no packet ends on this page
constexpr int mostStreams = 64;                         // that may begin in front of the sound
constexpr int mostHeaderPages = 1000;                   // a picture takes many
constexpr int headerPackets = 3;
constexpr std::size_t identificationSize = 30, longestVendor = 256;

struct Page {
    bool isFirst = false;  // of its stream
    bool isLast = false;
    std::uint64_t granule = 0;
    std::uint32_t serial = 0;
    std::uint64_t headSize = 0, dataSize = 0;
    int packetsEnded = 0;

    [[nodiscard]] std::uint64_t size() const { return headSize + dataSize; }
};

std::optional<Page> parsePage(Bytes bytes) {
    ByteCursor cursor(bytes);
    if (bytes.size() < pageHeadSize || !cursor.takeIf({"OggS\0", 5})) return std::nullopt;
    const unsigned flags = *cursor.u8();
    const std::uint64_t granuleLow = *cursor.littleEndian(4);
    const std::uint64_t granuleHigh = *cursor.littleEndian(4);
    const std::uint32_t serial = *cursor.littleEndian(4);
    cursor.take(8);  // the page's number and checksum
    const auto sizes = cursor.take(*cursor.u8());
    if (!sizes || flags > 7) return std::nullopt;
    Page page;
    page.isFirst = (flags & 2U) != 0;
    page.isLast = (flags & 4U) != 0;
    page.granule = granuleHigh << 32U | granuleLow;
    page.serial = serial;
    page.headSize = pageHeadSize + sizes->size();
    for (const std::uint8_t size : *sizes) {
        page.dataSize += size;
        if (size < mostSegments) ++page.packetsEnded;
    }
    return page;
}

std::optional<Page> pageAt(File& file, SoundSpan span, std::uint64_t at) {
    const auto page = parsePage(file.view(at, pageHeadSize + mostSegments));
    return page && span.holds(at, page->size()) ? page : std::nullopt;
}

bool parseIdentification(Bytes bytes, StreamFacts& facts) {
    ByteCursor cursor(bytes);
    if (bytes.size() < identificationSize || !cursor.takeIf({"\1vorbis\0\0\0\0", 11})) return false;
    facts.channels = cursor.u8().value_or(0);
    facts.sampleRate = cursor.littleEndian(4).value_or(0);
    cursor.take(4);  // the largest bit rate
    const std::uint32_t bitrate = cursor.littleEndian(4).value_or(0);
    facts.usualBitrate = bitrate >> 31U == 0 ? bitrate : 0;
    return facts.channels > 0;
}

std::string parseVendor(Bytes bytes) {
    ByteCursor cursor(bytes);
    if (!cursor.takeIf("\3vorbis")) return {};
    const std::size_t size = cursor.littleEndian(4).value_or(0);
    const std::string_view text = textOf(cursor.rest().first(std::min(size, cursor.left())));
    const std::string_view head = utf8Head(text, longestVendor);
    return isValidUtf8(head) ? std::string(head) : std::string();
}

class OggReader {
 public:
    OggReader(File& file, SoundSpan span) : file_(file), span_(span), at_(span.begin) {}

    std::optional<StreamFacts> read() {
        if (!findVorbis() || !passHeaders()) return std::nullopt;
        facts_.timeScale = facts_.sampleRate;
        facts_.audioBytes = span_.end - at_;
        facts_.isCut = true;
        findLast(file_, {at_, span_.end}, "OggS", pageHeadSize + mostSegments,
                 [&](std::uint64_t at, Bytes bytes) {
                     const auto page = parsePage(bytes);
                     if (!page || page->serial != serial_ || page->granule == noGranule ||
                         !span_.holds(at, page->size())) {
                         return false;
                     }
                     facts_.length = page->granule;
                     facts_.isCut = !page->isLast;
                     return true;
                 });
        return facts_;
    }

 private:
    // Streams of other kinds may begin in front of ours.
    bool findVorbis() {
        for (int i = 0; i < mostStreams; ++i) {
            const auto page = pageAt(file_, span_, at_);
            if (!page || !page->isFirst) return false;
            const std::uint64_t data = at_ + page->headSize;
            at_ = data + page->dataSize;
            serial_ = page->serial;
            if (parseIdentification(file_.view(data, identificationSize), facts_)) return true;
        }
        return false;
    }

    // The sound begins on the page behind that on which the last header ends.
    bool passHeaders() {
        constexpr std::size_t vendorPlace = 11;
        int packets = 1;
        for (int i = 0; i < mostHeaderPages && packets < headerPackets; ++i) {
            const auto page = pageAt(file_, span_, at_);
            if (!page) return false;
            if (page->serial == serial_) {
                if (facts_.encoder.empty()) {
                    facts_.encoder = parseVendor(
                        file_.view(at_ + page->headSize, vendorPlace + longestVendor + 4));
                }
                packets += page->packetsEnded;
            }
            at_ += page->size();
        }
        return packets >= headerPackets;
    }

    File& file_;
    SoundSpan span_;
    std::uint64_t at_;
    std::uint32_t serial_ = 0;
    StreamFacts facts_;
};
}  // namespace

std::optional<StreamFacts> readOggVorbis(File& file, SoundSpan span) {
    return OggReader(file, span).read();
}

}  // namespace tavlo
