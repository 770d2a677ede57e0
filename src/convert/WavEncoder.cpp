#include "convert/WavEncoder.h"

#include <algorithm>

#include "platform/Environment.h"
#include "platform/FileSystem.h"
#include "platform/FileTransfer.h"
#include "platform/WindowsMedia.h"

namespace tavlo {

namespace {
constexpr std::string_view unprocessedSuffix = ".bak";

// Has the sound processed, and brings back afterwards what it was, or, where it is not wanted any
// more, lets it go. Of a source with losses, or for a lossless result, only a WAV is processed.
class ProcessedWav {
 public:
    ProcessedWav(const ConversionContext& context, const Conversion& row, const std::string& wav)
        : wav_(wav), keepsUnprocessed_(context.settings.keepsWavUnprocessed) {
        const ConversionTarget& target = context.settings.target;
        const bool isLossless = IsLosslessTarget(target.format, target.mode);
        const bool isWanted = row.type == FileType::Wave || (row.isLossless && !isLossless);
        // Somebody's own file of that name is not to be lost.
        if (!context.processWave || !isWanted || isTaken(unprocessed())) return;
        isProcessed_ = context.processWave(wav, isLossless) && isTaken(unprocessed());
    }
    ProcessedWav(const ProcessedWav&) = delete;
    ProcessedWav& operator=(const ProcessedWav&) = delete;
    ~ProcessedWav() {
        if (!isProcessed_) return;
        const bool goesBack = keepsUnprocessed_ || !isEncoded_;
        if (!goesBack || replaceByCopy(wav_, unprocessed())) removeEntry(unprocessed());
    }

    void setEncoded() { isEncoded_ = true; }

 private:
    [[nodiscard]] std::string unprocessed() const { return wav_ + std::string(unprocessedSuffix); }

    const std::string wav_;
    const bool keepsUnprocessed_;
    bool isProcessed_ = false;
    bool isEncoded_ = false;
};

struct StepText {
    FileTypes format;
    Text text;
};
constexpr auto stepTexts = std::to_array<StepText>({
    {FileType::Mp3, Text::EncodingMp3},
    {FileType::Ogg, Text::EncodingOgg},
    {FileType::Mpc, Text::EncodingMusepack},
    {FileType::Wma, Text::EncodingWma},
    {FileType::Mp4, Text::EncodingAac},
    {FileType::Flac, Text::EncodingFlac},
    {FileType::Wv, Text::EncodingWavPack},
    {FileType::Ape, Text::EncodingMonkey},
});

std::string withExtension(const std::string& path, std::string_view extension) {
    return path.substr(0, path.rfind('.')).append(extension);
}

bool isFilled(const std::string& path) {
    const auto info = fileInfo(path);
    return info && !info->isFolder && info->size > 0;
}
}  // namespace

std::string WavEncoder::workPath(const Conversion& row) {
    const std::string extension(outputExtension(context_.settings.target.format));
    const bool isNetworkOgg =
        context_.settings.target.format == FileType::Ogg && row.folder.starts_with(R"(\\)");
    if (isNetworkOgg || context_.isRemovable(row.folder)) return context_.work.newPath(extension);
    // Somebody else's run may have the same number in a shared folder.
    for (;;) {
        std::string path =
            joinPath(row.folder, context_.work.newName() + extension, nativePathStyle());
        if (!isTaken(path)) return path;
    }
}

std::optional<EncodeCommand> WavEncoder::commandFor(const Conversion& row, const std::string& wav,
                                                    const std::string& result) const {
    const ConversionSettings& settings = context_.settings;
    const EncodePaths paths{wav, result, std::string(baseNameOf(row.target, nativePathStyle()))};
    return encodeCommand(settings.target.format, settings.target.mode, paths, settings.encoders);
}

bool WavEncoder::isAvailable(const Conversion& row) const {
    const ConversionTarget& target = context_.settings.target;
    if (target.format == FileType::Wma) {
        if (context_.settings.encodesWindowsMedia && hasWindowsMedia()) return true;
        context_.error(Text::NoWindowsMedia);
        return false;
    }
    const auto command = commandFor(row, row.source, row.target);
    if (!command) {
        context_.error(Text::NoSuchMode, std::to_string(target.mode));
        return false;
    }
    if (context_.runner.hasTool(command->executable)) return true;
    tellStep(*command);
    context_.tellMissing(command->executable);
    return false;
}

std::optional<EncodedFile> WavEncoder::encode(const Conversion& row, const std::string& wav,
                                              const std::string& result) {
    ProcessedWav processed(context_, row, wav);
    const bool isWma = context_.settings.target.format == FileType::Wma;
    // Newer versions of WavPack's encoder put the result beside the WAV, whatever lies there.
    const bool namesItself = context_.settings.target.format == FileType::Wv;
    const PassingFile plain(namesItself ? context_.work.newPath(".wav") : "");
    const PassingFile beside(namesItself ? withExtension(plain.path(), ".wv") : "");
    if (namesItself && !linkOrCopy(wav, plain.path())) return std::nullopt;
    const auto command = commandFor(row, namesItself ? plain.path() : wav, result);
    const bool isRun = isWma ? encodeWma(wav, result) : command && run(*command, result);
    if (!isRun || context_.control.endsNow) return std::nullopt;
    const bool isBeside = namesItself && !fileInfo(result) && fileInfo(beside.path());
    if (isBeside && moveFile(beside.path(), result) == Transfer::Failed) {
        context_.error(Text::FileNotCreated, row.target);
        return std::nullopt;
    }
    auto record = readBack(wav, result);
    if (record) processed.setEncoded();
    if (record) return EncodedFile{std::move(*record), isWma ? "" : command->description};
    if (isWma) return std::nullopt;
    context_.tellOutput();
    const bool isNothing = row.step == ConversionStep::ReEncode && !fileInfo(result);
    context_.error(isNothing ? Text::ToolNotFound : Text::EncoderFailed, command->executable);
    return std::nullopt;
}

void WavEncoder::tellStep(const EncodeCommand& command) const {
    const ConversionTarget& target = context_.settings.target;
    const bool isAlac = target.format == FileType::Mp4 && target.mode == Alac;
    const auto* row = std::ranges::find(stepTexts, target.format, &StepText::format);
    context_.step(isAlac ? Text::EncodingAlac : row->text);
    const bool scales = target.format == FileType::Mp3 || target.format == FileType::Mpc;
    if (scales && context_.settings.encoders.reduceLevel) context_.step(Text::ReduceLevelMode);
    const bool isHidden =
        command.label.empty() || (context_.settings.isBeginner && target.format == FileType::Mp3);
    if (!isHidden) context_.log.AddLogLine(command.label);
}

bool WavEncoder::run(const EncodeCommand& command, const std::string& result) {
    tellStep(command);
    const std::string folder(folderOf(result, nativePathStyle()));
    if (!context_.run(command.line, folder)) {
        context_.tellMissing(command.executable);
        return false;
    }
    return !command.isRewrapped || (!context_.isCancelled() && rewrap(result));
}

bool WavEncoder::rewrap(const std::string& result) {
    const auto [extract, create] = rewrapCommands(result);
    const PassingFile stream(result + ".aac");
    context_.step(Text::OptimizingAac);
    const bool isExtracted = context_.runHidden(extract) && isFilled(stream.path());
    const bool isDone =
        isExtracted && removeEntry(result) && context_.runHidden(create) && isFilled(result);
    if (!isDone && !context_.control.endsNow) context_.tellMissing("mp4creator60.exe");
    return isDone;
}

// Profiles lie in a folder beside the program.
bool WavEncoder::encodeWma(const std::string& wav, const std::string& result) {
    context_.step(Text::EncodingWma);
    const std::string name(windowsMediaProfile(context_.settings.target.mode));
    const std::string folder = joinPath(programFolder(), "WMEProfiles", nativePathStyle());
    const std::string& program = context_.settings.encoders.program;
    const std::size_t blank = program.rfind(' ');
    const auto keepsWaiting = [this] { return !context_.control.endsNow; };
    return encodeWindowsMedia(wav, result, joinPath(folder, name + ".prx", nativePathStyle()),
                              program.substr(0, blank), program.substr(blank + 1),
                              keepsWaiting) == MediaEncode::Done;
}

std::optional<ID3tag> WavEncoder::readBack(const std::string& wav,
                                           const std::string& result) const {
    const auto source = readSound(wav, context_.ansi);
    auto record = readSound(result, context_.ansi);
    const bool isWhole = record && source && sameTime(record->Seconds, source->Seconds) &&
                         withoutLinks(result) == result;
    return isWhole ? std::move(record) : std::nullopt;
}

bool placeResult(const std::string& result, Conversion& row) {
    if (row.isOwnSource) return replaceByCopy(row.target, result);
    Transfer moved = moveFile(result, row.target);
    while (moved == Transfer::Exists && takeFreeName(row)) moved = moveFile(result, row.target);
    return moved == Transfer::Done || moved == Transfer::Copied;
}

}  // namespace tavlo
