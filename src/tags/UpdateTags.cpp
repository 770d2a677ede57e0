#include "tags/UpdateTags.h"

#include <algorithm>
#include <chrono>
#include <memory>
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
#include "tags/ID3v2ToAPE.h"
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

Refusal whyNotOpened(const std::string& path, const WriteContext& context) {
    if (context.dryRun) return Refusal::NotRead;
    return isInUse(path) ? Refusal::InUse : Refusal::NotOpened;
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
    // `after` is what the file is to say, `before` what it says.
    TagPlan(File& file, const ID3tag& before, ID3tag& after, FieldSet edited,
            const TagLayout& layout, const WriteContext& context)
        : file_(file),
          record_(after),
          change_{before, after, edited},
          layout_(layout),
          context_(context) {
        dropFalseBlock(layout_, record_);
        ends_.tailBegin = file.size();
    }

    Refusal make() {
        refusal_ = expectedRefusal(record_, context_.settings);
        if (record_.ID3v2Ext.bDamaged) return refusal_;
        if (record_.FileType == FileType::Mp3) {
            if (refusal_ == Refusal::NoID3v2Tag && !context_.settings.ape2) return refusal_;
            const Refusal head = refusal_ == Refusal::NoID3v2Tag ? Refusal::None : planHead();
            if (head != Refusal::None) return head;
            if (wouldHideApe() && refusal_ == Refusal::None) refusal_ = Refusal::NoID3v1Tag;
            planTail(context_.settings.ape2);
        } else {
            carry();
            ends_.headEnd = tagsEnd();
            planTail(true);
        }
        // Of tags that overlap one is not what it seems.
        const bool isOdd = ends_.headEnd > ends_.tailBegin || isUnreadApe();
        return isOdd ? Refusal::Damaged : refusal_;
    }

    [[nodiscard]] const NewEnds& ends() const { return ends_; }
    // What a tag that is taken off holds and no other tag has a place for: names of frames.
    [[nodiscard]] const std::vector<std::string>& homeless() const { return carried_.homeless; }

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

    // What the ID3v2 tag told goes over before it is taken off.
    void carry() {
        if (!layout_.id3v2) return;
        carried_ = carriedItems(file_, layout_.frames, change_, layout_.items, context_.ansi);
    }

    Refusal planHead() {
        NewFrames frames = encodeID3v2Frames(change_, file_, layout_.frames, context_);
        if (frames.pieces.size() > largestTagSize) return Refusal::TooLarge;
        if (change_.before.ID3v2Ext.MajorVersion == 2) takeNewNames(frames.pieces);
        ends_.headEnd = layout_.id3v2 ? layout_.id3v2->end : 0;
        if (frames.isChanged) {
            layOut(std::move(frames));
        } else {
            ends_.head.addOld(0, ends_.headEnd);
        }
        return Refusal::None;
    }

    // The space that a tag has stays as it is, so that the sound does not move.
    void layOut(NewFrames frames) {
        const std::uint64_t needed = frames.pieces.size();
        const std::uint64_t had =
            layout_.id3v2 ? std::min(layout_.id3v2->end - TagHeader::size, largestTagSize) : 0;
        const bool fits = layout_.id3v2 && needed <= had;
        const std::uint64_t room = fits ? had : roomyTagSize(needed);
        const std::uint64_t size = frames.isExact ? needed : room;
        ends_.head = Pieces(encodeID3v2Header(size, context_.settings));
        ends_.head.add(std::move(frames.pieces));
        const std::uint64_t padding = size - needed;
        const FoundFrames& found = layout_.frames;
        // Zeroes that are there already need not be made.
        const bool hasOld =
            fits && !found.isPlain && !frames.isExact && !change_.before.ID3v2Ext.bFooterPresent;
        const std::uint64_t begin = std::max(ends_.head.size(), found.end);
        if (hasOld && begin < ends_.headEnd) {
            ends_.head.add(std::string(static_cast<std::size_t>(begin - ends_.head.size()), '\0'));
            ends_.head.addOld(begin, ends_.headEnd);
        } else {
            ends_.head.add(std::string(static_cast<std::size_t>(padding), '\0'));
        }
    }

    // Old frames that fed no field may do so under their new names, in every tag.
    void takeNewNames(const Pieces& frames) {
        std::string tag = encodeID3v2Header(frames.size(), context_.settings);
        for (const Piece& piece : frames.all()) {
            tag += piece.bytes.empty() ? bytesBetween(file_, piece.begin, piece.end) : piece.bytes;
        }
        File written;
        written.openMemory(bytesOfText(tag));
        cAlbumArt art = std::move(record_.AlbumArt);
        record_.ID3v2Ext = {};
        ReadID3v2Tag(written, record_, {context_.ansi, ReadDepth::Places});
        record_.AlbumArt = std::move(art);  // it lies where it lay
    }

    // The ID3v1 block and nothing behind it; a block that is not written stays as it is.
    Pieces block() {
        const auto& span = layout_.id3v1;
        const std::string old = span ? bytesBetween(file_, span->begin, span->end) : std::string();
        if (refusal_ == Refusal::NoID3v1Tag || (!span && refusal_ != Refusal::None)) return {};
        const TagChange change{change_.before, change_.after,
                               refusal_ == Refusal::NoID3v2Tag ? 0 : change_.edited};
        std::string bytes = encodeID3v1Block(change, old, context_.ansi);
        Pieces block;
        if (bytes == old) {
            block.addOld(span->begin, span->end);
        } else {
            block.add(std::move(bytes));
        }
        return block;
    }

    void planTail(bool withApe) {
        const std::uint64_t end = layout_.id3v1 ? layout_.id3v1->begin : file_.size();
        ends_.tailBegin = end;
        if (withApe) planApe(end);
        if (record_.FileType == FileType::Mp3) ends_.tail.add(block());
    }

    // A Lyrics3 block has to stand right in front of the ID3v1 block, so that a new tag goes in
    // front of it. What stands behind an old one stays there.
    void planApe(std::uint64_t end) {
        if (layout_.lyrics && layout_.lyrics->end == end) ends_.tailBegin = layout_.lyrics->begin;
        if (layout_.ape) ends_.tailBegin = layout_.ape->begin;
        const std::uint64_t kept = layout_.ape ? layout_.ape->end : ends_.tailBegin;
        NewAPETag tag =
            encodeAPETag(change_, file_, layout_.items, std::move(carried_.items), context_.ansi);
        if (layout_.ape && !tag.isChanged) {
            ends_.tail.addOld(layout_.ape->begin, layout_.ape->end);
        } else {
            ends_.tail = std::move(tag.pieces);
        }
        ends_.tail.addOld(kept, end);
    }

    // A tag that has to be written, and that could not be taken apart.
    [[nodiscard]] bool isUnreadApe() const {
        const bool isWritten = record_.FileType != FileType::Mp3 || context_.settings.ape2;
        return isWritten && layout_.items.isBroken;
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
    TagChange change_;
    TagLayout layout_;
    const WriteContext& context_;
    Carried carried_;
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
        case Rewrite::Replaced:
            return Refusal::Replaced;
        case Rewrite::Torn:
            return Refusal::Torn;
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
bool leavesOtherNames(File& file, const NewEnds& ends, const WriteContext& context) {
    return file.names() > 1 && wayOf(file, ends, context.ways) == Way::NewFile;
}

void note(Text text, const std::string& path, const std::string& what,
          const WriteContext& context) {
    std::string line = context.errors.texts().get(text);
    replaceAll(line, "%2", what);
    replaceAll(line, "%1", withoutControls(path));
    context.errors.noteLine(line);
    if (context.notes != nullptr) context.notes->notes.push_back(line);
}

// What a change does beside what was asked for.
void noteSideEffects(std::uint64_t otherNames, std::span<const std::string> homeless,
                     const std::string& path, const WriteContext& context) {
    if (otherNames > 0) note(Text::OtherNames, path, std::to_string(otherNames), context);
    if (homeless.empty()) return;
    std::string names;
    for (const std::string& name : homeless) {
        if (!names.empty()) names += ", ";
        names += name;
    }
    note(Text::FramesLeftBehind, path, withoutControls(names), context);
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
    const auto span = ReadID3v2Tag(tag, record, {ansi, ReadDepth::Places});
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
    constexpr std::array<Row, 12> rows{{{Refusal::NoWriter, Text::FormatNotWritten},
                                        {Refusal::NotOpened, Text::FileNotOpenedForWriting},
                                        {Refusal::InUse, Text::FileInUse},
                                        {Refusal::NotRead, Text::FileNotRead},
                                        {Refusal::NoID3v2Tag, Text::TagNotMade},
                                        {Refusal::Damaged, Text::TagDamaged},
                                        {Refusal::UnknownVersion, Text::TagVersionUnknown},
                                        {Refusal::TooLarge, Text::TagTooLarge},
                                        {Refusal::NotCreated, Text::FolderNotWritable},
                                        {Refusal::NotWritten, Text::FileNotWritten},
                                        {Refusal::Replaced, Text::FileChangedMeanwhile},
                                        {Refusal::Torn, Text::FileTorn}}};
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

// What is known of a file between the two steps.
struct TagUpdating::Work {
    Work(const ID3tag& record, const WriteContext& context)
        : path(record.Path), file(context.calls) {
        current.FileType = record.FileType;
    }

    const std::string path;
    File file;
    ID3tag current, after;
    TagLayout layout;
    std::optional<TagPlan> plan;
    Refusal planned = Refusal::None;
    std::uint64_t otherNames = 0;
};

TagUpdating::TagUpdating(ID3tag& record, const WriteContext& context, ID3tag* before)
    : record_(record), context_(context), before_(before) {}

TagUpdating::~TagUpdating() = default;

std::optional<TagUpdate> TagUpdating::prepare(RewriteGroup& group) {
    if (!record_.OK || !HasEditableTags(record_.Path)) return TagUpdate::Refused;
    if (!hasWriter(record_.FileType)) return refuse(record_, Refusal::NoWriter, context_);
    work_ = std::make_unique<Work>(record_, context_);
    auto& [path, file, current, after, layout, plan, planned, otherNames] = *work_;
    if (!openFor(file, path, context_))
        return refuse(record_, whyNotOpened(path, context_), context_);
    // The file may have changed since the record was read: what it says now is what stays.
    layout = readTags(file, current, {context_.ansi, ReadDepth::Places});
    after = current;
    if (before_ != nullptr) *before_ = current;
    const FieldSet edited = takeEdits(after, record_);
    if ((edited & fieldSet(Field::Title, Field::Mix)) != 0) after.SplitTitle();
    for (ID3tag* each : {&record_, &after}) {
        if (each->Comment == "#") each->Comment.clear();
    }
    plan.emplace(file, current, after, edited, layout, context_);
    planned = plan->make();
    if (file.hasFailed()) return refuse(record_, Refusal::NotRead, context_);
    if (!isPartial(planned, context_.settings)) {
        return refuse(record_, planned, context_, &current);
    }
    const SongCandidate song(file, record_.FileType, path, layout);
    const bool mayChange = isSong(song, context_.settings.force);
    if (file.hasFailed()) return refuse(record_, Refusal::NotRead, context_);
    if (!mayChange) return refuseNoSound(record_, song, context_);
    if (context_.notes != nullptr && plan->mayHideEdits()) {
        context_.notes->shown =
            foreseenRecord(file, record_.FileType, layout, plan->ends(), context_.ansi);
    }
    otherNames = leavesOtherNames(file, plan->ends(), context_) ? file.names() : 0;
    if (!context_.dryRun) {
        group.add(file, path, plan->ends(), context_.settings.keepTime);
        return std::nullopt;
    }
    noteSideEffects(otherNames, plan->homeless(), path, context_);
    return wouldChange(file, plan->ends()) ? TagUpdate::Written : TagUpdate::Unchanged;
}

TagUpdate TagUpdating::finish(Rewrite result) {
    const std::unique_ptr<Work> work = std::move(work_);
    Refusal failed = refusalOf(result);
    if (failed == Refusal::NotWritten) {
        work->file.close();  // or it would be we who use it
        if (isInUse(work->path)) failed = Refusal::InUse;
    }
    if (failed != Refusal::None) return refuse(record_, failed, context_);
    noteSideEffects(work->otherNames, work->plan->homeless(), work->path, context_);
    work->plan->noteTags(record_);
    record_.ReadOnly = false;
    markAsRead(record_);
    if (work->planned != Refusal::None) markRefused(record_, work->planned);
    return result == Rewrite::Unchanged ? TagUpdate::Unchanged : TagUpdate::Written;
}

TagUpdate UpdateTags(ID3tag& record, const WriteContext& context, ID3tag* before) {
    TagUpdating updating(record, context, before);
    RewriteGroup group(context.ways);
    if (const auto answer = updating.prepare(group)) return *answer;
    return updating.finish(group.commit().front());
}

TagUpdate RemoveTags(ID3tag& record, std::span<const TagKind> kinds, const WriteContext& context,
                     std::vector<TagKind>& removed) {
    const std::string path = record.Path;
    if (!hasWriter(record.FileType)) return refuse(record, Refusal::NoWriter, context);
    File file(context.calls);
    if (!openFor(file, path, context)) return refuse(record, whyNotOpened(path, context), context);
    ID3tag current;
    current.FileType = record.FileType;
    TagLayout layout = readTags(file, current, {context.ansi, ReadDepth::Places});
    dropFalseBlock(layout, current);
    RemovalPlan plan(file, current, layout, context.ansi);
    const Refusal planned = plan.make(kinds, removed);
    const SongCandidate song(file, record.FileType, path, layout);
    const bool mayChange = isSong(song, true);
    if (file.hasFailed()) return refuse(record, Refusal::NotRead, context);
    if (!mayChange) return refuseNoSound(record, song, context);
    if (planned != Refusal::None) return refuse(record, planned, context, &current);
    if (removed.empty()) return TagUpdate::Unchanged;
    const std::uint64_t otherNames =
        leavesOtherNames(file, plan.ends(), context) ? file.names() : 0;
    const Refusal failed = context.dryRun
                               ? Refusal::None
                               : refusalOf(rewriteEnds(file, path, plan.ends(),
                                                       context.settings.keepTime, context.ways));
    if (failed != Refusal::None) return refuse(record, failed, context);
    noteSideEffects(otherNames, {}, path, context);
    return TagUpdate::Written;
}

}  // namespace tavlo
