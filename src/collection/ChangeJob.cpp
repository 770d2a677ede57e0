#include "collection/ChangeJob.h"

#include <string>
#include <vector>

#include "collection/JobFiles.h"
#include "collection/ReverseTemplate.h"
#include "collection/TagColumns.h"
#include "core/JsonLine.h"
#include "platform/PlainText.h"
#include "platform/Rescue.h"
#include "tags/AudioFile.h"
#include "tags/UpdateTags.h"

namespace tavlo {

namespace {
// What the job makes of a record: fields from the file's name, then the fields that were given.
class Filling {
 public:
    explicit Filling(const JobOptions& options) {
        if (options.nameTemplate) names_.CompileReverseTemplate(*options.nameTemplate);
        for (const TagColumn& column : tagColumns()) {
            // Empty ones leave theirs alone.
            const auto& text = options.*column.option;
            if (!text || text->empty() || (column.name == "TrackNumber" && *text == "0")) continue;
            fields_.*column.given = *text;
            hasFields_ = true;
        }
    }

    [[nodiscard]] bool isEmpty() const { return !hasFields_ && !names_.hasFields(); }
    [[nodiscard]] bool readsNames() const { return names_.hasFields(); }

    // False where neither the name nor an option gives anything.
    bool fill(const std::string& path, ID3tag& record) const {
        const bool fits = names_.RetrieveTags(path, nativePathStyle(), record);
        record.SetBasicFields(fields_);
        return fits || hasFields_;
    }

 private:
    ReverseTemplate names_;
    BasicFields fields_;
    bool hasFields_ = false;
};

struct Change {
    const TagColumn* field;
    std::string from, to;
};

std::vector<Change> changesOf(const ID3tag& before, const std::string& path,
                              const Filling& filling) {
    ID3tag after = before;
    filling.fill(path, after);
    after.SplitTitle();
    std::vector<Change> changes;
    for (const TagColumn& field : tagColumns()) {
        std::string from = field.get(before);
        std::string to = field.get(after);
        if (from != to) changes.push_back({&field, std::move(from), std::move(to)});
    }
    return changes;
}

class ChangeJob {
 public:
    ChangeJob(Services& services, const Filling& filling)
        : services_(services),
          filling_(filling),
          ansi_(services.ansiCodePage),
          context_{
              ansi_,         tagSettings(services.settings), services.errors, services.progress,
              systemCalls(), services.options.dryRun,        {rescueFolder()}} {}

    // False when the output takes no more.
    bool run(const cFilesCollection& files) {
        services_.progress.setRange(files.count());
        for (std::size_t i = 1; i <= files.count(); ++i) {
            const std::string subPath = files.GetFileSubPath(i);
            changeFile(files.GetFile(i), subPath);
            if (!flush(outputBlock)) return false;
            services_.progress.report(subPath);
            services_.progress.step();
            services_.progress.pumpMessages();
            if (services_.cancel.load(std::memory_order_relaxed)) break;
        }
        services_.progress.setRange(0);
        if (!services_.options.json) out_ += summary();
        return flush(1);
    }

 private:
    static constexpr std::size_t outputBlock = 1U << 16U;  // bytes written at once

    // A record that holds nothing but the new values changes nothing else. What a name tells may
    // also empty a field; that shows against what was read only.
    std::optional<ID3tag> filledRecord(const std::string& path) const {
        ID3tag record =
            filling_.readsNames() ? ReadAudioFile(path, {ansi_, ReadDepth::Tags}) : ID3tag();
        record.Path = path;
        record.FileType = GetFileType(path);
        record.OK = true;
        return filling_.fill(path, record) ? std::optional(std::move(record)) : std::nullopt;
    }

    void changeFile(const std::string& path, const std::string& subPath) {
        const bool dryRun = services_.options.dryRun;
        const bool json = services_.options.json;
        std::optional<ID3tag> record = filledRecord(path);
        if (!record) return skip(path);
        ID3tag before;
        if (!dryRun) record->ClearReadOnlyFlag();
        const TagUpdate result = UpdateTags(*record, context_, json || dryRun ? &before : nullptr);
        if (result == TagUpdate::Refused) {
            tellFailure(path, refusalText(record->Refused).value_or(Text::UnknownError));
            return;
        }
        const bool isSame = result == TagUpdate::Unchanged;
        ++(isSame ? unchanged_ : changed_);
        if (!json && !dryRun) return;
        const std::vector<Change> changes = changesOf(before, path, filling_);
        if (json) {
            tell(path, isSame ? std::vector<Change>() : changes,
                 isSame   ? "unchanged"
                 : dryRun ? "planned"
                          : "changed");
        } else if (!isSame) {
            tellText(subPath, changes);
        }
    }

    void skip(const std::string& path) {
        ++skipped_;
        if (!services_.options.json) return;
        tellLine(path, nullptr, "skipped", services_.texts.get(Text::NameDoesNotFit));
    }

    void tellText(const std::string& subPath, const std::vector<Change>& changes) {
        if (changes.empty()) out_ += subPath + "  " + services_.texts.get(Text::TagsAnew) + '\n';
        for (const Change& change : changes) {
            out_ += withoutControls(subPath + "  " + services_.texts.get(change.field->caption) +
                                    ": " + change.from + " -> " + change.to) +
                    '\n';
        }
    }

    // One line for each change, or one that says that there is none.
    void tell(const std::string& path, const std::vector<Change>& changes, std::string_view done) {
        if (changes.empty()) tellLine(path, nullptr, done, {});
        for (const Change& change : changes) tellLine(path, &change, done, {});
    }

    void tellFailure(const std::string& path, Text text) {
        if (!services_.options.json) return;
        tellLine(path, nullptr, "failed", services_.texts.get(text, path));
    }

    void tellLine(const std::string& path, const Change* change, std::string_view result,
                  std::string_view message) {
        JsonLine line;
        line.addName("Path", path);
        if (change != nullptr) {
            line.add("Field", change->field->name);
            line.add("From", change->from);
            line.add("To", change->to);
        }
        line.add("Result", result);
        if (!message.empty()) line.add("Message", message);
        out_ += line.finish();
    }

    [[nodiscard]] std::string summary() const {
        const Texts& texts = services_.texts;
        const Text changed =
            services_.options.dryRun ? Text::SummaryWouldChange : Text::SummaryChanged;
        std::string line = texts.get(changed, std::to_string(changed_)) + "  " +
                           texts.get(Text::SummaryUnchanged, std::to_string(unchanged_));
        if (skipped_ > 0) {
            line += "  " + texts.get(Text::SummaryNotFitting, std::to_string(skipped_));
        }
        const std::size_t errors = services_.errors.count();
        if (errors > 0) line += "  " + texts.get(Text::SummaryErrors, std::to_string(errors));
        return line + "\n";
    }

    bool flush(std::size_t least) {
        if (out_.size() < least) return true;
        const bool written = services_.output.write(out_);
        out_.clear();
        return written;
    }

    Services& services_;
    const Filling& filling_;
    const CodePage ansi_;
    const WriteContext context_;
    std::string out_;
    std::size_t changed_ = 0, unchanged_ = 0, skipped_ = 0;
};
}  // namespace

int changeTags(Services& services) {
    const Filling filling(services.options);
    if (filling.isEmpty() && services.options.nameTemplate) {
        services.errors.report(Text::TemplateWithoutFields, *services.options.nameTemplate);
        return unusableCommandLine;
    }
    if (filling.isEmpty()) {
        services.errors.report(Text::NothingToChange, "/a /t /m /l /y /tn /g /template");
        return unusableCommandLine;
    }
    cFilesCollection files(services.progress, services.cancel);
    const JobFiles wanted{FileType::Tagged, Text::FormatNotWritten};
    if (!gatherFilesToChange(services, wanted, files)) return unusableCommandLine;
    // A scan that was cancelled found a part of the files only: then nothing is changed.
    if (!services.cancel.load() && !ChangeJob(services, filling).run(files)) {
        services.errors.report(Text::OutputNotWritten);
    }
    if (services.cancel.load()) services.errors.report(Text::Cancelled);
    return services.errors.exitCode();
}

}  // namespace tavlo
