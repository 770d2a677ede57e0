#include "cd/CDDB.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>
#include <vector>

#include "platform/PlainText.h"
#include "platform/TimedCall.h"

namespace tavlo {

namespace {
// "D:\\" and "D: (a drive)" are "D:"; a device's path stays.
std::string driveName(std::string_view drive) {
    drive = trimBlanks(drive);
    const char first = drive.empty() ? '\0' : lowerAscii(drive.front());
    const bool isLetter = first >= 'a' && first <= 'z' && (drive.size() == 1 || drive[1] == ':');
    return isLetter ? std::string(drive.substr(0, 1)) + ":" : std::string(drive);
}

// Of what several readers met, what a person can do something about counts most, but for a drive
// that hangs: nobody should ask that one again.
int weight(CdAnswer answer) {
    constexpr std::array order{CdAnswer::NotAvailable, CdAnswer::NoDrive, CdAnswer::Failed,
                               CdAnswer::NoRights,     CdAnswer::NoDisc,  CdAnswer::TimedOut,
                               CdAnswer::Done};
    return static_cast<int>(std::ranges::find(order, answer) - order.begin());
}

// What a thread works on that may be given up.
struct Request {
    std::shared_ptr<CdTransport> transport;
    std::optional<std::string> drive;  // none where it is open
    CdCommand command;
    std::vector<std::uint8_t> data;
    CdAnswer answer = CdAnswer::Done;
};

// A new disc, or a reset by another program, is told once, in place of the first answer.
void perform(Request& request) {
    if (request.drive) request.answer = request.transport->open(*request.drive);
    if (request.answer != CdAnswer::Done) return;
    request.answer = request.transport->send(request.command, request.data);
    if (request.answer != CdAnswer::Attention) return;
    request.answer = request.transport->send(request.command, request.data);
    if (request.answer == CdAnswer::Attention) request.answer = CdAnswer::Failed;
}

// What the multimedia interface tells; it wants all its calls to come from one thread.
struct TracksRequest {
    std::shared_ptr<CdTracks> tracks;
    std::string drive;
    int first = 1;
    std::vector<CdTrackInfo> found = {};
    CdAnswer answer = CdAnswer::Failed;
};

CdAnswer readTracks(TracksRequest& request) {
    constexpr int mostTracks = 99;
    const int count = request.tracks->count();
    request.first = request.tracks->first();
    const int last = request.first + count - 1;
    if (count < 1 || request.first < 1 || last > mostTracks) return CdAnswer::Failed;
    for (int number = request.first; number <= last; ++number) {
        const auto track = request.tracks->track(number);
        if (!track) return CdAnswer::Failed;
        request.found.push_back(*track);
    }
    return CdAnswer::Done;
}

void perform(TracksRequest& request) {
    request.answer = request.tracks->open(request.drive);
    if (request.answer == CdAnswer::Done) request.answer = readTracks(request);
    request.tracks->close();
}

// Nothing where a track would have no length.
std::optional<DiscToc> tocOf(const TracksRequest& request) {
    DiscToc toc;
    for (const CdTrackInfo& track : request.found) {
        const int start = frameAddress(track.minute, track.second, track.frame);
        if (!toc.tracks.empty()) toc.tracks.back().length = start - toc.tracks.back().start;
        // One frame more, for the length that is told is one too small.
        const int number = request.first + static_cast<int>(toc.tracks.size());
        toc.tracks.push_back({number, start, track.length + 1, track.isAudio});
        toc.leadOut = start + track.length + 1;
    }
    const auto isNothing = [](const DiscTrack& track) { return track.length <= 0; };
    if (std::ranges::any_of(toc.tracks, isNothing)) return std::nullopt;
    toc.takeGapOff();
    return toc;
}
}  // namespace

// Opening the drive and the first command share one limit.
CdAnswer ScsiReader::read(TocFormat format, const std::optional<std::string>& drive,
                          std::string& bytes) {
    const std::size_t size = format == TocFormat::Toc ? tocSize : cdTextSize;
    const auto request = std::make_shared<Request>(
        Request{transport_, drive, readTocCommand(format, size), std::vector<std::uint8_t>(size)});
    if (!ask([request] { perform(*request); })) return CdAnswer::TimedOut;
    // How much came, the answer says itself; drivers are often wrong about it.
    bytes = textOf(Bytes(request->data));
    return request->answer;
}

bool ScsiReader::ask(std::function<void()> work) {
    if (transport_ && !doneWithin(limit_, std::move(work))) transport_.reset();
    return transport_ != nullptr;
}

bool ScsiReader::InitMediaTOC(const std::string& drive) {
    toc_ = {};
    text_ = {};
    std::string bytes;
    answer_ = read(TocFormat::Toc, drive, bytes);
    if (answer_ == CdAnswer::Done) {
        const auto toc = parseToc(bytesOfText(bytes));
        if (toc) toc_ = *toc;
        if (!toc) answer_ = CdAnswer::Failed;
        const bool hasText =
            !GetTOC().empty() && read(TocFormat::CdText, std::nullopt, bytes) == CdAnswer::Done;
        if (hasText) {
            const auto first = static_cast<std::size_t>(toc_.tracks.front().number);
            text_ = parseCdText(bytesOfText(bytes), first);
        }
    }
    ask([transport = transport_] { transport->close(); });
    return !GetTOC().empty();
}

bool CDDB_MCI::InitMediaTOC(const std::string& drive) {
    toc_ = {};
    answer_ = CdAnswer::TimedOut;
    const auto request = std::make_shared<TracksRequest>(TracksRequest{tracks_, drive});
    if (!tracks_ || !doneWithin(limit_, [request] { perform(*request); })) {
        tracks_.reset();
        return false;
    }
    answer_ = request->answer;
    if (answer_ != CdAnswer::Done) return false;
    const auto toc = tocOf(*request);
    if (toc) toc_ = *toc;
    if (!toc) answer_ = CdAnswer::Failed;
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
        // A disc without audio tracks has none for the others either, and a drive that hangs does
        // so for all.
        const CdAnswer answer = reader->answer();
        if (isRead || answer == CdAnswer::Done || answer == CdAnswer::TimedOut) break;
    }
    return contents;
}

DiscContents ReadDisc(std::string_view drive, TocMethod method) {
    if (driveSort(driveName(drive)) == DriveSort::OtherDevice) {
        return {{}, {}, CdAnswer::OtherDevice};
    }
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
