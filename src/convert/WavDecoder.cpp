#include "convert/WavDecoder.h"

#include <algorithm>

#include "platform/FileSystem.h"
#include "platform/FileTransfer.h"
#include "tags/WaveFile.h"

namespace tavlo {

namespace {
struct DecoderRow {
    FileTypes format;
    bool isLossless;
    Text step;
    std::array<int, 2> alternatives;  // the second is -1 where there is none
};
constexpr int alacDecoder = 2;

constexpr auto decoders = std::to_array<DecoderRow>({
    {FileType::Mp3, false, Text::DecodingMp3, {0, -1}},
    {FileType::Ogg, false, Text::DecodingOgg, {0, -1}},
    {FileType::Mpc, false, Text::DecodingMusepack, {0, -1}},
    {FileType::Mp4, true, Text::DecodingAlac, {alacDecoder, -1}},
    {FileType::Mp4, false, Text::DecodingAac, {0, 1}},
    {FileType::Aac, false, Text::DecodingAac, {0, 1}},
    {FileType::Wma, false, Text::DecodingWma, {0, 1}},
    {FileType::Flac, false, Text::DecodingFlac, {0, -1}},
    {FileType::Wv, false, Text::DecodingWavPack, {0, -1}},
    {FileType::Ape, false, Text::DecodingMonkey, {0, -1}},
});

const DecoderRow* findDecoder(const Conversion& row) {
    const auto* found = std::ranges::find_if(decoders, [&](const DecoderRow& decoder) {
        return decoder.format == row.type &&
               (row.type != FileType::Mp4 || decoder.isLossless == row.isLossless);
    });
    return found == decoders.end() ? nullptr : found;
}
}  // namespace

bool WavDecoder::DecodeToWav(const Conversion& row, const std::string& wav) {
    const DecoderRow* decoder = findDecoder(row);
    if (decoder == nullptr) {
        context_.error(Text::NoDecoder, row.source);
        return false;
    }
    context_.step(decoder->step);
    std::string missing;
    for (const int alternative : decoder->alternatives) {
        if (alternative < 0 || context_.isCancelled()) break;
        const Attempt attempt = tryDecoder(row, wav, alternative);
        if (attempt.isDone) return true;
        if (attempt.isCorrupted) return false;
        if (attempt.wasStarted) {
            missing.clear();
            context_.tellOutput();
            context_.error(Text::DecoderFailed, attempt.executable);
        } else if (missing.empty()) {
            missing = attempt.executable;
        }
    }
    if (!missing.empty()) context_.tellMissing(missing);
    return false;
}

WavDecoder::Attempt WavDecoder::tryDecoder(const Conversion& row, const std::string& wav,
                                           int alternative) {
    Attempt attempt;
    // Some decoders, or their newer versions, name their output themselves, after a plain name that
    // is made for them; beside the source it could take another file's place.
    constexpr FileTypes selfNaming = FileType::Mp3 | FileType::Ogg | FileType::Wv;
    const bool namesItself = (row.type & selfNaming) != 0;
    const bool isCopied = namesItself || !isPlainForPrograms(row.source);
    const std::string extension(outputExtension(row.type));
    const PassingFile copy(isCopied ? context_.work.newPath(extension) : "");
    if (isCopied && !linkOrCopy(row.source, copy.path())) {
        context_.error(Text::FileNotRead, row.source);
        return attempt;
    }
    const PassingFile correction(row.type == FileType::Wv ? copy.path() + "c" : "");
    const std::string ownCorrection = correctionFile(row);
    if (!ownCorrection.empty() && fileInfo(ownCorrection)) {
        linkOrCopy(ownCorrection, correction.path());
    }
    const auto command = decodeCommand(row.type, isCopied ? copy.path() : row.source, wav,
                                       context_.settings.encoders, alternative);
    attempt.executable = command->executable;
    attempt.wasStarted = context_.run(command->line, std::string(folderOf(wav, nativePathStyle())));
    if (!attempt.wasStarted) return attempt;
    if (namesItself) takeNamed(copy.path(), wav);
    judge(row, wav, attempt);
    if (!attempt.isDone) removeEntry(wav);
    return attempt;
}

// "song.mp3" becomes "song.mp3.wav" or, by newer versions, "song.wav".
void WavDecoder::takeNamed(const std::string& copy, const std::string& wav) {
    if (fileInfo(wav)) return;
    const PassingFile behind(copy + ".wav");
    const PassingFile instead(copy.substr(0, copy.rfind('.')) + ".wav");
    if (moveFile(behind.path(), wav) != Transfer::Done) moveFile(instead.path(), wav);
}

// A WAV that is shorter than its source says lacks some of the sound: the decoder broke off, or the
// source is damaged. One that does not hold what it promises was broken off in any case.
void WavDecoder::judge(const Conversion& row, const std::string& wav, Attempt& attempt) const {
    const auto sound = readSound(wav, context_.ansi);
    if (!sound) return;
    const bool isAsLong = row.seconds > 0 && sameTime(sound->Seconds, row.seconds);
    const bool isCutShort = !isAsLong && sound->Seconds < row.seconds;
    const bool isBrokenOff = !isAsLong && !waveContents(wav).isWhole;
    attempt.isCorrupted = isCutShort || isBrokenOff;
    attempt.isDone = !attempt.isCorrupted;
    if (!attempt.isCorrupted) return;
    context_.tellOutput();
    context_.error(Text::CorruptedFile);
}

}  // namespace tavlo
