#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "core/PathText.h"
#include "core/TextCase.h"
#include "core/Texts.h"

namespace tavlo {

enum class RenameResult : int {
    Unknown = -1,         ///< an unknown failure
    Done = 0,             ///< renamed, or the name was right already
    Skipped = 1,          ///< not readable, or neither artist nor title
    NotCreated = 2,       ///< no free name, or the move failed
    FolderNotCreated = 3  ///< the target folder could not be made
};

/// One file of a batch.
struct RenameStep {
    std::string from;  ///< full path
    std::string to;    ///< full path; the same as `from` where nothing changes
    RenameResult result = RenameResult::Done;
    Text reason = Text::FileNotCreated;  ///< why a row is skipped or not created
    bool isNumbered = false;             ///< the name that it should have is another file's
    bool isMoved = false;                ///< it bears its new name now
    std::uint64_t size = 0;              ///< bytes, when it was read for its name
    std::int64_t modified = 0;           ///< the same of the time of its last change

    [[nodiscard]] bool moves() const { return result == RenameResult::Done && to != from; }
};
using RenamePlan = std::vector<RenameStep>;

/// What is told of a row that failed; nothing of any other.
struct RenameMessage {
    Text text;
    std::string_view about;
};
std::optional<RenameMessage> messageOf(const RenameStep& step);

/// The names in the folders that a batch touches, letters compared without case; a folder is listed
/// when it is first asked for.
class TakenNames {
 public:
    using Lister = std::function<std::vector<std::string>(const std::string& folder)>;
    TakenNames(PathStyle style, Lister list) : style_(style), list_(std::move(list)) {}
    TakenNames(const TakenNames&) = delete;
    TakenNames& operator=(const TakenNames&) = delete;

    [[nodiscard]] bool isTaken(std::string_view path);
    void add(std::string_view path) { ++countOf(path); }
    void remove(std::string_view path);

 private:
    using Names = std::unordered_map<std::uint64_t, std::uint32_t>;

    Names& namesIn(std::string_view folder);
    std::uint32_t& countOf(std::string_view path) {
        return namesIn(folderOf(path, style_))[hashNoCase(fileNameOf(path, style_))];
    }

    PathStyle style_;
    Lister list_;
    std::unordered_map<std::uint64_t, Names> folders_;
    std::string lastFolder_;
    Names* lastNames_ = nullptr;  // the names in `lastFolder_`
};

/// The path itself where it is free, else the first of "name (1).ext", "name (2).ext" ... that is;
/// empty when there is none.
std::string freePath(const std::string& wanted, PathStyle style,
                     const std::function<bool(std::string_view path)>& isFree);

/// Settles which name each moving file gets: names that the batch gives up are free, a name that
/// two files want goes to the first of them, and a file's own name is free to it unless an earlier
/// file got it.
void settleNames(RenamePlan& plan, TakenNames& taken, PathStyle style);

/// One move of a settled plan.
struct MoveStep {
    std::size_t row;
    bool aside;  ///< under a name for the meantime, because a circle of names begins with this file
};

/// The order in which the moves of a settled plan can be made: a file whose new name another one
/// still bears comes after that one. The moves of one circle stand together, from the one that goes
/// aside to the one that brings the same file to its name.
std::vector<MoveStep> moveOrder(const RenamePlan& plan);

}  // namespace tavlo
