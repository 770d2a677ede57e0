#include "tags/FileRewriter.h"

#include <algorithm>
#include <array>
#include <utility>

#include "core/ByteCursor.h"
#include "platform/FileSystem.h"
#include "platform/TemporaryFile.h"
#include "tags/ID3v2.h"

namespace tavlo {

std::string bytesBetween(File& file, std::uint64_t begin, std::uint64_t end) {
    if (begin >= end) return {};
    return std::string(textOf(file.view(begin, static_cast<std::size_t>(end - begin))));
}

namespace {
using Changes = std::vector<NewContent::Change>;

// What a killed run leaves goes on with the same sound behind its tag, or got no further than that.
// Anything else that bears the name belongs to somebody.
bool isLeftover(File& found, File& original) {
    constexpr std::size_t compared = 4096;
    const std::uint64_t begin = ID3v2TagEnd(found);
    if (begin >= found.size()) return true;
    const std::string sound = bytesBetween(found, begin, std::min(begin + compared, found.size()));
    return sound == textOf(original.view(ID3v2TagEnd(original), sound.size()));
}

// How a file is to be changed.
enum class Steps { None, Cut, Page, Rescue, NewFile, Unreadable };

struct Plan {
    Steps steps = Steps::NewFile;
    Changes changes;
};

std::uint64_t bytesIn(const Changes& changes) {
    std::uint64_t bytes = 0;
    for (const auto& change : changes) bytes += change.end - change.begin;
    return bytes;
}

// Whether a kill finds none of the bytes written or all.
bool isOnePage(const Changes& changes) {
    constexpr std::uint64_t page = NewContent::pageSize;
    return changes.size() == 1 && changes[0].begin / page == (changes[0].end - 1) / page;
}

// Old bytes are written once and new ones twice, each time all the way to the disk.
bool isWorthSaving(std::uint64_t changed, std::uint64_t size, const RewriteWays& ways) {
    constexpr std::uint64_t timesWritten = 3;
    return !ways.rescueFolder.empty() && size > ways.smallFile && timesWritten * changed < size;
}

Plan planFor(File& file, const NewContent& content, const NewEnds& ends, const RewriteWays& ways) {
    if (ends.headEnd > ends.tailBegin || ends.tailBegin > file.size())
        return {Steps::Unreadable, {}};
    // Once the sound moves there is nothing to compare.
    if (ends.head.size() != ends.headEnd) return {};
    auto changes = content.changes();
    if (!changes) return {Steps::Unreadable, {}};
    const bool isCut = content.size() < file.size();
    if (changes->empty()) return {isCut ? Steps::Cut : Steps::None, {}};
    if (isCut || !file.calls().overwrites(file.handle())) return {};
    const bool grows = content.size() > file.size();
    if (!grows && isOnePage(*changes)) return {Steps::Page, std::move(*changes)};
    if (!isWorthSaving(bytesIn(*changes), content.size(), ways)) return {};
    return {Steps::Rescue, std::move(*changes)};
}

// Whether nobody else has written to it, or put another file in its place, since it was opened.
bool isStillThere(File& file, const std::string& path) {
    const auto now = file.calls().status(path);
    return now && file.status().isSameAs(*now);
}

Rewrite writePage(File& file, const NewContent& content, const NewContent::Change& change) {
    std::array<std::uint8_t, NewContent::pageSize> fresh;
    const auto count = static_cast<std::size_t>(change.end - change.begin);
    if (!content.read(change.begin, fresh.data(), count)) return Rewrite::NotWritten;
    const std::string old = bytesBetween(file, change.begin, change.end);
    if (old.size() != count) return Rewrite::NotWritten;
    if (file.write(change.begin, {fresh.data(), count})) return Rewrite::Done;
    const bool isOld = file.write(change.begin, bytesOfText(old)) ||
                       bytesBetween(file, change.begin, change.end) == old;
    return isOld ? Rewrite::NotWritten : Rewrite::Torn;
}

Rewrite writeInPlace(File& file, const std::string& path, const NewContent& content,
                     const Plan& plan, bool keepTime) {
    if (!isStillThere(file, path)) return Rewrite::Replaced;
    const std::int64_t modified = file.modified();
    Rewrite result = Rewrite::Done;
    if (plan.steps == Steps::Page) {
        result = writePage(file, content, plan.changes[0]);
    } else if (!file.truncate(content.size())) {
        result = Rewrite::NotWritten;
    }
    if (result == Rewrite::Done && keepTime) file.calls().setModified(file.handle(), modified);
    return result;
}

bool appendParts(TemporaryFile& temporary, File& file, const NewContent& content) {
    return std::ranges::all_of(content.parts(), [&](const NewContent::Part& part) {
        if (part.bytes != nullptr) return temporary.append(*part.bytes);
        return temporary.append(file.handle(), part.old, part.old + (part.end - part.begin));
    });
}

Rewrite throughTemporary(File& file, const std::string& linkedPath, const NewContent& content,
                         bool keepTime) {
    const std::string path = withoutLinks(linkedPath);
    TemporaryFile temporary(file.calls(), [&](File& found) { return isLeftover(found, file); });
    if (!temporary.createBeside(path)) return Rewrite::NotCreated;
    const auto time = keepTime ? std::optional(file.modified()) : std::nullopt;
    const bool complete =
        appendParts(temporary, file, content) && temporary.complete(file.handle(), time);
    if (!complete) return Rewrite::NotWritten;
    const FileStatus expected = file.status();
    switch (temporary.replace(path, file.release(), expected)) {
        case Replaced::Done:
            return Rewrite::Done;
        case Replaced::OtherFile:
            return Rewrite::Replaced;
        default:
            return Rewrite::NotWritten;
    }
}
}  // namespace

Rewrite rewriteEnds(File& file, const std::string& path, const NewEnds& ends, bool keepTime,
                    const RewriteWays& ways) {
    RewriteGroup group(ways);
    group.add(file, path, ends, keepTime);
    return group.commit().front();
}

Way wayOf(File& file, const NewEnds& ends, const RewriteWays& ways) {
    const NewContent content(file, ends);
    switch (planFor(file, content, ends, ways).steps) {
        case Steps::None:
            return Way::None;
        case Steps::NewFile:
            return Way::NewFile;
        case Steps::Unreadable:
            return Way::NotKnown;
        default:
            return Way::InPlace;
    }
}

bool wouldChange(File& file, const NewEnds& ends) {
    return wayOf(file, ends) != Way::None;
}

// --- Several files -------------------------------------------------------------------------------

void RewriteGroup::add(File& file, const std::string& path, const NewEnds& ends, bool keepTime) {
    const NewContent content(file, ends);
    const Plan plan = planFor(file, content, ends, ways_);
    Rewrite& result = results_.emplace_back(Rewrite::NotWritten);
    switch (plan.steps) {
        case Steps::None:
            result = Rewrite::Unchanged;
            break;
        case Steps::Unreadable:
            break;
        case Steps::Cut:
        case Steps::Page:
            result = writeInPlace(file, path, content, plan, keepTime);
            break;
        case Steps::Rescue: {
            const FileStatus& status = file.status();
            Waiting waiting{results_.size() - 1,
                            file,
                            {path, status.id, status.modified, status.size, content.size(), {}},
                            keepTime};
            if (save(waiting, content, plan.changes)) break;
            [[fallthrough]];
        }
        case Steps::NewFile:
            result = throughTemporary(file, path, content, keepTime);
    }
}

bool RewriteGroup::save(Waiting& waiting, const NewContent& content, const Changes& changes) {
    for (const auto& change : changes) {
        waiting.saved.runs.push_back({change.begin, change.end - change.begin, 0});
    }
    if (rescue_ == nullptr) {
        auto rescue = std::make_unique<Rescue>(waiting.file.calls());
        if (!rescue->create(ways_.rescueFolder)) return false;
        rescue_ = std::move(rescue);
    }
    File& file = waiting.file;
    const auto source = [&](Rescue::Side side, std::uint64_t at, std::uint8_t* to,
                            std::size_t count) {
        if (side == Rescue::Side::New) return content.read(at, to, count);
        const Bytes bytes = file.view(at, count);
        std::ranges::copy(bytes, to);
        return bytes.size() == count;
    };
    if (!rescue_->save(waiting.saved, source)) return false;
    waiting_.push_back(std::move(waiting));
    return true;
}

bool RewriteGroup::isFull() const {
    return waiting_.size() >= mostFiles || (rescue_ != nullptr && rescue_->size() >= mostSaved);
}

Rewrite RewriteGroup::write(const Waiting& waiting) {
    if (!isStillThere(waiting.file, waiting.saved.path)) return Rewrite::Replaced;
    const FileHandle handle = waiting.file.handle();
    if (!rescue_->put(handle, waiting.saved, Rescue::Side::New)) return takeBack(waiting);
    if (waiting.keepTime) waiting.file.calls().setModified(handle, waiting.saved.modified);
    return Rewrite::Done;
}

Rewrite RewriteGroup::takeBack(const Waiting& waiting) {
    FileCalls& calls = waiting.file.calls();
    const FileHandle handle = waiting.file.handle();
    const bool isPutBack =
        rescue_->put(handle, waiting.saved, Rescue::Side::Old) && calls.flush(handle);
    calls.setModified(handle, waiting.saved.modified);
    return isPutBack || isUntouched(waiting) ? Rewrite::NotWritten : Rewrite::Torn;
}

bool RewriteGroup::isUntouched(const Waiting& waiting) {
    const auto now = waiting.file.calls().status(waiting.saved.path);
    return now &&
           rescue_->compare(waiting.file.handle(), waiting.saved, now->size) == Rescue::Found::Old;
}

// All are written before the first one is flushed: then the disk's own journal is waited for once.
std::vector<Rewrite> RewriteGroup::commit() {
    const bool isSealed = rescue_ != nullptr && !waiting_.empty() && rescue_->seal();
    for (const Waiting& waiting : waiting_) {
        results_[waiting.number] = isSealed ? write(waiting) : Rewrite::NotWritten;
    }
    for (const Waiting& waiting : waiting_) {
        Rewrite& result = results_[waiting.number];
        const bool isFlushed =
            result != Rewrite::Done || waiting.file.calls().flush(waiting.file.handle());
        if (!isFlushed) result = takeBack(waiting);
        if (result == Rewrite::Torn) rescue_->keep();
    }
    waiting_.clear();
    rescue_.reset();
    return std::exchange(results_, {});
}

}  // namespace tavlo
