#include "convert/Converter.h"

#include "core/QuietWork.h"
#include "platform/FileSystem.h"
#include "platform/FileTransfer.h"
#include "platform/RecycleBin.h"
#include "tags/AudioFile.h"
#include "tags/FieldEdits.h"
#include "tags/TagTransfer.h"
#include "tags/UpdateTags.h"
#include "tags/WaveFile.h"

namespace tavlo {

namespace {
// Whether the source is what it was when the plan was made.
bool isUnchanged(const Conversion& row) {
    const auto info = fileInfo(row.source);
    return info && !info->isFolder && info->size == row.size && info->modified == row.modified;
}
}  // namespace

ConversionResult Converter::convert(Conversion& row) {
    context_.step(Text::Processing, row.source);
    const bool isThere = fileInfo(row.source).has_value();
    if (!isThere || (row.step != ConversionStep::Fail && !isUnchanged(row))) {
        context_.error(isThere ? Text::SourceChanged : Text::SourceGone);
        return ConversionResult::Failed;
    }
    switch (row.step) {
        case ConversionStep::Encode:
            return EncodeWavFile(row);
        case ConversionStep::ReEncode:
            return ReEncodeFile(row);
        case ConversionStep::Decode:
            return decode(row);
        case ConversionStep::Copy:
        case ConversionStep::Skip:
            return keepSource(row, Text::CopiedDesired, Text::SkippedDesired);
        case ConversionStep::Done:
            context_.log.AddLogLine(context_.texts.get(Text::AlreadyDone), LogKind::Result);
            return ConversionResult::There;
        case ConversionStep::Fail:
            break;
    }
    context_.error(Text::FileNotRead, row.source);
    return ConversionResult::Failed;
}

bool Converter::prepareFolder(const Conversion& row) {
    if (createFolders(row.folder)) return true;
    context_.error(Text::FolderNotCreated, row.folder);
    return false;
}

ConversionResult Converter::EncodeWavFile(Conversion& row) {
    if (!prepareFolder(row)) return ConversionResult::Failed;
    const PassingFile result(encoder_.workPath(row));
    const bool isAvailable = encoder_.isAvailable(row);
    auto encoded = isAvailable ? encoder_.encode(row, row.source, result.path()) : std::nullopt;
    if (isStopped(encoded.has_value())) return ConversionResult::Cancelled;
    if (!encoded) {
        context_.error(Text::EncodingError);
        return ConversionResult::Failed;
    }
    const bool isPlaced = finish(row, result.path(), *encoded, context_.settings.deletesWaves);
    return isPlaced ? ConversionResult::Converted : ConversionResult::Failed;
}

// What was finished when somebody cancelled is kept.
bool Converter::isStopped(bool isFinished) const {
    return context_.control.endsNow || (context_.isCancelled() && !isFinished);
}

ConversionResult Converter::ReEncodeFile(Conversion& row) {
    if (!prepareFolder(row)) return ConversionResult::Failed;
    if (!encoder_.isAvailable(row)) return failReEncode(row);
    const PassingFile wav(context_.work.newPath(".wav"));
    const bool isDecoded = decodeWhole(row, wav.path());
    if (context_.isCancelled()) return ConversionResult::Cancelled;
    if (!isDecoded) return failReEncode(row);
    const PassingFile result(encoder_.workPath(row));
    auto encoded = encoder_.encode(row, wav.path(), result.path());
    if (isStopped(encoded.has_value())) return ConversionResult::Cancelled;
    if (!encoded) return failReEncode(row);
    context_.step(Text::FileBitrate, std::to_string(encoded->record.Bitrate));
    const bool isDiscarded = !context_.settings.bitrateRise && row.bitrate > 0 &&
                             row.type == context_.settings.target.format &&
                             savesTooLittle(row.bitrate, encoded->record.Bitrate);
    if (isDiscarded) return keepSource(row, Text::CopiedEncoded, Text::SkippedEncoded);
    const bool isPlaced = finish(row, result.path(), *encoded, context_.settings.deletesCompressed);
    return isPlaced ? ConversionResult::Converted : ConversionResult::Failed;
}

// A playing time that was guessed from one frame is counted first, for it tells whether all of the
// sound came out.
bool Converter::decodeWhole(Conversion& row, const std::string& wav) {
    if (row.isCut) {
        context_.error(Text::CorruptedFile);
        return false;
    }
    countTime(row);
    return decoder_.DecodeToWav(row, wav);
}

ConversionResult Converter::decode(Conversion& row) {
    if (!prepareFolder(row)) return ConversionResult::Failed;
    const PassingFile wav(context_.work.newPath(".wav"));
    const bool isDecoded = decodeWhole(row, wav.path());
    if (isStopped(isDecoded)) return ConversionResult::Cancelled;
    if (!isDecoded) return ConversionResult::Failed;
    if (placeResult(wav.path(), row)) return ConversionResult::Converted;
    context_.error(Text::FileNotCreated, row.target);
    return ConversionResult::Failed;
}

// The source is copied where its result was wanted, or left where it is.
ConversionResult Converter::keepSource(Conversion& row, Text copied, Text skipped) {
    const bool isThere = samePath(unchangedTarget(row), row.source);
    if (isThere) row.target = row.source;
    if (!isThere && !copySource(row)) return ConversionResult::Failed;
    context_.log.AddLogLine(context_.texts.get(isThere ? skipped : copied), LogKind::Result);
    return isThere ? ConversionResult::Skipped : ConversionResult::Copied;
}

bool Converter::copySource(Conversion& row) {
    if (!prepareFolder(row)) return false;
    Transfer copied = copyFile(row.source, row.target);
    while (copied == Transfer::Exists && takeFreeName(row)) {
        copied = copyFile(row.source, row.target);
    }
    if (copied == Transfer::Done) return true;
    context_.error(copied == Transfer::NotRead ? Text::FileNotRead : Text::FileNotCreated,
                   copied == Transfer::NotRead ? row.source : row.target);
    return false;
}

// A file of the same type is kept as it is; the failure stays one.
ConversionResult Converter::failReEncode(Conversion& row) {
    const bool isSameType = row.type == context_.settings.target.format;
    if (!isSameType) {
        context_.error(Text::SkippedError);
        return ConversionResult::Failed;
    }
    const ConversionResult kept = keepSource(row, Text::CopiedError, Text::SkippedError);
    return kept == ConversionResult::Copied ? kept : ConversionResult::Failed;
}

bool Converter::finish(Conversion& row, const std::string& result, const EncodedFile& encoded,
                       bool deletesSource) {
    const Carried carried =
        context_.settings.writesTags ? carryTags(row, result, encoded) : Carried::KnownFields;
    if (carried == Carried::NotWritten) {
        context_.log.AddErrorLine(context_.texts.get(Text::ReadWriteError) + " " + row.target);
        return false;
    }
    const bool hasAllTags = carried == Carried::Everything || holdsAllTags(row, result);
    if (row.isOwnSource && !mayReplace(row, result, hasAllTags)) return false;
    if (!placeResult(result, row)) {
        context_.error(Text::FileNotCreated, row.target);
        return false;
    }
    if (deletesSource && !row.isOwnSource) removeSource(row, hasAllTags);
    return true;
}

// A file gives way only to a result that is as long and has all its tags.
bool Converter::mayReplace(const Conversion& row, const std::string& result,
                           bool hasAllTags) const {
    if (!isUnchanged(row)) {
        context_.error(Text::SourceChanged);
        return false;
    }
    if (hasAllTags && isReadBack(row, result)) return true;
    context_.error(Text::NotReplaced);
    return false;
}

// --- Tags ----------------------------------------------------------------------------------------

Converter::Carried Converter::carryTags(const Conversion& row, const std::string& result,
                                        const EncodedFile& encoded) {
    const ConversionSettings& settings = context_.settings;
    ID3tag tags = ReadAudioFile(row.source, {context_.ansi, ReadDepth::Full});
    const bool isWave = row.type == FileType::Wave;
    bool hasDefaults = false;
    const auto fill = [&](std::string_view present, void (ID3tag::*set)(std::string_view),
                          const std::string& text) {
        if (!present.empty() || text.empty()) return;
        (tags.*set)(text);
        hasDefaults = true;
    };
    fill(tags.GetArtist(), &ID3tag::SetArtist, settings.artist);
    fill(tags.GetAlbum(), &ID3tag::SetAlbum, settings.album);
    fill(tags.GetYear(), &ID3tag::SetYear, settings.year);
    fill(tags.GetGenre(), &ID3tag::SetGenre, settings.genre);
    const bool isWritten = (settings.target.format & typesWithTags) != 0;
    if (!isWritten || (isWave && !hasDefaults)) return Carried::KnownFields;
    const PassingFile own(context_.work.newPath(std::string(outputExtension(row.type))));
    const bool carriesAll = row.type == settings.target.format && gatherTags(row, own.path());
    const std::string& tagged = carriesAll ? own.path() : result;
    ID3tag record = ReadAudioFile(tagged, {context_.ansi, ReadDepth::Full});
    record.FillFromID3(tags);
    if (!isWave) {
        context_.step(Text::UpdatingTags);
        record.ID3v2Ext.EncodingHistory = encoded.description + " (ReEncoded from " +
                                          std::string(fileTypeName(row.type)) + " " +
                                          std::to_string(row.bitrate) + "kbps )";
    }
    if (!writeTags(record)) return Carried::NotWritten;
    if (!carriesAll) return Carried::KnownFields;
    const bool isCopied = copyTags(tagged, result, context_.ansi, unflushedCalls());
    return isCopied ? Carried::Everything : Carried::NotWritten;
}

// Within a format nothing that its tags hold is lost. They are changed in a small file of their
// own, so that the result has to be written anew but once.
bool Converter::gatherTags(const Conversion& row, const std::string& path) const {
    const std::string noSound(1024, '\0');
    return writeFile(path, noSound, unflushedCalls()) == Transfer::Done &&
           copyTags(row.source, path, context_.ansi, unflushedCalls());
}

// Only a disk that refuses is a failure here; what else keeps a tag from being written is told.
bool Converter::writeTags(ID3tag& record) {
    KeptLines kept;
    ErrorReport errors(context_.texts, kept);
    NoProgress progress;
    TagSettings settings = context_.settings.tags;
    settings.force = true;  // the encoder's file was read back, and one for tags alone has no sound
    const TagUpdate done =
        UpdateTags(record, {context_.ansi, settings, errors, progress, unflushedCalls()});
    if (done != TagUpdate::Refused) return true;
    switch (record.Refused) {
        case Refusal::NotOpened:
        case Refusal::NotRead:
        case Refusal::NotCreated:
        case Refusal::NotWritten:
        case Refusal::Replaced:
        case Refusal::Torn:
            return false;
        default:
            for (const std::string& line : kept.lines) context_.log.AddErrorLine(line);
            return true;
    }
}

// Tells what the source's tags hold and the result's do not.
bool Converter::holdsAllTags(const Conversion& row, const std::string& result) const {
    const ReadContext whole{context_.ansi, ReadDepth::Full};
    const bool isWave = row.type == FileType::Wave;
    const bool isKnown =
        isWave ? waveContents(row.source).hasOnlySound : (row.type & typesWithTags) != 0;
    if (!isKnown) {
        context_.step(Text::TagsUnread);
        return false;
    }
    if (isWave) return true;
    std::vector<std::string> missing =
        tagsMissing(ReadAudioFile(row.source, whole), ReadAudioFile(result, whole));
    const bool hasOthers = !hasKnownTagsOnly(row.source, context_.ansi);
    if (hasOthers && (missing.empty() || missing.back() != "Others"))
        missing.emplace_back("Others");
    if (missing.empty()) return true;
    std::string names;
    for (const std::string& name : missing) names += (names.empty() ? "" : ", ") + name;
    if (context_.settings.writesTags) context_.step(Text::TagsStayBehind, names);
    return false;
}

// --- The source ----------------------------------------------------------------------------------

// WavPack keeps what makes it lossless in a second file, whose sound has its own place.
bool Converter::isReadBack(const Conversion& row, const std::string& result) const {
    const auto record = readSound(result, context_.ansi);
    return record && flushFile(result) && row.seconds > 0 &&
           sameTime(record->Seconds, row.seconds) && !fileInfo(correctionFile(row));
}

void Converter::removeSource(const Conversion& row, bool hasAllTags) {
    if (!hasAllTags) return context_.step(Text::SourceStaysForTags);
    if (!isUnchanged(row)) return context_.error(Text::SourceChanged);
    const auto info = fileInfo(row.source);
    const bool isFree = info && !info->isReadOnly && withoutLinks(row.source) == row.source;
    if (!isFree) return context_.step(Text::SourceIsKept);
    if (!isReadBack(row, row.target)) return context_.step(Text::SourceStays);
    const bool isGone =
        context_.settings.usesRecycleBin ? moveToRecycleBin(row.source) : removeFile(row.source);
    if (!isGone) context_.error(Text::SourceNotRemoved, row.source);
}

}  // namespace tavlo
