#include "platform/Rescue.h"

#include <algorithm>
#include <memory>
#include <optional>

#include "platform/Environment.h"
#include "platform/FileSystem.h"

namespace tavlo {

// A rescue file is: the mark, the old and the new bytes of each run, and the table, which has for
// each file its numbers and path and its runs' numbers; at the end stand where the table begins,
// the sum of all bytes before, and the mark again. Numbers have 8 bytes, the least one first.

namespace {
constexpr std::string_view mark = "TAVLORS1";
constexpr std::string_view ending = ".rescue", asideEnding = ".kept";
constexpr std::size_t blockSize = std::size_t{1} << 16U;
constexpr std::size_t numberSize = 8;
constexpr std::size_t closingSize = 2 * numberSize + mark.size();
constexpr std::uint64_t emptySum = 0xCBF29CE484222325;

std::uint64_t summed(std::uint64_t sum, std::string_view bytes) {
    constexpr std::uint64_t prime = 0x100000001B3;
    for (const char c : bytes) sum = (sum ^ static_cast<std::uint8_t>(c)) * prime;
    return sum;
}

void addNumber(std::string& text, std::uint64_t number) {
    for (std::size_t i = 0; i < numberSize; ++i) {
        text += static_cast<char>(number >> (8 * i) & 0xFFU);
    }
}

// Takes numbers and texts off a table; once something is missing, nothing is there any more.
class Table {
 public:
    explicit Table(std::string_view bytes) : rest_(bytes) {}

    std::uint64_t number() {
        std::uint64_t number = 0;
        const std::string_view bytes = text(numberSize);
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            number |= std::uint64_t{static_cast<std::uint8_t>(bytes[i])} << (8 * i);
        }
        return number;
    }
    std::string_view text(std::uint64_t size) {
        failed_ = failed_ || size > rest_.size();
        if (failed_) return {};
        const std::string_view taken = rest_.substr(0, static_cast<std::size_t>(size));
        rest_.remove_prefix(taken.size());
        return taken;
    }
    [[nodiscard]] bool hasMore() const { return !failed_ && !rest_.empty(); }
    [[nodiscard]] bool failed() const { return failed_; }

 private:
    std::string_view rest_;
    bool failed_ = false;
};

std::string rowOf(const SavedFile& file) {
    std::string row;
    for (const std::uint64_t number :
         {file.id.volume, file.id.index, static_cast<std::uint64_t>(file.modified), file.oldSize,
          file.newSize, std::uint64_t{file.path.size()}, std::uint64_t{file.runs.size()}}) {
        addNumber(row, number);
    }
    row += file.path;
    for (const SavedRun& run : file.runs) {
        for (const std::uint64_t number : {run.begin, run.size, run.place}) addNumber(row, number);
    }
    return row;
}

SavedFile takeRow(Table& table) {
    SavedFile file;
    file.id.volume = table.number();
    file.id.index = table.number();
    file.modified = static_cast<std::int64_t>(table.number());
    file.oldSize = table.number();
    file.newSize = table.number();
    const std::uint64_t pathSize = table.number();
    const std::uint64_t runs = table.number();
    file.path = table.text(pathSize);
    for (std::uint64_t i = 0; i < runs && !table.failed(); ++i) {
        const std::uint64_t begin = table.number(), size = table.number();
        file.runs.push_back({begin, size, table.number()});
    }
    return file;
}

std::uint64_t oldBytesOf(const SavedFile& file, const SavedRun& run) {
    return run.begin < file.oldSize ? run.size : 0;
}

class Block {
 public:
    std::uint8_t* data() { return bytes_.get(); }
    [[nodiscard]] Bytes first(std::size_t count) const { return {bytes_.get(), count}; }
    [[nodiscard]] std::string_view text(std::size_t count) const { return textOf(first(count)); }

 private:
    std::unique_ptr<std::uint8_t[]> bytes_ =
        std::make_unique_for_overwrite<std::uint8_t[]>(blockSize);
};

// Calls `part(offset, count)` for a run, block by block, until one fails.
template <typename Part>
bool inBlocks(std::uint64_t begin, std::uint64_t end, Part part) {
    for (std::uint64_t at = begin; at < end; at += blockSize) {
        const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(end - at, blockSize));
        if (!part(at, count)) return false;
    }
    return true;
}
}  // namespace

// --- Making one ----------------------------------------------------------------------------------

Rescue::~Rescue() {
    if (handle_ == noFile) return;
    if (isKept_) {
        calls_.close(handle_);
    } else {
        calls_.remove(handle_, path_);
    }
}

bool Rescue::create(const std::string& folder) {
    constexpr int mostTries = 100;  // other runs may take the same name at the same moment
    if (folder.empty() || !calls_.makeOwnFolder(folder)) return false;
    const std::vector<std::string> taken = calls_.names(folder);
    for (std::size_t i = 1; i <= taken.size() + mostTries && handle_ == noFile; ++i) {
        const std::string name = std::to_string(i).append(ending);
        if (std::ranges::find(taken, name) != taken.end()) continue;
        path_ = folder + nativeSeparator() + name;
        handle_ = calls_.create(path_);
        if (handle_ == noFile && !calls_.status(path_)) return false;
    }
    sum_ = emptySum;
    return handle_ != noFile && append(mark);
}

bool Rescue::append(std::string_view bytes) {
    if (calls_.write(handle_, size_, bytesOfText(bytes)) != bytes.size()) return false;
    size_ += bytes.size();
    sum_ = summed(sum_, bytes);
    return true;
}

bool Rescue::appendSide(const SavedRun& run, Side side, const Source& source) {
    Block block;
    return inBlocks(run.begin, run.begin + run.size, [&](std::uint64_t at, std::size_t count) {
        return source(side, at, block.data(), count) && append(block.text(count));
    });
}

bool Rescue::save(SavedFile& file, const Source& source) {
    for (SavedRun& run : file.runs) {
        run.place = size_;
        if (oldBytesOf(file, run) > 0 && !appendSide(run, Side::Old, source)) return false;
        if (!appendSide(run, Side::New, source)) return false;
    }
    table_ += rowOf(file);
    return true;
}

bool Rescue::seal() {
    std::string closing = std::move(table_);
    const std::uint64_t table = size_;
    addNumber(closing, table);
    if (!append(closing)) return false;
    std::string last;
    addNumber(last, sum_);
    last += mark;
    return append(last) && calls_.flush(handle_);
}

// --- Using it ------------------------------------------------------------------------------------

bool Rescue::putRun(FileHandle file, const SavedFile& saved, const SavedRun& run, Side side) {
    const std::uint64_t place = run.place + (side == Side::New ? oldBytesOf(saved, run) : 0);
    Block block;
    return inBlocks(run.begin, run.begin + run.size, [&](std::uint64_t at, std::size_t count) {
        return calls_.read(handle_, place + (at - run.begin), block.data(), count) == count &&
               calls_.write(file, at, block.first(count)) == count;
    });
}

bool Rescue::put(FileHandle file, const SavedFile& saved, Side side) {
    return side == Side::New ? putNew(file, saved) : putBack(file, saved);
}

// What grows comes first, for it alone may need room.
bool Rescue::putNew(FileHandle file, const SavedFile& saved) {
    for (const bool grown : {true, false}) {
        for (const SavedRun& run : saved.runs) {
            const bool isGrown = oldBytesOf(saved, run) == 0;
            if (isGrown == grown && !putRun(file, saved, run, Side::New)) return false;
        }
    }
    return true;
}

// As much as can be.
bool Rescue::putBack(FileHandle file, const SavedFile& saved) {
    bool done = true;
    for (const SavedRun& run : saved.runs) {
        const bool isGrown = oldBytesOf(saved, run) == 0;
        if (!isGrown && !putRun(file, saved, run, Side::Old)) done = false;
    }
    const bool cuts = saved.newSize > saved.oldSize;
    return (!cuts || calls_.truncate(file, saved.oldSize)) && done;
}

// --- Finding one again ---------------------------------------------------------------------------

bool Rescue::open(const std::string& path) {
    FileStatus status;
    handle_ = calls_.open(path, Access::Own, status);
    path_ = path;
    size_ = status.size;
    isKept_ = true;
    return handle_ != noFile;
}

std::optional<std::string> Rescue::sealed() {
    std::string end(closingSize, '\0');
    if (size_ < mark.size() + closingSize || !readText(size_ - closingSize, end)) return {};
    Table closing(end);
    const std::uint64_t table = closing.number(), sum = closing.number();
    const std::uint64_t summedEnd = size_ - closingSize + numberSize;
    if (closing.text(mark.size()) != mark || table > size_ - closingSize) return {};
    std::uint64_t found = emptySum;
    Block block;
    const bool isRead = inBlocks(0, summedEnd, [&](std::uint64_t at, std::size_t count) {
        if (calls_.read(handle_, at, block.data(), count) != count) return false;
        found = summed(found, block.text(count));
        return true;
    });
    std::string rows(static_cast<std::size_t>(size_ - closingSize - table), '\0');
    if (!isRead || found != sum || !readText(table, rows)) return {};
    return rows;
}

bool Rescue::readText(std::uint64_t offset, std::string& text) {
    auto* const to = reinterpret_cast<std::uint8_t*>(text.data());
    return calls_.read(handle_, offset, to, text.size()) == text.size();
}

std::optional<std::vector<SavedFile>> Rescue::saved() {
    const auto rows = sealed();
    if (!rows) return std::nullopt;
    std::vector<SavedFile> files;
    Table table(*rows);
    while (table.hasMore()) files.push_back(takeRow(table));
    return table.failed() ? std::nullopt : std::optional(std::move(files));
}

// Byte by byte, for nobody knows where a disk stops.
bool Rescue::compareRun(FileHandle file, const SavedFile& saved, const SavedRun& run, Sides& seen) {
    Block now, before, after;
    const std::uint64_t old = oldBytesOf(saved, run);
    const std::uint64_t end = std::min(run.begin + run.size, seen.size);
    return inBlocks(run.begin, end, [&](std::uint64_t at, std::size_t count) {
        const std::uint64_t place = run.place + (at - run.begin);
        if (old == 0) std::fill_n(before.data(), count, std::uint8_t{0});
        const bool isRead =
            calls_.read(file, at, now.data(), count) == count &&
            (old == 0 || calls_.read(handle_, place, before.data(), count) == count) &&
            calls_.read(handle_, place + old, after.data(), count) == count;
        if (!isRead) return false;
        for (std::size_t i = 0; i < count; ++i) {
            const bool isOld = now.data()[i] == before.data()[i];
            const bool isNew = now.data()[i] == after.data()[i];
            if (!isOld && !isNew) return false;
            seen.old = seen.old || !isNew;
            seen.fresh = seen.fresh || !isOld;
        }
        return true;
    });
}

Rescue::Found Rescue::compare(FileHandle file, const SavedFile& saved, std::uint64_t size) {
    if (size < saved.oldSize || size > saved.newSize) return Found::Other;
    Sides seen{size, size<saved.newSize, size> saved.oldSize};
    for (const SavedRun& run : saved.runs) {
        if (!compareRun(file, saved, run, seen)) return Found::Other;
    }
    if (seen.old && seen.fresh) return Found::Mixed;
    return seen.fresh ? Found::New : Found::Old;
}

bool Rescue::moveAside() {
    const std::string aside = path_ + std::string(asideEnding);
    calls_.close(handle_);
    handle_ = noFile;
    return calls_.move(path_, aside) == Moved::Done;
}

// --- Putting back --------------------------------------------------------------------------------

namespace {
enum class Outcome { Settled, PutBack, Later, Foreign };

bool isReachable(const std::string& path) {
    return folderExists(path.substr(0, path.find_last_of(nativeSeparator()) + 1));
}

Outcome recoverFile(Rescue& rescue, const SavedFile& saved, FileCalls& calls) {
    const auto status = calls.status(saved.path);
    if (!status) return isReachable(saved.path) ? Outcome::Foreign : Outcome::Later;
    // A volume may get another number each time it is mounted.
    if (status->id.index != saved.id.index) return Outcome::Foreign;
    File file(calls);
    if (!file.open(saved.path, Access::ReadWrite)) return Outcome::Later;
    switch (rescue.compare(file.handle(), saved, file.size())) {
        case Rescue::Found::Other:
            return Outcome::Foreign;
        case Rescue::Found::Mixed:
            break;
        default:
            return Outcome::Settled;
    }
    const bool done =
        rescue.put(file.handle(), saved, Rescue::Side::Old) && calls.flush(file.handle());
    if (done) calls.setModified(file.handle(), saved.modified);
    return done ? Outcome::PutBack : Outcome::Later;
}

void recoverGroup(const std::string& path, FileCalls& calls, Recovered& recovered) {
    Rescue rescue(calls);
    if (!rescue.open(path)) return;
    const auto files = rescue.saved();
    // Torn: no file had been touched yet.
    if (!files) return rescue.drop();
    bool isLater = false, isForeign = false;
    for (const SavedFile& saved : *files) {
        const Outcome outcome = recoverFile(rescue, saved, calls);
        if (outcome == Outcome::PutBack) ++recovered.putBack;
        isLater = isLater || outcome == Outcome::Later;
        isForeign = isForeign || outcome == Outcome::Foreign;
    }
    if (isLater) return;
    if (!isForeign) return rescue.drop();
    if (rescue.moveAside()) recovered.setAside.push_back(path + std::string(asideEnding));
}
}  // namespace

std::string rescueFolder() {
    return stateFolder("rescue");
}

Recovered recoverFiles(const std::string& folder, FileCalls& calls) {
    Recovered recovered;
    if (folder.empty()) return recovered;
    for (const std::string& name : calls.names(folder)) {
        if (name.ends_with(ending)) {
            recoverGroup(folder + nativeSeparator() + name, calls, recovered);
        }
    }
    return recovered;
}

}  // namespace tavlo
