#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "collection/cFilesCollection.h"
#include "core/JsonLine.h"
#include "core/StartUp.h"
#include "tags/UpdateTags.h"

namespace tavlo {

/// A file whose tags are being changed, from its plan to what is told of it.
struct TagWork {
    TagWork(const WriteContext& job, std::string path, std::string subPath, ID3tag record);

    const std::string path, subPath;
    ID3tag record, before;
    WriteNotes notes;
    const WriteContext context;  ///< the job's, with these notes
    TagUpdating updating{record, context, &before};
    std::optional<TagUpdate> answer;
    std::optional<FileId> id;
};

/// A job that changes the tags of files, one after the other: its progress, cancel and sums, and
/// its output in text or JSON.
class TagJob {
 public:
    explicit TagJob(Services& services);
    TagJob(const TagJob&) = delete;
    TagJob& operator=(const TagJob&) = delete;
    virtual ~TagJob() = default;

    /// Changes the tags of all files that the command line names; gives the process's exit code.
    int run();

 protected:
    /// Changes one file, or only says what would be changed.
    virtual void changeFile(const std::string& path, const std::string& subPath) = 0;
    /// Tells what came of a file that was begun.
    virtual void tellWork(TagWork&, TagUpdate) {}

    /// Plans a file's change; some are carried out and told together.
    void begin(std::unique_ptr<TagWork> work);
    /// Carries out and tells what was begun.
    void commit();

    [[nodiscard]] bool isJson() const { return services_.options.json; }
    [[nodiscard]] bool isDryRun() const { return services_.options.dryRun; }
    [[nodiscard]] const CodePage& ansi() const { return ansi_; }
    [[nodiscard]] const WriteContext& context() const { return context_; }
    [[nodiscard]] const WriteNotes& notes() const { return notes_; }
    [[nodiscard]] std::string text(Text text) const { return services_.texts.get(text); }

    /// Counts a file and gives JSON's word for what came of it.
    std::string_view counted(TagUpdate result);
    /// The file is left alone, which is no failure of its own.
    void countSkipped() { ++skipped_; }
    /// Tells what is to be known of a file and is no failure.
    void note(const std::string& line);
    /// The line of a file; what was told of it is the message, unless an earlier line has that.
    void tellJson(JsonLine& line, std::string_view result, std::string message = {});
    void tellText(const std::string& line);

    Services& services_;

 private:
    /// Whether a file is begun already under another name.
    [[nodiscard]] bool isBegun(const std::optional<FileId>& id) const;
    bool changeAll(const cFilesCollection& files);
    [[nodiscard]] std::string takeMessage();
    [[nodiscard]] std::string summary() const;
    bool flush(std::size_t least);

    const CodePage ansi_;
    WriteNotes notes_;
    const WriteContext context_;
    RewriteGroup group_;
    std::vector<std::unique_ptr<TagWork>> begun_;
    std::string out_;
    std::size_t changed_ = 0, unchanged_ = 0, skipped_ = 0;
};

}  // namespace tavlo
