#include "cd/CDDB.h"

#include <algorithm>
#include <vector>

#include "platform/PlainText.h"

namespace tavlo {

namespace {
// "D:\\" and "D: (a drive)" are "D:"; a device's path stays.
std::string driveName(std::string_view drive) {
    drive = trimBlanks(drive);
    const char first = drive.empty() ? '\0' : lowerAscii(drive.front());
    const bool isLetter = first >= 'a' && first <= 'z' && (drive.size() == 1 || drive[1] == ':');
    return isLetter ? std::string(drive.substr(0, 1)) + ":" : std::string(drive);
}

// Of what several readers met, what a person can do something about counts most.
int weight(CdAnswer answer) {
    constexpr std::array order{CdAnswer::NotAvailable, CdAnswer::NoDrive, CdAnswer::Failed,
                               CdAnswer::NoRights,     CdAnswer::NoDisc,  CdAnswer::Done};
    return static_cast<int>(std::ranges::find(order, answer) - order.begin());
}
}  // namespace

// How much came, the answer says itself; drivers are often wrong about it.
CdAnswer ScsiReader::read(TocFormat format, std::size_t allocation, std::string& answer) {
    std::vector<std::uint8_t> data(allocation);
    const CdAnswer result = transport_->send(readTocCommand(format, allocation), data);
    answer = textOf(Bytes(data));
    return result;
}

bool ScsiReader::InitMediaTOC(const std::string& drive) {
    toc_ = {};
    text_ = {};
    std::string answer;
    answer_ = transport_->open(drive);
    if (answer_ == CdAnswer::Done) answer_ = read(TocFormat::Toc, tocSize, answer);
    if (answer_ == CdAnswer::Done) {
        const auto toc = parseToc(bytesOfText(answer));
        if (toc) toc_ = *toc;
        if (!toc) answer_ = CdAnswer::Failed;
        const bool hasText =
            !GetTOC().empty() && read(TocFormat::CdText, cdTextSize, answer) == CdAnswer::Done;
        if (hasText) {
            const auto first = static_cast<std::size_t>(toc_.tracks.front().number);
            text_ = parseCdText(bytesOfText(answer), first);
        }
    }
    transport_->close();
    return !GetTOC().empty();
}

bool CDDB_MCI::InitMediaTOC(const std::string& drive) {
    constexpr int mostTracks = 99;
    toc_ = {};
    answer_ = tracks_->open(drive);
    const int count = answer_ == CdAnswer::Done ? tracks_->count() : 0;
    if (answer_ == CdAnswer::Done && (count < 1 || count > mostTracks)) answer_ = CdAnswer::Failed;
    for (int number = 1; number <= count && count <= mostTracks; ++number) {
        const auto track = tracks_->track(number);
        if (!track) {
            toc_ = {};
            answer_ = CdAnswer::Failed;
            break;
        }
        const int start = frameAddress(track->minute, track->second, track->frame);
        if (!toc_.tracks.empty()) toc_.tracks.back().length = start - toc_.tracks.back().start;
        // One frame more, for the length that is told is one too small.
        toc_.tracks.push_back({number, start, track->length + 1, track->isAudio});
        toc_.leadOut = start + track->length + 1;
    }
    tracks_->close();
    toc_.takeGapOff();
    return !GetTOC().empty();
}

DiscContents readDiscBy(std::string_view drive, std::span<DiscReader* const> readers) {
    DiscContents contents;
    const std::string name = driveName(drive);
    for (DiscReader* reader : readers) {
        const bool isRead = reader->InitMediaTOC(name);
        if (isRead || weight(reader->answer()) > weight(contents.answer)) {
            contents = {reader->toc(), reader->GetTEXT(), reader->answer()};
        }
        // A disc that was read and has no audio tracks has none for the others either.
        if (isRead || reader->answer() == CdAnswer::Done) break;
    }
    return contents;
}

DiscContents ReadDisc(std::string_view drive, TocMethod method) {
    CDDB_SPTI spti;
    CDDB_ASPI aspi;
    CDDB_MCI mci;
    const std::array<DiscReader*, 3> all{&spti, &aspi, &mci};
    const std::span<DiscReader* const> readers(all);
    return readDiscBy(drive, method == TocMethod::All
                                 ? readers
                                 : readers.subspan(static_cast<std::size_t>(method) - 1, 1));
}

std::string ReadDiscToc(std::string_view drive, TocMethod method) {
    return ReadDisc(drive, method).toc.text();
}

}  // namespace tavlo
