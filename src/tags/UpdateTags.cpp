#include "tags/UpdateTags.h"

#include <algorithm>
#include <chrono>
#include <thread>

#include "core/ByteCursor.h"
#include "platform/FileSystem.h"
#include "platform/PlainText.h"
#include "tags/APEv2.h"
#include "tags/AudioFile.h"
#include "tags/FieldEdits.h"
#include "tags/FileRewriter.h"
#include "tags/ForeseenTags.h"
#include "tags/ID3v1.h"
#include "tags/ID3v2.h"
#include "tags/ID3v2Frame.h"
#include "tags/ID3v2Writer.h"
#include "tags/SongCheck.h"

namespace tavlo {

namespace {
// --- Opening -------------------------------------------------------------------------------------

bool openWritable(File& file, const std::string& path) {
    const bool opened = file.open(path, Access::ReadWrite) ||
                        (file.calls().clearReadOnly(path) && file.open(path, Access::ReadWrite));
    if (opened && file.isReadOnly()) file.calls().clearReadOnly(path);
    return opened;
}

// A player or a virus scanner may hold the file for a moment.
bool openPatiently(File& file, const std::string& path, Progress& progress) {
    constexpr std::chrono::milliseconds patience{500};
    if (openWritable(file, path)) return true;
    if (!fileInfo(path)) return false;  // it will not come back
    progress.pumpMessages();
    std::this_thread::sleep_for(patience);
    progress.pumpMessages();
    return openWritable(file, path);
}

bool openFor(File& file, const std::string& path, const WriteContext& context) {
    return context.dryRun ? file.open(path, Access::Read)
                          : openPatiently(file, path, context.progress);
}

// --- What is to be written -----------------------------------------------------------------------

// A block that begins inside another tag is none.
void dropFalseBlock(TagLayout& layout, ID3tag& record) {
    for (const auto& other : {layout.ape, layout.lyrics}) {
        if (!other || !layout.id3v1 || layout.id3v1->begin >= other->end) continue;
        layout.id3v1.reset();
        record.IsID3v1Present = false;
    }
}

// The reason why a damaged tag is not written.
Refusal damageOf(const ID3tag& record) {
    constexpr int oldest = 2, newest = 4;
    const int version = record.ID3v2Ext.MajorVersion;
    const bool isUnknown = version != 0 && (version < oldest || version > newest);
    return isUnknown ? Refusal::UnknownVersion : Refusal::Damaged;
}

// A file's tags as they are, and as they are to become.
class TagPlan {
 public:
    TagPlan(File& file, ID3tag& record, const TagLayout& layout, const WriteContext& context)
        : file_(file), record_(record), layout_(layout), context_(context) {
        dropFalseBlock(layout_, record_);
        ends_.tailBegin = file.size();
    }

    Refusal make() {
        refusal_ = expectedRefusal(record_, context_.settings);
        if (record_.ID3v2Ext.bDamaged) return refusal_;
        if (record_.FileType == FileType::Mp3) {
            if (refusal_ == Refusal::NoID3v2Tag && !context_.settings.ape2) return refusal_;
            if (refusal_ != Refusal::NoID3v2Tag && !planHead()) return Refusal::TooLarge;
            if (wouldHideApe() && refusal_ == Refusal::None) refusal_ = Refusal::NoID3v1Tag;
            planTail(context_.settings.ape2, blockBytes());
        } else {
            ends_.headEnd = tagsEnd();
            planTail(true, {});
        }
        // Of tags that overlap one is not what it seems.
        return ends_.headEnd > ends_.tailBegin ? Refusal::Damaged : refusal_;
    }

    [[nodiscard]] const NewEnds& ends() const { return ends_; }

    // Whether a tag that is not written stays, and may tell what fields were before.
    [[nodiscard]] bool mayHideEdits() const {
        const bool isMp3 = record_.FileType == FileType::Mp3;
        return isMp3 && (layout_.lyrics || (layout_.ape && !context_.settings.ape2));
    }

    // What the file carries once the plan is carried out.
    void noteTags(ID3tag& record) const {
        const bool isMp3 = record.FileType == FileType::Mp3;
        record.IsID3v2Present = isMp3 && (layout_.id3v2 || refusal_ != Refusal::NoID3v2Tag);
        record.IsID3v1Present = isMp3 && (layout_.id3v1 || refusal_ == Refusal::None);
        record.IsAPE2Present = layout_.ape || !isMp3 || context_.settings.ape2;
        record.Length = ends_.head.size() + (ends_.tailBegin - ends_.headEnd) + ends_.tail.size();
    }

 private:
    // Some files have one tag behind another; without the first, the next one would be read.
    [[nodiscard]] std::uint64_t tagsEnd() const {
        std::uint64_t end = layout_.id3v2 ? layout_.id3v2->end : 0;
        while (end > 0) {
            const auto next = parseTagHeader(file_.view(end, TagHeader::size));
            if (!next || next->majorVersion < 2 || next->majorVersion > 4) break;
            end = ID3v2TagEnd(file_, end);
        }
        return end;
    }

    // The space that a tag has stays as it is, so that the sound does not move.
    bool planHead() {
        std::string frames = encodeID3v2Frames(record_, context_);
        if (record_.ID3v2Ext.MajorVersion == 2) {
            takeNewNames(frames);
            frames = encodeID3v2Frames(record_, context_);
        }
        if (frames.size() > largestTagSize) return false;
        const std::uint64_t space =
            layout_.id3v2 ? std::min(layout_.id3v2->end - TagHeader::size, largestTagSize) : 0;
        const bool fits = layout_.id3v2 && frames.size() <= space;
        ends_.headEnd = layout_.id3v2 ? layout_.id3v2->end : 0;
        ends_.head =
            encodeID3v2Tag(frames, fits ? space : roomyTagSize(frames.size()), context_.settings);
        return true;
    }

    // Old frames that fed no field may do so under their new names, in every tag.
    void takeNewNames(const std::string& frames) {
        const std::string tag = encodeID3v2Tag(frames, frames.size(), context_.settings);
        File written;
        written.openMemory(bytesOfText(tag));
        record_.ID3v2Ext = {};
        ReadID3v2Tag(written, record_, {context_.ansi, ReadDepth::Full});
    }

    // The ID3v1 block and nothing behind it; a block that is not written stays as it is.
    std::string blockBytes() {
        constexpr std::size_t blockSize = 128;
        const auto& span = layout_.id3v1;
        std::string old = span ? bytesBetween(file_, span->begin, span->end) : std::string();
        if (refusal_ == Refusal::NoID3v1Tag) return {};
        if (refusal_ != Refusal::NoID3v2Tag) {
            return encodeID3v1Block(record_, old, context_.ansi);
        }
        if (span && old.size() < blockSize) {
            old.resize(blockSize, '\0');
            old.back() = static_cast<char>(noGenre);
        }
        return old;
    }

    void planTail(bool withApe, const std::string& block) {
        const std::uint64_t end = layout_.id3v1 ? layout_.id3v1->begin : file_.size();
        ends_.tailBegin = end;
        if (withApe) planApe(end);
        ends_.tail.add(block);
    }

    // A Lyrics3 block has to stand right in front of the ID3v1 block, so that a new tag goes in
    // front of it. What stands behind an old one stays there.
    void planApe(std::uint64_t end) {
        if (layout_.lyrics) ends_.tailBegin = std::min(end, layout_.lyrics->begin);
        if (layout_.ape) ends_.tailBegin = layout_.ape->begin;
        const std::uint64_t kept = layout_.ape ? layout_.ape->end : ends_.tailBegin;
        ends_.tail = encodeAPETag(record_);
        ends_.tail.addOld(kept, end);
    }

    // A new block behind bytes that nobody knows would push the APEv2 tag in front of them out of
    // the file's last 256 bytes, where it is looked for.
    [[nodiscard]] bool wouldHideApe() const {
        constexpr std::uint64_t mostBetween = 96;
        if (!layout_.ape || layout_.id3v1) return false;
        const bool hasLyrics = layout_.lyrics && layout_.lyrics->begin == layout_.ape->end;
        const std::uint64_t known = hasLyrics ? layout_.lyrics->end : layout_.ape->end;
        return file_.size() - known > (hasLyrics ? 0 : mostBetween);
    }

    File& file_;
    ID3tag& record_;
    TagLayout layout_;
    const WriteContext& context_;
    Refusal refusal_ = Refusal::None;
    NewEnds ends_;
};

// --- Carrying it out -----------------------------------------------------------------------------

Refusal refusalOf(Rewrite result) {
    switch (result) {
        case Rewrite::NotCreated:
            return Refusal::NotCreated;
        case Rewrite::NotWritten:
            return Refusal::NotWritten;
        default:
            return Refusal::None;
    }
}

void report(const std::string& line, const WriteContext& context) {
    context.errors.reportLine(line);
    if (context.notes != nullptr) context.notes->refusal = line;
}

// Whether something is written all the same.
bool isPartial(Refusal refusal, const TagSettings& settings) {
    return refusal == Refusal::None || refusal == Refusal::NoID3v1Tag ||
           (refusal == Refusal::NoID3v2Tag && settings.ape2);
}

// A new file in the old one's place is there under one name only.
bool leavesOtherNames(File& file, const NewEnds& ends) {
    return file.names() > 1 && wouldChange(file, ends) && isWrittenAnew(file, ends);
}

void noteOtherNames(std::uint64_t names, const std::string& path, const WriteContext& context) {
    std::string line = context.errors.texts().get(Text::OtherNames);
    replaceAll(line, "%2", std::to_string(names));
    replaceAll(line, "%1", withoutControls(path));
    context.errors.noteLine(line);
    if (context.notes != nullptr) context.notes->notes.push_back(line);
}

void markRefused(ID3tag& record, Refusal refusal) {
    record.Refused = refusal;
    record.OK = false;
    record.Path.clear();
}

// `current` is what the file holds, where that was read.
TagUpdate refuse(ID3tag& record, Refusal refusal, const WriteContext& context,
                 const ID3tag* current = nullptr) {
    const auto line = refusalLine(refusal, current != nullptr ? *current : record,
                                  withoutControls(record.Path), context.errors.texts());
    if (line) report(*line, context);
    markRefused(record, refusal);
    return TagUpdate::Refused;
}

TagUpdate refuseNoSound(ID3tag& record, const SongCandidate& song, const WriteContext& context) {
    report(noSoundLine(song, context.errors.texts()), context);
    markRefused(record, Refusal::NoSound);
    return TagUpdate::Refused;
}

// --- Taking tags off -----------------------------------------------------------------------------

constexpr std::uint64_t longestStackedTag = 16U << 20U;

// Where a whole tag that begins at `at`, behind another one, ends; `at` where there is none. Sound
// that it only claims to hold is no part of it.
std::uint64_t stackedTagEnd(File& file, std::uint64_t at, const CodePage& ansi) {
    const auto header = parseTagHeader(file.view(at, TagHeader::size));
    const std::uint64_t claimed = ID3v2TagEnd(file, at);
    if (!header || claimed - at > longestStackedTag) return at;
    const std::string bytes = bytesBetween(file, at, claimed);
    File tag;
    tag.openMemory(bytesOfText(bytes));
    ID3tag record;
    const auto span = ReadID3v2Tag(tag, record, {ansi, ReadDepth::Full});
    return span && !record.ID3v2Ext.bDamaged ? at + span->end : at;
}

std::uint64_t stackEnd(File& file, std::uint64_t end, const CodePage& ansi) {
    for (std::uint64_t next = end;; end = next) {
        next = stackedTagEnd(file, end, ansi);
        if (next == end) return end;
    }
}

// The ends of a file without some of its tags.
class RemovalPlan {
 public:
    RemovalPlan(File& file, const ID3tag& current, const TagLayout& layout, const CodePage& ansi)
        : file_(file), current_(current), layout_(layout), ansi_(ansi) {
        ends_.tailBegin = file.size();
    }

    Refusal make(std::span<const TagKind> kinds, std::vector<TagKind>& removed) {
        const auto isWanted = [&](TagKind kind) {
            return std::ranges::find(kinds, kind) != kinds.end();
        };
        std::vector<TagSpan> gone;
        for (const auto& [kind, span] :
             {std::pair(TagKind::ID3v1, layout_.id3v1), std::pair(TagKind::Lyrics3, layout_.lyrics),
              std::pair(TagKind::APEv2, layout_.ape)}) {
            if (!span || !isWanted(kind)) continue;
            gone.push_back(*span);
            removed.push_back(kind);
        }
        cutTail(std::move(gone));
        if (!isWanted(TagKind::ID3v2) || !layout_.id3v2) return overlap();
        if (current_.ID3v2Ext.bDamaged) return damageOf(current_);
        ends_.headEnd = stackEnd(file_, layout_.id3v2->end, ansi_);
        removed.push_back(TagKind::ID3v2);
        return overlap();
    }

    [[nodiscard]] const NewEnds& ends() const { return ends_; }

 private:
    void cutTail(std::vector<TagSpan> gone) {
        if (gone.empty()) return;
        std::ranges::sort(gone, {}, &TagSpan::begin);
        ends_.tailBegin = gone.front().begin;
        for (std::size_t i = 0; i < gone.size(); ++i) {
            const bool isLast = i + 1 == gone.size();
            ends_.tail.addOld(gone[i].end, isLast ? file_.size() : gone[i + 1].begin);
        }
    }

    // Of tags that overlap one is not what it seems.
    [[nodiscard]] Refusal overlap() const {
        std::vector<TagSpan> spans;
        for (const auto& span : {layout_.id3v2, layout_.ape, layout_.lyrics, layout_.id3v1}) {
            if (span) spans.push_back(*span);
        }
        std::ranges::sort(spans, {}, &TagSpan::begin);
        std::uint64_t end = ends_.headEnd;
        for (const TagSpan& span : spans) {
            const bool isHead = layout_.id3v2 && span == *layout_.id3v2;
            if (!isHead && span.begin < end) return Refusal::Damaged;
            end = std::max(end, span.end);
        }
        return Refusal::None;
    }

    File& file_;
    const ID3tag& current_;
    const TagLayout& layout_;
    const CodePage& ansi_;
    NewEnds ends_;
};
}  // namespace

TagSettings tagSettings(const Settings& settings) {
    return {settings.flag(Setting::EnableID3v1Tags), settings.flag(Setting::EnableID3v2Tags),
            settings.flag(Setting::EnableID3v24),    settings.flag(Setting::EnableID3v2Unicode),
            settings.flag(Setting::EnableAPE2Tags),  settings.flag(Setting::PreserveFileTimes)};
}

bool hasWriter(FileTypes type) {
    return (type & (FileType::Mp3 | FileType::Ape2Only)) != 0;
}

std::optional<std::string> refusalLine(Refusal refusal, const ID3tag& record, std::string_view name,
                                       const Texts& texts) {
    struct Row {
        Refusal refusal;
        Text text;
    };
    constexpr std::array<Row, 9> rows{{{Refusal::NoWriter, Text::FormatNotWritten},
                                       {Refusal::NotOpened, Text::FileNotOpenedForWriting},
                                       {Refusal::NotRead, Text::FileNotRead},
                                       {Refusal::NoID3v2Tag, Text::TagNotMade},
                                       {Refusal::Damaged, Text::TagDamaged},
                                       {Refusal::UnknownVersion, Text::TagVersionUnknown},
                                       {Refusal::TooLarge, Text::TagTooLarge},
                                       {Refusal::NotCreated, Text::FolderNotWritable},
                                       {Refusal::NotWritten, Text::FileNotWritten}}};
    const auto* row =
        std::find_if(rows.begin(), rows.end(), [&](const Row& r) { return r.refusal == refusal; });
    if (row == rows.end()) return std::nullopt;
    std::string line = texts.get(row->text);
    replaceAll(line, "%2", std::to_string(record.ID3v2Ext.MajorVersion));
    replaceAll(line, "%1", name);
    return line;
}

Refusal expectedRefusal(const ID3tag& record, const TagSettings& settings) {
    if (!hasWriter(record.FileType)) return Refusal::NoWriter;
    const bool isMp3 = record.FileType == FileType::Mp3;
    if (record.ID3v2Ext.bDamaged) return damageOf(record);
    if (!isMp3) return Refusal::None;
    if (!record.IsID3v2Present && !settings.id3v2) return Refusal::NoID3v2Tag;
    if (!record.IsID3v1Present && !settings.id3v1) return Refusal::NoID3v1Tag;
    return Refusal::None;
}

TagUpdate UpdateTags(ID3tag& record, const WriteContext& context, ID3tag* before) {
    if (!record.OK || !HasEditableTags(record.Path)) return TagUpdate::Refused;
    const std::string path = record.Path;
    if (!hasWriter(record.FileType)) return refuse(record, Refusal::NoWriter, context);
    File file(context.calls);
    if (!openFor(file, path, context)) return refuse(record, Refusal::NotOpened, context);
    // The file may have changed since the record was read: what it says now is what stays.
    ID3tag current;
    current.FileType = record.FileType;
    const TagLayout layout = readTags(file, current, {context.ansi, ReadDepth::Full});
    if (before != nullptr) *before = current;
    takeEdits(current, record);
    current.SplitTitle();
    for (ID3tag* each : {&record, &current}) {
        if (each->Comment == "#") each->Comment.clear();
    }
    TagPlan plan(file, current, layout, context);
    const Refusal planned = plan.make();
    if (file.hasFailed()) return refuse(record, Refusal::NotRead, context);
    if (!isPartial(planned, context.settings)) return refuse(record, planned, context, &current);
    const SongCandidate song(file, record.FileType, path, layout);
    const bool mayChange = isSong(song, context.settings.force);
    if (file.hasFailed()) return refuse(record, Refusal::NotRead, context);
    if (!mayChange) return refuseNoSound(record, song, context);
    if (context.notes != nullptr && plan.mayHideEdits()) {
        context.notes->shown =
            foreseenRecord(file, record.FileType, layout, plan.ends(), context.ansi);
    }
    const std::uint64_t otherNames = leavesOtherNames(file, plan.ends()) ? file.names() : 0;
    if (context.dryRun) {
        if (otherNames > 0) noteOtherNames(otherNames, path, context);
        return wouldChange(file, plan.ends()) ? TagUpdate::Written : TagUpdate::Unchanged;
    }
    const Rewrite result = rewriteEnds(file, path, plan.ends(), context.settings.keepTime);
    const Refusal failed = refusalOf(result);
    if (failed != Refusal::None) return refuse(record, failed, context);
    if (otherNames > 0) noteOtherNames(otherNames, path, context);
    plan.noteTags(record);
    record.ReadOnly = false;
    markAsRead(record);
    if (planned != Refusal::None) markRefused(record, planned);
    return result == Rewrite::Unchanged ? TagUpdate::Unchanged : TagUpdate::Written;
}

TagUpdate RemoveTags(ID3tag& record, std::span<const TagKind> kinds, const WriteContext& context,
                     std::vector<TagKind>& removed) {
    const std::string path = record.Path;
    if (!hasWriter(record.FileType)) return refuse(record, Refusal::NoWriter, context);
    File file(context.calls);
    if (!openFor(file, path, context)) return refuse(record, Refusal::NotOpened, context);
    ID3tag current;
    current.FileType = record.FileType;
    TagLayout layout = readTags(file, current, {context.ansi, ReadDepth::Full});
    dropFalseBlock(layout, current);
    RemovalPlan plan(file, current, layout, context.ansi);
    const Refusal planned = plan.make(kinds, removed);
    const SongCandidate song(file, record.FileType, path, layout);
    const bool mayChange = isSong(song, true);
    if (file.hasFailed()) return refuse(record, Refusal::NotRead, context);
    if (!mayChange) return refuseNoSound(record, song, context);
    if (planned != Refusal::None) return refuse(record, planned, context, &current);
    if (removed.empty()) return TagUpdate::Unchanged;
    const std::uint64_t otherNames = leavesOtherNames(file, plan.ends()) ? file.names() : 0;
    const Refusal failed =
        context.dryRun ? Refusal::None
                       : refusalOf(rewriteEnds(file, path, plan.ends(), context.settings.keepTime));
    if (failed != Refusal::None) return refuse(record, failed, context);
    if (otherNames > 0) noteOtherNames(otherNames, path, context);
    return TagUpdate::Written;
}

}  // namespace tavlo
