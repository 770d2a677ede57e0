#include "collection/ChangeJob.h"

#include <string>
#include <vector>

#include "collection/ReverseTemplate.h"
#include "collection/TagColumns.h"
#include "collection/TagJob.h"
#include "platform/PlainText.h"
#include "platform/Rescue.h"
#include "tags/AudioFile.h"

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

    // The path as text, as far as it is read.
    [[nodiscard]] std::optional<std::string> readablePath(const std::string& path,
                                                          const CodePage& ansi) const {
        return readsNames() ? names_.decodedPath(path, nativePathStyle(), ansi) : path;
    }

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

std::vector<Change> changesOf(const ID3tag& before, const ID3tag& after) {
    std::vector<Change> changes;
    for (const TagColumn& field : tagColumns()) {
        std::string from = field.get(before);
        std::string to = field.get(after);
        if (from != to) changes.push_back({&field, std::move(from), std::move(to)});
    }
    return changes;
}

class ChangeJob : public TagJob {
 public:
    ChangeJob(Services& services, const Filling& filling) : TagJob(services), filling_(filling) {}

 private:
    // A record that holds nothing but the new values changes nothing else. What a name tells may
    // also empty a field; that shows against what was read only.
    std::optional<ID3tag> filledRecord(const std::string& path, const std::string& readable) const {
        ID3tag record =
            filling_.readsNames() ? ReadAudioFile(path, {ansi(), ReadDepth::Tags}) : ID3tag();
        record.Path = path;
        record.FileType = GetFileType(path);
        record.OK = true;
        return filling_.fill(readable, record) ? std::optional(std::move(record)) : std::nullopt;
    }

    void changeFile(const std::string& path, const std::string& subPath) override {
        const auto readable = filling_.readablePath(path, ansi());
        if (!readable) {
            services_.errors.report(Text::NameNotDecoded, path);
            return skip(path, Text::NameNotDecoded);
        }
        std::optional<ID3tag> record = filledRecord(path, *readable);
        if (!record) return skip(path, Text::NameDoesNotFit);
        begin(std::make_unique<TagWork>(context(), path, subPath, std::move(*record)));
    }

    void tellWork(TagWork& work, TagUpdate result) override {
        const std::string_view word = counted(result);
        if (result == TagUpdate::Refused) return tell(work.path, {}, word);
        ID3tag after = work.before;
        filling_.fill(*filling_.readablePath(work.path, ansi()), after);
        after.SplitTitle();
        tellStaying(work.path, work.before, after);
        const bool isSame = result == TagUpdate::Unchanged;
        if (isJson()) {
            tell(work.path, isSame ? std::vector<Change>() : changesOf(work.before, after), word);
        } else if (isDryRun() && !isSame) {
            tellChanges(work.subPath, changesOf(work.before, after));
        }
    }

    // Files are told in their order.
    void skip(const std::string& path, Text why) {
        commit();
        countSkipped();
        if (!isJson()) return;
        JsonLine line;
        line.addName("Path", path);
        tellJson(line, "skipped", services_.texts.get(why, path));
    }

    // A tag that the settings leave alone may still hold what was to be changed.
    void tellStaying(const std::string& path, const ID3tag& before, const ID3tag& after) {
        if (!notes().shown) return;
        std::string names;
        for (const TagColumn& field : tagColumns()) {
            const std::string wanted = field.get(after);
            if (wanted == field.get(before) ||
                !staysOld(field.get(before), wanted, field.get(*notes().shown))) {
                continue;
            }
            names += (names.empty() ? "" : ", ") + text(field.caption);
        }
        if (!names.empty()) {
            note(withoutControls(path) + ": " + services_.texts.get(Text::FieldsStay, names));
        }
    }

    void tellChanges(const std::string& subPath, const std::vector<Change>& changes) {
        if (changes.empty()) tellText(subPath + "  " + text(Text::TagsAnew));
        for (const Change& change : changes) {
            tellText(subPath + "  " + text(change.field->caption) + ": " + change.from + " -> " +
                     change.to);
        }
    }

    // One line for each change, or one that says that there is none.
    void tell(const std::string& path, const std::vector<Change>& changes,
              std::string_view result) {
        if (!isJson()) return;
        if (changes.empty()) tellLine(path, nullptr, result);
        for (const Change& change : changes) tellLine(path, &change, result);
    }

    void tellLine(const std::string& path, const Change* change, std::string_view result) {
        JsonLine line;
        line.addName("Path", path);
        if (change != nullptr) {
            line.add("Field", change->field->name);
            line.add("From", change->from);
            line.add("To", change->to);
        }
        tellJson(line, result);
    }

    const Filling& filling_;
};
}  // namespace

int changeTags(Services& services) {
    const auto options = decodedOptions(services);
    if (!options) return unusableCommandLine;
    const Filling filling(*options);
    if (filling.isEmpty() && options->nameTemplate) {
        services.errors.report(Text::TemplateWithoutFields, *options->nameTemplate);
        return unusableCommandLine;
    }
    if (filling.isEmpty()) {
        services.errors.report(Text::NothingToChange, "/a /t /m /l /y /tn /g /template");
        return unusableCommandLine;
    }
    return ChangeJob(services, filling).run();
}

}  // namespace tavlo
