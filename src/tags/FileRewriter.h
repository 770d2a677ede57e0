#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/File.h"
#include "platform/Rescue.h"
#include "tags/NewContent.h"
#include "tags/RewriteWays.h"

namespace tavlo {

/// The bytes from one offset to another; none where the first is not before the second.
std::string bytesBetween(File& file, std::uint64_t begin, std::uint64_t end);

enum class Rewrite {
    Unchanged,   ///< the file says so already
    Done,        ///< in place, or by a new file in its place
    NotCreated,  ///< no temporary file could be made beside it; the file is as it was
    NotWritten,  ///< the disk refused; the file is as it was
    Replaced,    ///< another program changed or replaced it meanwhile; that one's file stays
    Torn         ///< the disk refused, the old bytes as well; the next start puts them back
};

/// What becomes of a file when its ends change.
enum class Way {
    None,     ///< it says so already
    InPlace,  ///< other names of the file keep to it
    NewFile,  ///< in its place; other names go on leading to the old one
    NotKnown  ///< it cannot be read
};

/// Changes the ends of a file that is open for writing. Whatever fails or is killed, the file is
/// the old or the new one: at once, or after the next start has looked for rescue files.
/// - In place, where everything that differs lies within one page that the disk writes over, or
///   where the file's end is only cut off.
/// - In place with the old bytes in a rescue file, where much more than that stays as it is.
/// - Else by a new file, which is written beside the old one, named after it with ".tmp", brought
///   to the disk and put in its place in one step; it then has the old one's permissions, owner
///   and attributes, and `file` is closed.
Rewrite rewriteEnds(File& file, const std::string& path, const NewEnds& ends, bool keepTime,
                    const RewriteWays& ways = {});

Way wayOf(File& file, const NewEnds& ends, const RewriteWays& ways = {});

/// Whether the file would change at all.
bool wouldChange(File& file, const NewEnds& ends);

/// Changes several files of one disk's calls; those that need their old bytes kept share one
/// rescue file, and so wait for the disk only once.
class RewriteGroup {
 public:
    static constexpr std::size_t mostFiles = 16;
    static constexpr std::uint64_t mostSaved = std::uint64_t{16} << 20U;  // bytes

    explicit RewriteGroup(RewriteWays ways) : ways_(std::move(ways)) {}

    /// Changes a file at once or leaves it to `commit`, until which it has to stay as it is.
    void add(File& file, const std::string& path, const NewEnds& ends, bool keepTime);
    /// Whether it is time to commit.
    [[nodiscard]] bool isFull() const;
    /// What became of each file since the last time, in the order in which they were added.
    std::vector<Rewrite> commit();

 private:
    struct Waiting {
        std::size_t number;
        File& file;
        SavedFile saved;
        bool keepTime;
    };
    bool save(Waiting& waiting, const NewContent& content,
              const std::vector<NewContent::Change>& changes);
    Rewrite write(const Waiting& waiting);
    Rewrite takeBack(const Waiting& waiting);
    bool isUntouched(const Waiting& waiting);

    const RewriteWays ways_;
    std::vector<Rewrite> results_;
    std::vector<Waiting> waiting_;
    std::unique_ptr<Rescue> rescue_;
};

}  // namespace tavlo
