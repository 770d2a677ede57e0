#include "desk/FileTable.h"

#include <algorithm>
#include <array>

#include "core/PathText.h"
#include "core/TextCase.h"

namespace tavlo {

namespace {
// The texts that the filter looks into, beside the folder.
constexpr std::array searched{RowText::Name,  RowText::Artist, RowText::Title, RowText::Mix,
                              RowText::Album, RowText::Year,   RowText::Genre, RowText::Comment};

std::vector<std::string> wordsOf(std::string_view text) {
    std::string folded;
    appendLowerCase(folded, text);
    std::vector<std::string> words;
    for (std::size_t at = 0; (at = folded.find_first_not_of(' ', at)) != std::string::npos;) {
        const std::size_t end = std::min(folded.find(' ', at), folded.size());
        words.push_back(folded.substr(at, end - at));
        at = end;
    }
    return words;
}

void addTo(Sums& sums, const FileRow& row) {
    ++sums.files;
    sums.bytes += row.size;
    sums.seconds += static_cast<std::uint64_t>(row.seconds);
}

// A row and where its key lies; the key's first bytes stand beside it, so that most comparisons
// touch nothing else.
struct SortEntry {
    std::uint64_t front;
    std::uint32_t offset, length;
    RowId id;
};

std::uint64_t frontOf(std::string_view key) {
    std::uint64_t front = 0;
    for (std::size_t i = 0; i < sizeof front; ++i) {
        front = front << 8U | (i < key.size() ? static_cast<unsigned char>(key[i]) : 0U);
    }
    return front;
}
}  // namespace

void FileTable::clear(std::string_view baseFolder) {
    baseFolder_ = baseFolder;
    rows_ = {};
    order_ = {};
    shown_ = {};
    matching_ = {};
    stores_ = {};
    replaced_ = {};
    sums_ = {};
}

void FileTable::append(std::span<const FileRow> rows, const std::shared_ptr<TextStore>& store) {
    if (stores_.empty() || stores_.back() != store) stores_.push_back(store);
    std::vector<RowId> added;
    added.reserve(rows.size());
    for (const FileRow& row : rows) {
        added.push_back(static_cast<RowId>(rows_.size()));
        rows_.push_back(row);
        matching_.push_back(matches(row));
        addTo(sums_, row);
    }
    if (sortColumn_) {
        insertSorted(std::move(added));
        return showMatching();
    }
    order_.insert(order_.end(), added.begin(), added.end());
    std::ranges::copy_if(added, std::back_inserter(shown_),
                         [&](RowId id) { return matching_[id]; });
}

void FileTable::replace(RowId id, const ID3tag& record, std::string_view path) {
    FileRow& row = rows_[id];
    sums_.bytes -= row.size;
    sums_.seconds -= static_cast<std::uint64_t>(row.seconds);
    row = rowOf(record, path, replaced_);
    if (!matching_[id]) matching_[id] = matches(row);
    sums_.bytes += row.size;
    sums_.seconds += static_cast<std::uint64_t>(row.seconds);
}

void FileTable::remove(std::span<const RowId> ids) {
    std::vector<bool> isGone(rows_.size());
    for (const RowId id : ids) isGone[id] = true;
    std::erase_if(order_, [&](RowId id) { return isGone[id]; });
    sums_ = sumsOf(order_);
    showMatching();
}

std::optional<std::size_t> FileTable::placeOf(RowId id) const {
    const auto found = std::ranges::find(shown_, id);
    if (found == shown_.end()) return std::nullopt;
    return static_cast<std::size_t>(found - shown_.begin());
}

std::optional<RowId> FileTable::rowOfPath(std::string_view path) const {
    const std::string_view name = fileNameOf(path, nativePathStyle());
    const auto found = std::ranges::find_if(order_, [&](RowId id) {
        return rows_[id].text(RowText::Name) == name && rows_[id].path() == path;
    });
    return found == order_.end() ? std::nullopt : std::optional(*found);
}

std::string FileTable::keyOf(RowId id) const {
    std::string key;
    appendSortKey(key, rows_[id], *sortColumn_);
    return key;
}

void FileTable::sortRows(std::vector<RowId>& ids) const {
    std::string keys;
    std::vector<SortEntry> entries;
    entries.reserve(ids.size());
    for (const RowId id : ids) {
        const std::size_t offset = keys.size();
        appendSortKey(keys, rows_[id], *sortColumn_);
        entries.push_back({frontOf(std::string_view(keys).substr(offset)),
                           static_cast<std::uint32_t>(offset),
                           static_cast<std::uint32_t>(keys.size() - offset), id});
    }
    const auto less = [&keys](const SortEntry& a, const SortEntry& b) {
        if (a.front != b.front) return a.front < b.front;
        const std::string_view all = keys;
        return all.substr(a.offset, a.length) < all.substr(b.offset, b.length);
    };
    if (descending_) {
        std::ranges::stable_sort(entries, [&](const auto& a, const auto& b) { return less(b, a); });
    } else {
        std::ranges::stable_sort(entries, less);
    }
    std::ranges::transform(entries, ids.begin(), &SortEntry::id);
}

void FileTable::sortBy(ListColumn column, bool descending) {
    sortColumn_ = column;
    descending_ = descending;
    sortRows(order_);
    showMatching();
}

void FileTable::unsort() {
    sortColumn_.reset();
    std::ranges::sort(order_);
    showMatching();
}

// Behind rows that are equal. The few new ones look for their places; the many that are there are
// only moved.
void FileTable::insertSorted(std::vector<RowId> added) {
    sortRows(added);
    std::vector<RowId> merged;
    merged.reserve(order_.size() + added.size());
    auto from = order_.begin();
    for (const RowId id : added) {
        const std::string key = keyOf(id);
        const auto isBefore = [&](const std::string& wanted, RowId there) {
            return descending_ ? keyOf(there) < wanted : wanted < keyOf(there);
        };
        const auto place = std::upper_bound(from, order_.end(), key, isBefore);
        merged.insert(merged.end(), from, place);
        merged.push_back(id);
        from = place;
    }
    merged.insert(merged.end(), from, order_.end());
    order_ = std::move(merged);
}

bool FileTable::matches(const FileRow& row) {
    if (foldedWords_.empty()) return true;
    folded_.clear();
    for (const RowText which : searched) {
        const std::string_view text = row.text(which);
        if (text.empty()) continue;
        appendLowerCase(folded_, text);
        folded_ += '\n';
    }
    const std::string_view folder = row.text(RowText::Folder);
    appendLowerCase(folded_, folder.substr(std::min(baseFolder_.size(), folder.size())));
    return std::ranges::all_of(foldedWords_, [&](const std::string& word) {
        return folded_.find(word) != std::string::npos;
    });
}

// A filter that only grew can hide rows, not bring any back.
void FileTable::filter(std::string_view words) {
    const bool narrows = words.starts_with(words_);
    words_ = words;
    foldedWords_ = wordsOf(words);
    for (const RowId id : order_) {
        if (!narrows || matching_[id]) matching_[id] = matches(rows_[id]);
    }
    showMatching();
}

void FileTable::showMatching() {
    shown_.clear();
    std::ranges::copy_if(order_, std::back_inserter(shown_),
                         [&](RowId id) { return matching_[id]; });
}

Sums FileTable::sumsOf(std::span<const RowId> ids) const {
    Sums sums;
    for (const RowId id : ids) addTo(sums, rows_[id]);
    return sums;
}

}  // namespace tavlo
