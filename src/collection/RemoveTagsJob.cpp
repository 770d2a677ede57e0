#include "collection/RemoveTagsJob.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <vector>

#include "collection/JobFiles.h"
#include "collection/TagJob.h"
#include "platform/PlainText.h"

namespace tavlo {

namespace {
struct KindRow {
    TagKind kind;
    std::string_view word, name;
};
constexpr std::array<KindRow, 3> kinds{{{TagKind::ID3v1, "id3v1", "ID3v1"},
                                        {TagKind::ID3v2, "id3v2", "ID3v2"},
                                        {TagKind::APEv2, "ape", "APEv2"}}};

std::optional<TagKind> kindOf(std::string_view word) {
    const auto* row =
        std::ranges::find_if(kinds, [&](const KindRow& r) { return sameAscii(word, r.word); });
    return row == kinds.end() ? std::nullopt : std::optional(row->kind);
}

std::string nameOf(TagKind kind) {
    return std::string(std::ranges::find(kinds, kind, &KindRow::kind)->name);
}

// Nothing where a word is none of the kinds; it is reported.
std::optional<std::vector<TagKind>> wantedKinds(Services& services) {
    std::vector<TagKind> wanted;
    std::string_view rest = *services.options.tagKinds;
    do {
        const std::size_t comma = std::min(rest.find(','), rest.size());
        const std::string_view word = trimBlanks(rest.substr(0, comma));
        const auto kind = kindOf(word);
        if (!kind) {
            services.errors.report(Text::UnknownTagKind, word);
            return std::nullopt;
        }
        wanted.push_back(*kind);
        rest.remove_prefix(std::min(comma + 1, rest.size()));
    } while (!rest.empty());
    return wanted;
}

class RemoveTagsJob : public TagJob {
 public:
    RemoveTagsJob(Services& services, std::vector<TagKind> wanted)
        : TagJob(services), wanted_(std::move(wanted)) {}

 private:
    void changeFile(const std::string& path, const std::string& subPath) override {
        ID3tag record;
        record.Path = path;
        record.FileType = GetFileType(path);
        record.OK = true;
        std::vector<TagKind> removed;
        const TagUpdate result = RemoveTags(record, wanted_, context(), removed);
        if (result == TagUpdate::Refused) removed.clear();
        const bool isOnlyKind = (record.FileType & FileType::Ape2Only) != 0 &&
                                std::ranges::find(removed, TagKind::APEv2) != removed.end();
        if (isOnlyKind) note(services_.texts.get(Text::OnlyKindOfTag, withoutControls(path)));
        const std::string_view word = counted(result);
        if (isJson()) {
            tell(path, removed, word);
        } else if (isDryRun()) {
            for (const TagKind kind : removed) {
                tellText(subPath + "  " + services_.texts.get(Text::TagRemoved, nameOf(kind)));
            }
        }
    }

    void tell(const std::string& path, const std::vector<TagKind>& removed,
              std::string_view result) {
        std::vector<std::string> names;
        for (const TagKind kind : removed) names.push_back(nameOf(kind));
        JsonLine line;
        line.addName("Path", path);
        line.addNames("Tags", names);
        tellJson(line, result);
    }

    const std::vector<TagKind> wanted_;
};
}  // namespace

int removeTags(Services& services) {
    if (!isUnderstood(services)) return unusableCommandLine;
    const auto wanted = wantedKinds(services);
    if (!wanted) {
        services.errors.report(Text::NothingDone);
        return unusableCommandLine;
    }
    return RemoveTagsJob(services, *wanted).run();
}

}  // namespace tavlo
