#include "collection/RenameJournal.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "core/Numbers.h"
#include "core/PathText.h"
#include "platform/File.h"
#include "platform/FileSystem.h"
#include "platform/FileTransfer.h"
#include "platform/PlainText.h"

namespace tavlo {

namespace {
constexpr std::uint64_t largestJournal = 1U << 30U;  // bytes
constexpr std::size_t nameDigits = 6;
constexpr std::string_view nameEnding = ".txt";
constexpr std::string_view batchWord = "batch", fileWord = "file", folderWord = "folder",
                           listWord = "list", rootWord = "root", movedWord = "moved",
                           doneWord = "done";

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

std::string textOfLists(const std::vector<JournalList>& lists) {
    std::string text;
    for (const JournalList& list : lists) text += lineOf({listWord, list.path, list.before});
    return text;
}

std::string textOf(std::string_view time, const JournalBatch& batch) {
    std::string text = lineOf({batchWord, time});
    for (const JournalRow& row : batch.rows) {
        text += lineOf(
            {fileWord, std::to_string(row.size), std::to_string(row.modified), row.from, row.to});
    }
    for (const std::string& folder : batch.newFolders) text += lineOf({folderWord, folder});
    for (const std::string& root : batch.roots) text += lineOf({rootWord, root});
    return text + textOfLists(batch.lists);
}

void readLine(const std::vector<std::string>& fields, JournalBatch& batch) {
    if (fields[0] == fileWord && fields.size() == 5) {
        batch.rows.push_back({numberOf<std::uint64_t>(fields[1]), numberOf<std::int64_t>(fields[2]),
                              fields[3], fields[4]});
    } else if (fields[0] == folderWord && fields.size() == 2) {
        batch.newFolders.push_back(fields[1]);
    } else if (fields[0] == rootWord && fields.size() == 2) {
        batch.roots.push_back(fields[1]);
    } else if (fields[0] == listWord && fields.size() == 3) {
        batch.lists.push_back({fields[1], fields[2]});
    } else if (fields[0] == movedWord) {
        batch.isMoved = true;
    } else if (fields[0] == doneWord) {
        batch.isDone = true;
    }
}
}  // namespace

// Each batch has the next number, so that the clock may be wrong.
std::vector<std::string> RenameJournal::names() const {
    std::vector<std::string> found;
    for (FolderEntry& entry : listFolder(folder_)) {
        const bool isBatch = entry.name.size() == nameDigits + nameEnding.size() &&
                             entry.name.ends_with(nameEnding) &&
                             parseInteger(std::string_view(entry.name).substr(0, nameDigits));
        if (isBatch) found.push_back(std::move(entry.name));
    }
    std::sort(found.begin(), found.end());
    return found;
}

bool RenameJournal::lock() {
    if (folder_.empty() || !createFolders(folder_)) return true;
    const std::string path = joinPath(folder_, "lock", nativePathStyle());
    return writeNewFile(path, {}) == Created::Failed || lock_.open(path, Access::ReadWrite);
}

bool RenameJournal::begin(std::string_view time, const JournalBatch& batch) {
    constexpr int mostTries = 10;  // other instances may begin at the same moment
    if (folder_.empty() || !createFolders(folder_)) return false;
    const std::vector<std::string> earlier = names();
    for (std::size_t i = 0; i + mostBatches <= earlier.size(); ++i) {
        removeFile(joinPath(folder_, earlier[i], nativePathStyle()), calls_);
    }
    int number = earlier.empty() ? 0 : numberOf<int>(earlier.back());
    Transfer written = Transfer::Exists;
    for (int tries = 0; tries < mostTries && written == Transfer::Exists; ++tries) {
        const std::string name = paddedNumber(++number, nameDigits) + std::string(nameEnding);
        path_ = joinPath(folder_, name, nativePathStyle());
        written = writeFile(path_, textOf(time, batch), calls_);
    }
    return written == Transfer::Done;
}

bool RenameJournal::append(std::string_view text, bool flushed) const {
    const Bytes bytes = bytesOfText(text);
    File file(calls_);
    return file.open(path_, Access::ReadWrite) && file.write(file.size(), bytes) &&
           (!flushed || calls_.flush(file.handle()));
}

bool RenameJournal::endMoves(std::string_view time, const JournalBatch& batch, bool same) {
    if (batch.rows.empty()) return removeFile(path_, calls_);
    if (!same) return replaceFile(path_, textOf(time, batch) + lineOf({movedWord}), calls_);
    return append(textOfLists(batch.lists) + lineOf({movedWord}), !batch.lists.empty());
}

bool RenameJournal::finish() {
    return append(lineOf({doneWord}), false);
}

std::optional<JournalBatch> RenameJournal::last() {
    JournalBatch batch;
    const std::vector<std::string> all = names();
    for (std::size_t i = all.size(); i > 0 && batch.rows.empty(); --i) {
        path_ = joinPath(folder_, all[i - 1], nativePathStyle());
        const auto text = readFile(path_, largestJournal);
        if (!text) return std::nullopt;
        // A line that was not finished tells nothing.
        std::string_view rest = std::string_view(*text).substr(0, text->rfind('\n') + 1);
        batch = {};
        while (!rest.empty()) readLine(fieldsOf(takeLine(rest)), batch);
    }
    return batch;
}

bool RenameJournal::drop() {
    return removeFile(path_, calls_);
}

bool RenameJournal::isBrokenOff() const {
    const std::vector<std::string> all = names();
    File file;
    if (all.empty() || !file.open(joinPath(folder_, all.back(), nativePathStyle()), Access::Read)) {
        return false;
    }
    const std::string end = lineOf({doneWord});
    const std::size_t size = std::min<std::size_t>(end.size(), file.size());
    return !std::ranges::equal(file.view(file.size() - size, size), end);
}

}  // namespace tavlo
