#include "collection/RenameJournal.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "collection/JournalBelief.h"
#include "core/Numbers.h"
#include "core/PathText.h"
#include "platform/File.h"
#include "platform/FileSystem.h"
#include "platform/FileTransfer.h"
#include "platform/PlainText.h"

namespace tavlo {

namespace {
constexpr std::uint64_t largestJournal = 1U << 30U;  // bytes
constexpr std::size_t nameDigits = 6, mostDigits = 12;
constexpr std::string_view nameEnding = ".txt";
constexpr std::string_view batchWord = "batch", fileWord = "file", folderWord = "folder",
                           listWord = "list", rootWord = "root", withinWord = "within",
                           movedWord = "moved", doneWord = "done";

// A name may hold what parts the fields of a line.
constexpr std::array<std::pair<char, char>, 4> escapes{
    {{'\\', '\\'}, {'\t', 't'}, {'\n', 'n'}, {'\r', 'r'}}};

std::string escaped(std::string_view text) {
    // Nearly every text is plain.
    const auto isPlain = [](char c) { return c != '\\' && static_cast<unsigned char>(c) >= ' '; };
    if (std::ranges::all_of(text, isPlain)) return std::string(text);
    std::string out;
    for (const char c : text) {
        const auto* row = std::ranges::find(escapes, c, &std::pair<char, char>::first);
        if (row == escapes.end()) {
            out += c;
        } else {
            out += {'\\', row->second};
        }
    }
    return out;
}

std::string unescaped(std::string_view text) {
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isEscape = text[i] == '\\' && i + 1 < text.size();
        const auto* row =
            isEscape ? std::ranges::find(escapes, text[++i], &std::pair<char, char>::second)
                     : escapes.end();
        out += row == escapes.end() ? text[i] : row->first;
    }
    return out;
}

std::string lineOf(std::initializer_list<std::string_view> fields) {
    std::string line;
    for (const std::string_view field : fields) {
        if (!line.empty()) line += '\t';
        line += escaped(field);
    }
    return line + '\n';
}

std::vector<std::string> fieldsOf(std::string_view line) {
    std::vector<std::string> fields;
    for (std::size_t end = 0; end != std::string_view::npos; line.remove_prefix(end + 1)) {
        end = line.find('\t');
        fields.push_back(unescaped(line.substr(0, end)));
        if (end == std::string_view::npos) break;
    }
    return fields;
}

template <typename Number>
Number numberOf(std::string_view text) {
    Number number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

std::string textOf(const JournalRow& row) {
    const std::string size = std::to_string(row.size), time = std::to_string(row.modified);
    if (!row.id) return lineOf({fileWord, size, time, row.from, row.to});
    return lineOf({fileWord, size, time, row.from, row.to, std::to_string(row.id->volume),
                   std::to_string(row.id->index)});
}

std::string textOf(std::string_view time, const JournalBatch& batch) {
    std::string text = lineOf({batchWord, time});
    for (const JournalRow& row : batch.rows) text += textOf(row);
    for (const std::string& folder : batch.newFolders) text += lineOf({folderWord, folder});
    for (const std::string& root : batch.roots) text += lineOf({rootWord, root});
    for (const std::string& folder : batch.within) text += lineOf({withinWord, folder});
    return text;
}

void readLine(std::vector<std::string> fields, JournalBatch& batch) {
    if (fields[0] == fileWord && (fields.size() == 5 || fields.size() == 7)) {
        batch.rows.push_back({numberOf<std::uint64_t>(fields[1]), numberOf<std::int64_t>(fields[2]),
                              fields[3], fields[4]});
        if (fields.size() == 7) {
            batch.rows.back().id =
                FileId{numberOf<std::uint64_t>(fields[5]), numberOf<std::uint64_t>(fields[6])};
        }
    } else if (fields[0] == folderWord && fields.size() == 2) {
        batch.newFolders.push_back(fields[1]);
    } else if (fields[0] == rootWord && fields.size() == 2) {
        batch.roots.push_back(fields[1]);
    } else if (fields[0] == withinWord && fields.size() == 2) {
        batch.within.push_back(fields[1]);
    } else if (fields[0] == listWord && fields.size() == 3) {
        batch.lists.push_back({std::move(fields[1]), std::move(fields[2])});
    } else if (fields[0] == movedWord) {
        batch.isMoved = true;
    } else if (fields[0] == doneWord) {
        batch.isDone = true;
    }
}
}  // namespace

namespace {
bool isBatchName(std::string_view name) {
    if (!name.ends_with(nameEnding)) return false;
    name.remove_suffix(nameEnding.size());
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    // A longer number has no zeroes in front.
    const bool isPlain = name.size() == nameDigits || (name.size() > nameDigits && name[0] != '0');
    return isPlain && name.size() <= mostDigits && std::ranges::all_of(name, isDigit);
}
}  // namespace

// Each batch has the next number, so that the clock may be wrong.
std::vector<std::string> RenameJournal::names() const {
    std::vector<std::string> found;
    for (FolderEntry& entry : listFolder(folder_)) {
        if (isBatchName(entry.name)) found.push_back(std::move(entry.name));
    }
    std::ranges::sort(found, {}, [](const std::string& name) {
        return std::pair(name.size(), std::string_view(name));
    });
    return found;
}

bool RenameJournal::lock() {
    if (folder_.empty() || !createFolders(folder_)) return true;
    const std::string path = joinPath(folder_, "lock", nativePathStyle());
    if (writeNewFile(path, {}) == Created::Failed || isLink(path)) return true;
    return lock_.open(path, Access::ReadWrite) || !isInUse(path);
}

bool RenameJournal::begin(std::string_view time, const JournalBatch& batch) {
    constexpr int mostTries = 10;  // other instances may begin at the same moment
    if (folder_.empty() || !createFolders(folder_) || !makeOwn(folder_)) return false;
    const std::vector<std::string> earlier = names();
    for (std::size_t i = 0; i + mostBatches <= earlier.size(); ++i) {
        removeFile(joinPath(folder_, earlier[i], nativePathStyle()), calls_);
    }
    std::int64_t number = earlier.empty() ? 0 : numberOf<std::int64_t>(earlier.back());
    Transfer written = Transfer::Exists;
    for (int tries = 0; tries < mostTries && written == Transfer::Exists; ++tries) {
        const std::string name = paddedNumber(++number, nameDigits) + std::string(nameEnding);
        path_ = joinPath(folder_, name, nativePathStyle());
        written = writeFile(path_, textOf(time, batch), calls_);
    }
    return written == Transfer::Done && makeOwn(path_);
}

bool RenameJournal::append(std::string_view text) const {
    File file(calls_);
    return file.open(path_, Access::ReadWrite) && file.write(file.size(), bytesOfText(text));
}

// A list goes in piece by piece: its bytes are in memory twice already, before and after.
bool RenameJournal::appendMoved(const std::vector<JournalList>& lists) const {
    constexpr std::size_t piece = 1U << 16U;
    File file(calls_);
    if (!file.open(path_, Access::ReadWrite)) return false;
    const auto put = [&](std::string_view text) {
        return file.write(file.size(), bytesOfText(text));
    };
    for (const JournalList& list : lists) {
        bool done = put(std::string(listWord) + '\t' + escaped(list.path) + '\t');
        for (std::string_view rest = list.before; done && !rest.empty();) {
            done = put(escaped(rest.substr(0, piece)));
            rest.remove_prefix(std::min(piece, rest.size()));
        }
        if (!done || !put("\n")) return false;
    }
    return put(lineOf({movedWord})) && (lists.empty() || calls_.flush(file.handle()));
}

bool RenameJournal::endMoves(std::string_view time, const JournalBatch& batch, bool same) {
    if (batch.rows.empty()) return removeFile(path_, calls_);
    return (same || replaceFile(path_, textOf(time, batch), calls_)) && appendMoved(batch.lists);
}

bool RenameJournal::finish() {
    return append(lineOf({doneWord}));
}

std::optional<JournalBatch> RenameJournal::read(const std::string& path) const {
    const auto text = isOwn(path) ? readFile(path, largestJournal) : std::nullopt;
    if (!text) return std::nullopt;
    // A line that was not finished tells nothing.
    std::string_view rest = std::string_view(*text).substr(0, text->rfind('\n') + 1);
    JournalBatch batch;
    while (!rest.empty()) readLine(fieldsOf(takeLine(rest)), batch);
    return batch;
}

JournalBatch RenameJournal::last() {
    passedOver_.clear();
    const bool isBelieved = folder_.empty() || !isTaken(folder_) || isOwn(folder_);
    if (!isBelieved) passedOver_.push_back(folder_);
    const std::vector<std::string> all = isBelieved ? names() : std::vector<std::string>();
    for (std::size_t i = all.size(); i > 0; --i) {
        path_ = joinPath(folder_, all[i - 1], nativePathStyle());
        auto batch = read(path_);
        strangeRows_ = batch ? takeUnbelievable(*batch) : std::vector<JournalRow>();
        if (batch && !batch->rows.empty()) return std::move(*batch);
        passedOver_.push_back(path_);
    }
    strangeRows_.clear();
    return {};
}

bool RenameJournal::drop() {
    return removeFile(path_, calls_);
}

bool RenameJournal::isBrokenOff() {
    const JournalBatch batch = last();
    return !batch.rows.empty() && !batch.isDone;
}

}  // namespace tavlo
