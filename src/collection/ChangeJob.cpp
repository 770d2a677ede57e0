#include "collection/ChangeJob.h"

#include <array>
#include <string>
#include <vector>

#include "collection/JobFiles.h"
#include "collection/JsonText.h"
#include "tags/AudioFile.h"
#include "tags/UpdateTags.h"

namespace tavlo {

namespace {
template <auto getter>
std::string gotten(const ID3tag& record) {
    return std::string((record.*getter)());
}

struct ChangeField {
    std::string_view name;
    Text caption;
    std::string_view BasicFields::*given;
    std::optional<std::string> JobOptions::*option;
    std::string (*get)(const ID3tag&);
};

// clang-format off
constexpr std::array<ChangeField, 7> changeFields{{
    {"Artist", Text::ColumnArtist, &BasicFields::artist, &JobOptions::artist,
     gotten<&ID3tag::GetArtist>},
    {"Title", Text::ColumnTitle, &BasicFields::title, &JobOptions::title,
     gotten<&ID3tag::GetTitle>},
    {"Mix", Text::ColumnMix, &BasicFields::mix, &JobOptions::mix, gotten<&ID3tag::GetMix>},
    {"Album", Text::ColumnAlbum, &BasicFields::album, &JobOptions::album,
     gotten<&ID3tag::GetAlbum>},
    {"Year", Text::ColumnYear, &BasicFields::year, &JobOptions::year, gotten<&ID3tag::GetYear>},
    {"TrackNumber", Text::ColumnTrack, &BasicFields::number, &JobOptions::trackNumber,
     [](const ID3tag& r) { return r.GetNumberAndCount(); }},
    {"Genre", Text::ColumnGenre, &BasicFields::genre, &JobOptions::genre,
     gotten<&ID3tag::GetGenre>},
}};
// clang-format on

// The fields that were given; empty ones leave theirs alone.
std::optional<BasicFields> wantedFields(const JobOptions& options) {
    BasicFields fields;
    bool any = false;
    for (const ChangeField& field : changeFields) {
        const auto& text = options.*field.option;
        if (!text || text->empty() || (field.name == "TrackNumber" && *text == "0")) continue;
        fields.*field.given = *text;
        any = true;
    }
    return any ? std::optional(fields) : std::nullopt;
}

struct Change {
    const ChangeField* field;
    std::string from, to;
};

std::vector<Change> changesOf(const ID3tag& before, const BasicFields& fields) {
    ID3tag after = before;
    after.SetBasicFields(fields);
    after.SplitTitle();
    std::vector<Change> changes;
    for (const ChangeField& field : changeFields) {
        std::string from = field.get(before), to = field.get(after);
        if (from != to) changes.push_back({&field, std::move(from), std::move(to)});
    }
    return changes;
}

class ChangeJob {
 public:
    ChangeJob(Services& services, const BasicFields& fields)
        : services_(services),
          fields_(fields),
          ansi_(services.ansiCodePage),
          context_{ansi_,           tagSettings(services.settings),
                   services.errors, services.progress,
                   systemCalls(),   services.options.dryRun} {}

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

    // A record that holds nothing but the new values changes nothing else.
    void changeFile(const std::string& path, const std::string& subPath) {
        const bool dryRun = services_.options.dryRun, json = services_.options.json;
        ID3tag record, before;
        record.Path = path;
        record.FileType = GetFileType(path);
        record.OK = true;
        if (dryRun) {
            record.SetBasicFields(fields_);
        } else {
            record.UpdateBasicFields(fields_);
        }
        const TagUpdate result = UpdateTags(record, context_, json || dryRun ? &before : nullptr);
        if (result == TagUpdate::Refused) {
            tellFailure(path, refusalText(record.Refused).value_or(Text::UnknownError));
            return;
        }
        const bool isSame = result == TagUpdate::Unchanged;
        ++(isSame ? unchanged_ : changed_);
        if (!json && !dryRun) return;
        const std::vector<Change> changes = changesOf(before, fields_);
        if (json) {
            tell(path, isSame ? std::vector<Change>() : changes,
                 isSame   ? "unchanged"
                 : dryRun ? "planned"
                          : "changed");
        } else if (!isSame) {
            tellText(subPath, changes);
        }
    }

    void tellText(const std::string& subPath, const std::vector<Change>& changes) {
        if (changes.empty()) out_ += subPath + "  " + services_.texts.get(Text::TagsAnew) + '\n';
        for (const Change& change : changes) {
            out_ += subPath + "  " + services_.texts.get(change.field->caption) + ": " +
                    change.from + " -> " + change.to + "\n";
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
        rapidjson::StringBuffer buffer;
        JsonWriter json(buffer);
        json.StartObject();
        json.Key("Path");
        writeName(json, path);
        const auto add = [&](const char* key, std::string_view text) {
            json.Key(key);
            writeText(json, text);
        };
        if (change != nullptr) {
            add("Field", change->field->name);
            add("From", change->from);
            add("To", change->to);
        }
        add("Result", result);
        if (!message.empty()) add("Message", message);
        json.EndObject();
        out_.append(buffer.GetString(), buffer.GetSize()) += '\n';
    }

    [[nodiscard]] std::string summary() const {
        const Texts& texts = services_.texts;
        const Text changed =
            services_.options.dryRun ? Text::SummaryWouldChange : Text::SummaryChanged;
        std::string line = texts.get(changed, std::to_string(changed_)) + "  " +
                           texts.get(Text::SummaryUnchanged, std::to_string(unchanged_));
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
    const BasicFields fields_;
    const CodePage ansi_;
    const WriteContext context_;
    std::string out_;
    std::size_t changed_ = 0, unchanged_ = 0;
};
}  // namespace

int changeTags(Services& services) {
    const auto fields = wantedFields(services.options);
    if (!fields) {
        services.errors.report(Text::NothingToChange, "/a /t /m /l /y /tn /g");
        return unusableCommandLine;
    }
    cFilesCollection files(services.progress, services.cancel);
    const JobFiles wanted{FileType::Tagged, Text::FormatNotWritten};
    if (!gatherFilesToChange(services, wanted, files)) return unusableCommandLine;
    // A scan that was cancelled found a part of the files only: then nothing is changed.
    if (!services.cancel.load() && !ChangeJob(services, *fields).run(files)) {
        services.errors.report(Text::OutputNotWritten);
    }
    if (services.cancel.load()) services.errors.report(Text::Cancelled);
    return services.errors.exitCode();
}

}  // namespace tavlo
