#include "collection/TagJob.h"

#include <algorithm>
#include <utility>

#include "collection/JobFiles.h"
#include "platform/PlainText.h"
#include "platform/Rescue.h"

namespace tavlo {

namespace {
TagSettings wantedTags(const Services& services) {
    TagSettings wanted = tagSettings(services.settings);
    wanted.force = services.options.force;
    return wanted;
}
}  // namespace

TagWork::TagWork(const WriteContext& job, std::string path, std::string subPath, ID3tag record)
    : path(std::move(path)),
      subPath(std::move(subPath)),
      record(std::move(record)),
      context{job.ansi,  job.settings, job.errors, job.progress,
              job.calls, job.dryRun,   job.ways,   &notes} {}

TagJob::TagJob(Services& services)
    : services_(services),
      ansi_(services.ansiCodePage),
      context_{ansi_,         wantedTags(services),    services.errors,  services.progress,
               systemCalls(), services.options.dryRun, {rescueFolder()}, &notes_},
      group_(context_.ways) {}

int TagJob::run() {
    cFilesCollection files(services_.progress, services_.cancel);
    const JobFiles wanted{FileType::Tagged, Text::FormatNotWritten};
    if (!gatherFilesToChange(services_, wanted, files)) return unusableCommandLine;
    // A scan that was cancelled found a part of the files only: then nothing is changed.
    if (!services_.cancel.load() && !changeAll(files)) {
        services_.errors.report(Text::OutputNotWritten);
    }
    if (services_.cancel.load()) services_.errors.report(Text::Cancelled);
    return services_.errors.exitCode();
}

// False when the output takes no more.
bool TagJob::changeAll(const cFilesCollection& files) {
    constexpr std::size_t outputBlock = 1U << 16U;  // bytes written at once
    services_.progress.setRange(files.count());
    for (std::size_t i = 1; i <= files.count(); ++i) {
        const std::string subPath = files.GetFileSubPath(i);
        notes_ = {};
        changeFile(files.GetFile(i), subPath);
        if (!flush(outputBlock)) return false;
        services_.progress.report(subPath);
        services_.progress.step();
        services_.progress.pumpMessages();
        if (services_.cancel.load(std::memory_order_relaxed)) break;
    }
    commit();
    services_.progress.setRange(0);
    if (!isJson()) out_ += summary();
    return flush(1);
}

bool TagJob::isBegun(const std::optional<FileId>& id) const {
    return id && std::ranges::any_of(begun_, [&](const auto& work) { return work->id == id; });
}

void TagJob::begin(std::unique_ptr<TagWork> work) {
    if (const auto status = context_.calls.status(work->path)) work->id = status->id;
    if (isBegun(work->id)) commit();
    work->answer = work->updating.prepare(group_);
    begun_.push_back(std::move(work));
    if (begun_.size() >= RewriteGroup::mostFiles || group_.isFull()) commit();
}

void TagJob::commit() {
    const std::vector<Rewrite> results = group_.commit();
    auto result = results.begin();
    for (const auto& work : begun_) {
        const bool isCarriedOut = !work->answer;
        const TagUpdate answer = isCarriedOut ? work->updating.finish(*result++) : *work->answer;
        notes_ = std::move(work->notes);
        tellWork(*work, answer);
    }
    begun_.clear();
    notes_ = {};
}

std::string_view TagJob::counted(TagUpdate result) {
    if (result == TagUpdate::Refused) return "failed";
    const bool isSame = result == TagUpdate::Unchanged;
    ++(isSame ? unchanged_ : changed_);
    if (isSame) return "unchanged";
    return isDryRun() ? "planned" : "changed";
}

void TagJob::note(const std::string& line) {
    services_.errors.noteLine(line);
    notes_.notes.push_back(line);
}

void TagJob::tellJson(JsonLine& line, std::string_view result, std::string message) {
    line.add("Result", result);
    if (message.empty()) message = takeMessage();
    if (message.empty() && result == "failed") message = text(Text::UnknownError);
    if (!message.empty()) line.addName("Message", message);  // it may have a path in it
    out_ += line.finish();
}

void TagJob::tellText(const std::string& line) {
    out_ += withoutControls(line) + '\n';
}

std::string TagJob::takeMessage() {
    std::string message = std::exchange(notes_.refusal, {});
    for (const std::string& line : std::exchange(notes_.notes, {})) {
        message += (message.empty() ? "" : " ") + line;
    }
    return message;
}

std::string TagJob::summary() const {
    const Texts& texts = services_.texts;
    const Text changed = isDryRun() ? Text::SummaryWouldChange : Text::SummaryChanged;
    std::string line = texts.get(changed, std::to_string(changed_)) + "  " +
                       texts.get(Text::SummaryUnchanged, std::to_string(unchanged_));
    if (skipped_ > 0) {
        line += "  " + texts.get(Text::SummaryNotFitting, std::to_string(skipped_));
    }
    const std::size_t errors = services_.errors.count();
    if (errors > 0) line += "  " + texts.get(Text::SummaryErrors, std::to_string(errors));
    return line + "\n";
}

bool TagJob::flush(std::size_t least) {
    if (out_.size() < least) return true;
    const bool written = services_.output.write(out_);
    out_.clear();
    return written;
}

}  // namespace tavlo
