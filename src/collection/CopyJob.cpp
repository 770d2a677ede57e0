#include "collection/CopyJob.h"

#include <algorithm>
#include <set>

#include "collection/JobFiles.h"
#include "collection/Playlist.h"
#include "collection/RenamePlan.h"
#include "collection/cFilesCollection.h"
#include "core/JsonLine.h"
#include "core/TextCase.h"
#include "platform/File.h"
#include "platform/FileSystem.h"
#include "platform/FileTransfer.h"
#include "platform/PlainText.h"

namespace tavlo {

namespace {
struct CopyStep {
    std::string from, to;  // full paths
    bool isThere = false;
    bool isCopied = false;
    std::optional<Text> failure;
    std::string about;  // what the failure speaks of

    void fail(Text text, std::string_view what) {
        failure = text;
        about = what;
    }
};

// Files of one size that begin and end alike, with everything that tags are made of. Times do not
// tell: some disks round them, and tags may be written without a change of time.
bool isCopyOf(std::string_view copy, const std::string& source) {
    constexpr std::size_t compared = std::size_t{1} << 17U;
    File a;
    File b;
    if (!a.open(std::string(copy), Access::Read) || !b.open(source, Access::Read)) return false;
    if (a.size() != b.size()) return false;
    const std::uint64_t tail = a.size() - std::min<std::uint64_t>(a.size(), compared);
    return std::ranges::equal(a.view(0, compared), b.view(0, compared)) &&
           std::ranges::equal(a.view(tail, compared), b.view(tail, compared));
}

std::vector<CopyStep> planCopies(const cFilesCollection& files, const std::string& target,
                                 bool keepPaths) {
    std::vector<CopyStep> plan;
    std::set<std::string> given;
    for (std::size_t i = 1; i <= files.count(); ++i) {
        CopyStep step;
        step.from = files.GetFile(i);
        const std::string wanted = joinPath(folderInTarget(files, i, target, keepPaths),
                                            files.GetFileName(i), nativePathStyle());
        step.to = freePath(wanted, nativePathStyle(), [&](std::string_view path) {
            if (given.contains(lowerCase(path))) return false;
            step.isThere = isCopyOf(path, step.from);
            return step.isThere || !fileInfo(std::string(path));
        });
        given.insert(lowerCase(step.to));
        const auto source = fileInfo(step.from);
        if (!source || source->isFolder) {
            step.fail(Text::FileNotRead, step.from);
        } else if (step.to.empty()) {
            step.fail(Text::FileNotCreated, wanted);
        }
        plan.push_back(std::move(step));
    }
    return plan;
}

void copyOne(CopyStep& step) {
    const std::string folder(folderOf(step.to, nativePathStyle()));
    if (!createFolders(folder)) {
        step.fail(Text::FolderNotCreated, folder);
        return;
    }
    const Transfer result = copyFile(step.from, step.to);
    step.isCopied = result == Transfer::Done;
    if (result == Transfer::NotRead) {
        return step.fail(isInUse(step.from) ? Text::FileInUse : Text::FileNotRead, step.from);
    }
    if (!step.isCopied) step.fail(Text::FileNotCreated, step.to);
}

class CopyRun {
 public:
    explicit CopyRun(Services& services) : services_(services) {}

    // False when the output takes no more.
    bool run(std::vector<CopyStep> plan) {
        const bool performs = !services_.options.dryRun;
        services_.progress.setRange(plan.size());
        for (CopyStep& step : plan) {
            const bool isWanted = !step.isThere && !step.failure && !services_.cancel.load();
            services_.progress.report(fileNameOf(step.from, nativePathStyle()));
            if (performs && isWanted) copyOne(step);
            tell(step);
            services_.progress.step();
            services_.progress.pumpMessages();
        }
        services_.progress.setRange(0);
        const Texts& texts = services_.texts;
        if (!services_.options.json) {
            out_ += texts.get(performs ? Text::SummaryCopied : Text::SummaryWouldCopy,
                              std::to_string(copied_)) +
                    "  " + texts.get(Text::SummaryThere, std::to_string(there_)) + '\n';
        }
        return services_.output.write(out_);
    }

 private:
    void tell(const CopyStep& step) {
        const std::string_view result = resultOf(step);
        if (result == "planned" || result == "copied") ++copied_;
        if (result == "there") ++there_;
        if (step.failure) services_.errors.report(*step.failure, step.about);
        if (services_.options.json) {
            out_ += pathsLine(step.from, step.to, result,
                              step.failure ? services_.texts.get(*step.failure, step.about) : "");
        } else if (result == "planned") {
            out_ += withoutControls(step.from + " -> " + step.to) + '\n';
        }
    }

    [[nodiscard]] std::string_view resultOf(const CopyStep& step) const {
        if (step.failure) return "failed";
        if (step.isThere) return "there";
        if (step.isCopied) return "copied";
        return services_.options.dryRun ? "planned" : "cancelled";
    }

    Services& services_;
    std::string out_;
    std::size_t copied_ = 0, there_ = 0;
};

// The list's audio files; its other entries are told. False when there is no such list.
bool gatherEntries(Services& services, const std::string& list, cFilesCollection& files) {
    const CodePage ansi(services.ansiCodePage);
    if (!isPlaylist(list)) {
        services.errors.report(Text::NotAPlaylist, list);
        return false;
    }
    const auto tellOther = [&](const std::string& path) {
        services.errors.report(Text::NoAudioFile, path);
    };
    if (!files.FillFromPlaylist(list, FileType::Audio, ansi, tellOther)) {
        services.errors.report(Text::FileNotRead, list);
        return false;
    }
    files.BaseFolder = folderOf(list, nativePathStyle());
    return true;
}
}  // namespace

int copyPlaylist(Services& services) {
    const JobOptions& options = services.options;
    const std::string target =
        options.targetFolder.value_or(services.settings.text(Setting::TargetFolderPath));
    if (!isUnderstood(services)) return unusableCommandLine;
    if (!options.playlist || target.empty()) {
        services.errors.report(options.playlist ? Text::NoTarget : Text::ListNotGiven);
        return unusableCommandLine;
    }
    if (options.folder) {
        services.errors.report(Text::OneListOnly, *options.folder);
        return unusableCommandLine;
    }
    const std::string list = absolutePath(*options.playlist);
    cFilesCollection files(services.progress, services.cancel);
    if (!gatherEntries(services, list, files)) return unusableCommandLine;
    CopyRun copies(services);
    if (!copies.run(planCopies(files, absolutePath(target), options.keepPaths))) {
        services.errors.report(Text::OutputNotWritten);
    }
    if (services.cancel.load()) services.errors.report(Text::Cancelled);
    return services.errors.exitCode();
}

}  // namespace tavlo
