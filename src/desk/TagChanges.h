#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "core/Texts.h"
#include "desk/FileTable.h"

namespace tavlo {

/// The fields that a person edits, in the order in which they are shown.
enum class TagField : std::uint8_t {
    Artist,
    Title,
    Mix,
    Album,
    Year,
    Track,  ///< "7" or "7/12"
    Disk,   ///< "1" or "1/2"
    Genre,
    Comment,
    Composer,
    OriginalArtist,
    CopyRight,
    Url,
    EncodedBy,
    Bpm,
    Compilation,  ///< "1" or empty
};
inline constexpr std::size_t tagFieldCount = 16;

struct TagFieldRow {
    TagField field;
    Text caption;
    std::string (*get)(const FileRow&);
    void (*set)(ID3tag&, std::string_view);
};
/// Indexed by `TagField`.
std::span<const TagFieldRow, tagFieldCount> tagFields();

inline const TagFieldRow& tagFieldRow(TagField field) {
    return tagFields()[static_cast<std::size_t>(field)];
}

/// A cover to put into files; one without data takes the cover away.
using NewPicture = std::shared_ptr<const cAlbumArt>;

/// New values of some fields, empty ones included, and perhaps of the cover.
struct TagChanges {
    std::map<TagField, std::string> texts;
    NewPicture picture;  ///< null: as it is

    [[nodiscard]] bool isEmpty() const { return texts.empty() && picture == nullptr; }
    /// Later changes on top of these.
    void add(const TagChanges& later);
    /// Brackets at the end of a new title are its mix where the file has none. A number that is
    /// none leaves its field as it is.
    void applyTo(ID3tag& record) const;
};

/// What the selected files have in a field.
struct CommonValue {
    std::string text;  ///< of all of them, or of the first
    bool differs = false;
};

/// Edits that no file holds yet. Rows that were edited together share one set of changes.
class PendingEdits {
 public:
    void add(std::span<const RowId> rows, const TagChanges& changes);
    void drop(std::span<const RowId> rows);
    void clear() { changes_.clear(); }

    [[nodiscard]] bool isEmpty() const { return changes_.empty(); }
    [[nodiscard]] std::size_t count() const { return changes_.size(); }
    [[nodiscard]] bool has(RowId row) const { return changes_.contains(row); }
    /// Null where a row has none.
    [[nodiscard]] std::shared_ptr<const TagChanges> of(RowId row) const;
    [[nodiscard]] std::vector<RowId> rows() const;  ///< ascending

    /// A field as it will be.
    [[nodiscard]] std::string value(const FileTable& table, RowId row, TagField field) const;
    [[nodiscard]] CommonValue common(const FileTable& table, std::span<const RowId> rows,
                                     TagField field) const;

 private:
    std::unordered_map<RowId, std::shared_ptr<const TagChanges>> changes_;
};

}  // namespace tavlo
