#pragma once

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tags/FileRewriter.h"
#include "tags/ID3tag.h"
#include "tags/TagReading.h"
#include "tags/TagWriting.h"

namespace tavlo {

enum class TagUpdate {
    Refused,    ///< nothing was written; `Refused` says why, `OK` is false and `Path` empty
    Unchanged,  ///< the file says so already
    Written
};

/// Writes the edited fields of a record into its file: APEv2, ID3v2 and ID3v1 of an MP3 file as
/// the settings and the tags that are there ask for, APEv2 alone of Musepack, WavPack and Monkey's
/// Audio files. Whatever else the tags hold, as the file has them now, stays. Where only the ID3v1
/// block may not be made, or APEv2 was written but no ID3v2 tag may be, the answer is `Written`,
/// and yet `OK` is false and `Path` empty. Failures are reported; `before`, if given, gets the
/// record as the file had it. With `dryRun` nothing is changed, not even the file's attributes.
TagUpdate UpdateTags(ID3tag& record, const WriteContext& context, ID3tag* before = nullptr);

/// The same in two steps, so that several files wait for the disk together.
class TagUpdating {
 public:
    TagUpdating(ID3tag& record, const WriteContext& context, ID3tag* before = nullptr);
    ~TagUpdating();
    TagUpdating(const TagUpdating&) = delete;
    TagUpdating& operator=(const TagUpdating&) = delete;

    /// Plans the change and adds it to the group; an answer where that is all. Otherwise the file
    /// stays open until the group's commit, whose result `finish` gets.
    std::optional<TagUpdate> prepare(RewriteGroup& group);
    TagUpdate finish(Rewrite result);

 private:
    struct Work;

    ID3tag& record_;
    const WriteContext& context_;
    ID3tag* const before_;
    std::unique_ptr<Work> work_;
};

/// Whether tags of files of this type are written at all.
bool hasWriter(FileTypes type);

/// Whether and why `UpdateTags` would leave the file of a record that was just read alone.
Refusal expectedRefusal(const ID3tag& record, const TagSettings& settings);

/// What a person is told of a refusal to write the file of a record that was read from it; nothing
/// where it is no failure. `name` stands for the file.
std::optional<std::string> refusalLine(Refusal refusal, const ID3tag& record, std::string_view name,
                                       const Texts& texts);

/// Takes tags of these kinds off the record's file, each as its reader finds it and no byte more:
/// of ID3v2 all that stand behind one another. `removed` gets the kinds that were there. Whatever
/// else the file holds stays. Failures are reported; a file is refused as by `UpdateTags`, but for
/// one without sound, which is left alone only behind a link.
TagUpdate RemoveTags(ID3tag& record, std::span<const TagKind> kinds, const WriteContext& context,
                     std::vector<TagKind>& removed);

}  // namespace tavlo
