#include "convert/Converter.h"

#include "collection/RenamePlan.h"
#include "collection/TagColumns.h"
#include "platform/FileSystem.h"
#include "platform/FileTransfer.h"
#include "platform/RecycleBin.h"
#include "tags/AudioFile.h"
#include "tags/TagTransfer.h"
#include "tags/UpdateTags.h"

namespace tavlo {

namespace {
constexpr FileTypes typesWithTags = FileType::Mp3 | FileType::Ape2Only;

// What one file's tag writers report goes into its log.
class LogSink final : public TextSink {
 public:
    explicit LogSink(MonitorLog& log) : log_(log) {}
    bool write(std::string_view text) override {
        while (text.ends_with('\n')) text.remove_suffix(1);
        log_.AddErrorLine(std::string(text));
        return true;
    }

 private:
    MonitorLog& log_;
};

class NoProgress final : public Progress {
 public:
    void setRange(std::size_t) override {}
    void step() override {}
    void report(std::string_view) override {}
    void pumpMessages() override {}
};

std::string nameOrFailure(ConversionResult result, const Conversion& row) {
    const bool hasNone =
        result == ConversionResult::Failed || result == ConversionResult::Cancelled;
    return hasNone ? "#" : std::string(fileNameOf(row.target, nativePathStyle()));
}
}  // namespace

ConversionResult Converter::convert(Conversion& row) {
    context_.step(Text::Processing, row.source);
    const auto source = fileInfo(row.source);
    if (!source || source->isFolder) {
        context_.error(Text::SourceGone);
        return ConversionResult::Failed;
    }
    if (row.isOwnSource && source->isReadOnly) {
        context_.error(Text::FileNotOpenedForWriting, row.source);
        return ConversionResult::Failed;
    }
    switch (row.step) {
        case ConversionStep::Encode:
            return encodeWave(row);
        case ConversionStep::ReEncode:
            return reEncode(row);
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
    context_.error(Text::FileNotCreated, row.target);
    return ConversionResult::Failed;
}

std::string Converter::EncodeWavFile(Conversion& row) {
    return nameOrFailure(encodeWave(row), row);
}

std::string Converter::ReEncodeFile(Conversion& row) {
    return nameOrFailure(reEncode(row), row);
}

bool Converter::prepareFolder(const Conversion& row) {
    if (createFolders(row.folder)) return true;
    context_.error(Text::FolderNotCreated, row.folder);
    return false;
}

ConversionResult Converter::encodeWave(Conversion& row) {
    if (!prepareFolder(row)) return ConversionResult::Failed;
    tagsStayBehind_ = false;
    const PassingFile result(encoder_.workPath(row));
    const bool isAvailable = encoder_.isAvailable(row);
    auto encoded = isAvailable ? encoder_.encode(row, row.source, result.path()) : std::nullopt;
    if (context_.control.endsNow) return ConversionResult::Cancelled;
    if (!encoded) {
        context_.error(Text::EncodingError);
        return ConversionResult::Failed;
    }
    if (!finish(row, result.path(), *encoded)) return ConversionResult::Failed;
    removeSource(row, context_.settings.deletesWaves);
    return ConversionResult::Converted;
}

ConversionResult Converter::reEncode(Conversion& row) {
    if (!prepareFolder(row)) return ConversionResult::Failed;
    tagsStayBehind_ = false;
    if (!encoder_.isAvailable(row)) return failReEncode(row);
    const PassingFile wav(context_.work.newPath(".wav"));
    const bool isDecoded = decoder_.DecodeToWav(row, wav.path());
    if (context_.isCancelled()) return ConversionResult::Cancelled;
    if (!isDecoded) return failReEncode(row);
    const PassingFile result(encoder_.workPath(row));
    auto encoded = encoder_.encode(row, wav.path(), result.path());
    if (context_.control.endsNow) return ConversionResult::Cancelled;
    if (!encoded) return failReEncode(row);
    context_.step(Text::FileBitrate, std::to_string(encoded->record.Bitrate));
    const bool isDiscarded = !context_.settings.bitrateRise && row.bitrate > 0 &&
                             row.type == context_.settings.target.format &&
                             savesTooLittle(row.bitrate, encoded->record.Bitrate);
    if (isDiscarded) return keepSource(row, Text::CopiedEncoded, Text::SkippedEncoded);
    if (!finish(row, result.path(), *encoded)) return ConversionResult::Failed;
    removeSource(row, context_.settings.deletesCompressed);
    return ConversionResult::Converted;
}

ConversionResult Converter::decode(Conversion& row) {
    if (!prepareFolder(row)) return ConversionResult::Failed;
    const PassingFile wav(context_.work.newPath(".wav"));
    const bool isDecoded = decoder_.DecodeToWav(row, wav.path());
    if (context_.control.endsNow) return ConversionResult::Cancelled;
    if (!isDecoded) return ConversionResult::Failed;
    if (encoder_.place(wav.path(), row)) return ConversionResult::Converted;
    context_.error(Text::FileNotCreated, row.target);
    return ConversionResult::Failed;
}

// The source is copied where its result was wanted, or left where it is.
ConversionResult Converter::keepSource(Conversion& row, Text copied, Text skipped) {
    const std::string wanted =
        joinPath(row.folder, fileNameOf(row.source, nativePathStyle()), nativePathStyle());
    const bool isThere = samePath(wanted, row.source);
    if (isThere) {
        row.target = row.source;
    } else if (row.step != ConversionStep::Copy) {
        row.target = wanted;
    }
    if (!isThere && !copySource(row)) return ConversionResult::Failed;
    context_.log.AddLogLine(context_.texts.get(isThere ? skipped : copied), LogKind::Result);
    return isThere ? ConversionResult::Skipped : ConversionResult::Copied;
}

bool Converter::copySource(Conversion& row) {
    const auto isFree = [](std::string_view path) { return !fileInfo(std::string(path)); };
    Transfer copied = Transfer::Exists;
    while (prepareFolder(row) && copied == Transfer::Exists) {
        row.target = freePath(row.target, nativePathStyle(), isFree);
        copied = row.target.empty() ? Transfer::Failed : copyFile(row.source, row.target);
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

bool Converter::finish(Conversion& row, const std::string& result, EncodedFile& encoded) {
    if (context_.settings.writesTags && !carryTags(row, result, encoded)) {
        context_.error(Text::ReadWriteError);
        context_.error(Text::FileNotWritten, row.target);
        return false;
    }
    if (encoder_.place(result, row)) return true;
    context_.error(Text::FileNotCreated, row.target);
    return false;
}

// --- Tags ----------------------------------------------------------------------------------------

bool Converter::carryTags(const Conversion& row, const std::string& result, EncodedFile& encoded) {
    const ConversionSettings& settings = context_.settings;
    ID3tag tags = ReadAudioFile(row.source, {context_.ansi, ReadDepth::Full});
    const bool isWave = row.type == FileType::Wave;
    if (!isWave && (row.type & typesWithTags) == 0) {
        context_.step(Text::TagsUnread);
        tagsStayBehind_ = true;
    }
    if (tags.GetArtist().empty()) tags.SetArtist(settings.artist);
    if (tags.GetAlbum().empty()) tags.SetAlbum(settings.album);
    if (tags.GetYear().empty()) tags.SetYear(settings.year);
    if (tags.GetGenre().empty()) tags.SetGenre(settings.genre);
    if ((settings.target.format & typesWithTags) == 0) {
        tellTagsLeft(tags);
        return true;
    }
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
    const bool isWritten = writeTags(record);
    return isWritten && (!carriesAll || copyTags(tagged, result, context_.ansi, unflushedCalls()));
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
    LogSink sink(context_.log);
    ErrorReport errors(context_.texts, sink);
    NoProgress progress;
    const TagUpdate done = UpdateTags(
        record, {context_.ansi, context_.settings.tags, errors, progress, unflushedCalls()});
    if (done != TagUpdate::Refused) return true;
    tagsStayBehind_ = true;
    switch (record.Refused) {
        case Refusal::NotOpened:
        case Refusal::NotRead:
        case Refusal::NotCreated:
        case Refusal::NotWritten:
            return false;
        default:
            return true;
    }
}

void Converter::tellTagsLeft(const ID3tag& tags) {
    std::string names;
    for (const TagColumn& column : tagColumns()) {
        const std::string text = column.get(tags);
        if (text.empty() || text == "0") continue;
        names += (names.empty() ? "" : ", ") + context_.texts.get(column.caption);
    }
    if (names.empty()) return;
    context_.step(Text::TagsStayBehind, names);
    tagsStayBehind_ = true;
}

// --- The source ----------------------------------------------------------------------------------

bool Converter::isReadBack(const Conversion& row) const {
    const auto record = readSound(row.target, context_.ansi);
    return record && flushFile(row.target) && row.seconds > 0 &&
           sameTime(record->Seconds, row.seconds);
}

void Converter::removeSource(const Conversion& row, bool isWanted) {
    if (!isWanted || row.isOwnSource) return;
    if (tagsStayBehind_) return context_.step(Text::SourceStaysForTags);
    if (!isReadBack(row)) return context_.step(Text::SourceStays);
    const bool isGone =
        context_.settings.usesRecycleBin ? moveToRecycleBin(row.source) : removeFile(row.source);
    if (!isGone) context_.error(Text::SourceNotRemoved, row.source);
}

}  // namespace tavlo
