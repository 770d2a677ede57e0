#include "cd/DiscJob.h"

#include "core/JsonLine.h"
#include "core/Numbers.h"
#include "platform/PlainText.h"

namespace tavlo {

namespace {
// "04:03.12": minutes, seconds, frames.
std::string timeText(int frames) {
    const int seconds = frames / framesPerSecond;
    return paddedNumber(seconds / secondsPerMinute, 2) + ":" +
           paddedNumber(seconds % secondsPerMinute, 2) + "." +
           paddedNumber(frames % framesPerSecond, 2);
}

// "Artist - Title" of a track, or of the album as track 0.
std::string nameOf(const CdText& text, int track) {
    const auto at = static_cast<std::size_t>(track);
    const std::string& artist = text.artists[at];
    const std::string& title = text.titles[at];
    return artist + (artist.empty() || title.empty() ? "" : " - ") + title;
}

std::string textOf(const Texts& texts, const DiscContents& disc) {
    std::string lines =
        disc.toc.text() + "\n" + texts.get(Text::DiscIdLine, disc.toc.discId()) + "\n";
    if (const std::string album = nameOf(disc.text, 0); !album.empty()) {
        lines += withoutControls(album) + "\n";
    }
    for (const DiscTrack& track : disc.toc.tracks) {
        const std::string name = nameOf(disc.text, track.number);
        lines += withoutControls(paddedNumber(track.number, 2) + "  " + timeText(track.start) +
                                 "  " + timeText(track.length) + "  " +
                                 texts.get(track.isAudio ? Text::AudioWord : Text::DataWord) +
                                 (name.empty() ? "" : "  ") + name) +
                 "\n";
    }
    return lines;
}

void addNames(JsonLine& line, const CdText& text, int track) {
    const auto at = static_cast<std::size_t>(track);
    line.add("Artist", text.artists[at]);
    line.add("Title", text.titles[at]);
}

std::string jsonOf(const std::string& drive, const DiscContents& disc) {
    JsonLine line;
    line.addName("Drive", drive);
    line.add("Toc", disc.toc.text());
    line.add("DiscId", disc.toc.discId());
    addNames(line, disc.text, 0);
    line.beginArray("Tracks");
    for (const DiscTrack& track : disc.toc.tracks) {
        line.beginObject();
        line.addNumber("Number", static_cast<std::size_t>(track.number));
        line.add("Start", timeText(track.start));
        line.add("Length", timeText(track.length));
        line.addFlag("IsAudio", track.isAudio);
        addNames(line, disc.text, track.number);
        line.endObject();
    }
    line.endArray();
    return line.finish();
}

Text failureOf(CdAnswer answer) {
    switch (answer) {
        case CdAnswer::Done:
            return Text::NoAudioTracks;
        case CdAnswer::NotAvailable:
        case CdAnswer::NoDrive:
            return Text::NoCdDrive;
        case CdAnswer::OtherDevice:
            return Text::NotACdDrive;
        case CdAnswer::NoRights:
            return Text::NoRightsToDrive;
        case CdAnswer::NoDisc:
            return Text::NoDisc;
        case CdAnswer::Attention:
        case CdAnswer::TimedOut:
        case CdAnswer::Failed:
            break;
    }
    return Text::DiscNotRead;
}
}  // namespace

std::optional<std::string> wantedDrive(const JobOptions& options) {
    const bool isOne = options.paths.size() <= 1 && options.folder;
    const bool isDrive = isOne && driveSort(*options.folder) != DriveSort::None;
    return isDrive ? options.folder : std::nullopt;
}

int printDisc(Services& services, const std::string& drive, const DiscContents& disc) {
    if (disc.toc.text().empty()) {
        services.errors.report(failureOf(disc.answer), drive);
        return services.errors.exitCode();
    }
    const std::string text =
        services.options.json ? jsonOf(drive, disc) : textOf(services.texts, disc);
    if (!services.output.write(text)) services.errors.report(Text::OutputNotWritten);
    return services.errors.exitCode();
}

}  // namespace tavlo
