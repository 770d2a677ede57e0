#include "convert/ConversionJob.h"

#include <chrono>
#include <condition_variable>
#include <map>
#include <system_error>
#include <thread>

#include "collection/JobFiles.h"
#include "collection/TagColumns.h"
#include "convert/ConversionReport.h"
#include "platform/Console.h"
#include "platform/DriveKind.h"
#include "platform/FileSystem.h"
#include "platform/FileTransfer.h"

namespace tavlo {

namespace {
// Where a job is, for the line on the terminal.
class JobProgress {
 public:
    JobProgress(Services& services, const std::vector<Conversion>& rows) : services_(services) {
        for (const Conversion& row : rows) all_ += row.size;
        services_.progress.setRange(rows.size());
    }
    ~JobProgress() { services_.progress.setRange(0); }
    JobProgress(const JobProgress&) = delete;
    JobProgress& operator=(const JobProgress&) = delete;

    void begin(const Conversion& row) { name_ = fileNameOf(row.source, nativePathStyle()); }
    void finish(const Conversion& row) {
        done_ += row.size;
        services_.progress.step();
    }
    [[nodiscard]] int percent() const {
        return all_ == 0 ? 100 : static_cast<int>(done_ * 100 / all_);
    }
    void show() {
        services_.progress.report(
            name_ + "  " + services_.texts.get(Text::PercentDone, std::to_string(percent())) +
            timeLeft());
        services_.progress.pumpMessages();
    }

 private:
    [[nodiscard]] std::string timeLeft() const {
        if (done_ == 0) return {};
        const std::chrono::duration<double> spent = std::chrono::steady_clock::now() - start_;
        const double share = static_cast<double>(done_) / static_cast<double>(all_);
        ID3tag time;
        time.Seconds = static_cast<std::int32_t>(spent.count() * (1 - share) / share);
        return ", " + services_.texts.get(Text::TimeLeft, time.Time());
    }

    Services& services_;
    const std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
    std::uint64_t all_ = 0, done_ = 0;
    std::string name_;
};

class ConversionRun {
 public:
    ConversionRun(Services& services, ConversionSettings& settings, WorkFolder& work,
                  std::vector<Conversion> rows)
        : services_(services),
          settings_(settings),
          work_(work),
          rows_(std::move(rows)),
          progress_(services, rows_),
          report_(services, settings),
          log_([this](const LogLine& line) { show(line); }) {
        control_.priority = services.options.priority.value_or(
            priorityFromSetting(services.settings.text(Setting::Priority)));
        control_.showsWindows =
            !settings.isBeginner &&
            services.options.showExec.value_or(services.settings.flag(Setting::ShowExecWindows));
        heedSecondInterrupt(&control_.endsNow);
        surviveClosedPipes();
    }
    ~ConversionRun() { heedSecondInterrupt(nullptr); }
    ConversionRun(const ConversionRun&) = delete;
    ConversionRun& operator=(const ConversionRun&) = delete;

    // False when the output takes no more.
    bool run(std::size_t jobsAtOnce) {
        log_.AddLogLine(services_.texts.get(Text::BatchRuns));
        if (settings_.target.format == FileType::Mp3) askLameVersion();
        if (jobsAtOnce > 1) {
            runSideBySide(std::min(jobsAtOnce, rows_.size()));
        } else {
            runOneByOne();
        }
        tellEnd();
        return report_.finish();
    }

    [[nodiscard]] const MonitorLog& log() const { return log_; }

 private:
    // What a worker has done.
    struct Finished {
        MonitorLog log;
        ConversionResult result = ConversionResult::Cancelled;
    };

    void show(const LogLine& line) {
        if (line.kind == LogKind::Error) {
            services_.errors.reportLine(line.text);
        } else {
            services_.errors.noteLine(line.text);
        }
    }

    [[nodiscard]] bool isCancelled() const { return services_.cancel.load(); }

    // A person who cancels is told what is waited for.
    void tick(std::string_view program) {
        progress_.show();
        if (!isCancelled() || isAsked_) return;
        isAsked_ = true;
        services_.errors.note(Text::ProgramStillRuns, program);
    }

    ProcessRunner makeRunner(ProcessRunner::Tick tick) const {
        return {systemToolPlaces(), control_, std::move(tick)};
    }

    ConversionContext makeContext(ProcessRunner& runner, MonitorLog& log) {
        return {services_.texts,
                settings_,
                ansi_,
                control_,
                services_.cancel,
                runner,
                work_,
                missed_,
                log,
                isRemovableDrive,
                {}};
    }

    // "LAME 64bits version 3.100 (http://lame.sf.net)"
    void askLameVersion() {
        ProcessRunner runner = makeRunner([this](std::string_view program) { tick(program); });
        if (!runner.RunProcessAndWait("lame.exe --version", false, control_.priority)) return;
        settings_.encoders.lameVersion = lameVersionIn(runner.output());
    }

    void runOneByOne() {
        ProcessRunner runner = makeRunner([this](std::string_view program) { tick(program); });
        for (Conversion& row : rows_) {
            if (isCancelled()) {
                report_.tell(row, ConversionResult::Cancelled, {});
                continue;
            }
            progress_.begin(row);
            progress_.show();
            const std::size_t first = log_.lines().size();
            const ConversionContext context = makeContext(runner, log_);
            const ConversionResult result = Converter(context).convert(row);
            tellFinished(row, result, messageOf(log_, first));
        }
    }

    // Each worker takes the next file; results are told in the order of the list.
    void runSideBySide(std::size_t workers) {
        std::vector<std::jthread> threads;
        try {
            for (std::size_t i = 0; i < workers; ++i) threads.emplace_back([this] { work(); });
        } catch (const std::system_error&) {
            // The system gives no more threads; fewer do as well.
        }
        if (threads.empty()) return runOneByOne();
        for (std::size_t i = 0; i < rows_.size(); ++i) {
            progress_.begin(rows_[i]);
            const Finished finished = waitFor(i);
            log_.append(finished.log);
            tellFinished(rows_[i], finished.result, messageOf(finished.log, 0));
        }
    }

    void work() {
        ProcessRunner runner = makeRunner([this](std::string_view program) {
            const std::lock_guard lock(mutex_);
            lastProgram_ = program;
        });
        for (std::size_t i = next_++; i < rows_.size(); i = next_++) {
            Finished finished;
            const ConversionContext context = makeContext(runner, finished.log);
            if (!isCancelled()) finished.result = Converter(context).convert(rows_[i]);
            const std::lock_guard lock(mutex_);
            finished_.emplace(i, std::move(finished));
            changed_.notify_one();
        }
    }

    Finished waitFor(std::size_t index) {
        constexpr auto longestWait = std::chrono::milliseconds(100);
        std::unique_lock lock(mutex_);
        while (!changed_.wait_for(lock, longestWait, [&] { return finished_.contains(index); })) {
            const std::string program = lastProgram_;
            lock.unlock();
            tick(program);
            lock.lock();
        }
        Finished finished = std::move(finished_.at(index));
        finished_.erase(index);
        return finished;
    }

    // What went wrong first, or how it ended.
    static LogLine messageOf(const MonitorLog& log, std::size_t first) {
        LogLine message;
        for (std::size_t i = first; i < log.lines().size(); ++i) {
            const LogLine& line = log.lines()[i];
            if (line.kind == LogKind::Error) return line;
            if (line.kind == LogKind::Result) message = line;
        }
        return message;
    }

    void tellFinished(const Conversion& row, ConversionResult result, const LogLine& message) {
        if (message.kind == LogKind::Error) report_.countFailure();
        report_.tell(row, result, message.text);
        progress_.finish(row);
        if (result == ConversionResult::Cancelled) return;
        log_.AddLogLine(
            services_.texts.get(Text::PercentDone, std::to_string(progress_.percent())));
    }

    void tellEnd() {
        for (const std::string& tool : missed_.tools()) {
            log_.AddLogLine(services_.texts.get(Text::ToolRequired, tool));
            for (const Text text :
                 {Text::ToolNotIncluded, Text::ToolCopyright, Text::ToolDownload}) {
                log_.AddLogLine(services_.texts.get(text));
            }
        }
        if (report_.failures() > 0) {
            log_.AddLogLine(
                services_.texts.get(Text::ErrorsFound, std::to_string(report_.failures())));
        }
        if (isCancelled()) {
            log_.AddErrorLine(services_.texts.get(Text::Interrupted));
        } else {
            log_.AddLogLine(services_.texts.get(Text::JobDone), LogKind::Result);
        }
    }

    Services& services_;
    ConversionSettings& settings_;
    WorkFolder& work_;
    const CodePage ansi_{services_.ansiCodePage};
    std::vector<Conversion> rows_;
    JobProgress progress_;
    ConversionReport report_;
    MonitorLog log_;
    RunControl control_;
    MissedTools missed_;
    bool isAsked_ = false;

    std::atomic<std::size_t> next_{0};
    std::mutex mutex_;
    std::condition_variable changed_;
    std::string lastProgram_;  // of those that run
    std::map<std::size_t, Finished> finished_;
};

// Where results go; empty for each source's own folder.
std::string targetFolder(const Services& services) {
    const Settings& settings = services.settings;
    std::string folder = services.options.targetFolder.value_or("");
    if (folder.empty() && settings.flag(Setting::TargetFolderEn)) {
        folder = settings.text(Setting::TargetFolderPath);
    }
    return folder.empty() ? folder : absolutePath(folder);
}

std::vector<Conversion> sourcesOf(const Services& services, const cFilesCollection& files) {
    const std::string target = targetFolder(services);
    const PathStyle style = nativePathStyle();
    // Results of an earlier run in a folder below are no sources.
    const bool isBelow = !target.empty() && services.options.subfolders &&
                         liesIn(target, files.BaseFolder, style) &&
                         !liesIn(files.BaseFolder, target, style);
    std::vector<Conversion> rows;
    for (std::size_t i = 1; i <= files.count(); ++i) {
        Conversion row;
        row.source = files.GetFile(i);
        if (isBelow && liesIn(row.source, target, style)) continue;
        if (!target.empty()) {
            row.folder = folderInTarget(files, i, target, services.options.keepPaths);
        }
        rows.push_back(std::move(row));
    }
    return rows;
}

constexpr int mostJobs = 64;  // side by side

// Whether the options ask for what can be done.
bool isPossible(Services& services) {
    const JobOptions& options = services.options;
    const bool processes = options.normalize.value_or(false) || options.trim.value_or(false) ||
                           options.waveTrim || options.normalizeSeparately;
    if (processes) services.errors.report(Text::WaveNotProcessed, options.modeWord);
    const int jobs = options.jobsAtOnce.value_or(1);
    const bool isCount = jobs >= 1 && jobs <= mostJobs;
    if (!isCount) services.errors.report(Text::NotWithJob);
    const std::string log = options.logFile.value_or("");
    constexpr FileTypes kept = FileType::Audio | FileType::M3u | FileType::Cue;
    const bool isSafe = (GetFileType(log) & kept) == 0;
    if (!isSafe) services.errors.report(Text::LogIsSound, log);
    const bool isLinked = !log.empty() && isLink(absolutePath(log));
    if (isLinked) services.errors.report(Text::LinkNotWritten, log);
    return !processes && isCount && isSafe && !isLinked;
}

void saveLog(Services& services, const MonitorLog& log) {
    const auto& file = services.options.logFile;
    if (!file) return;
    if (!replaceFile(absolutePath(*file), log.text())) {
        services.errors.report(Text::LogNotSaved, *file);
    }
}

// Nothing is changed.
bool showPlan(Services& services, const ConversionSettings& settings,
              const std::vector<Conversion>& rows) {
    ConversionReport report(services, settings);
    for (const Conversion& row : rows) report.tellPlanned(row);
    for (const std::string& tool : report.plannedTools()) {
        if (findTool(tool, systemToolPlaces()).empty()) {
            services.errors.note(Text::ToolNotFound, tool);
        }
    }
    return report.finish();
}

bool perform(Services& services, ConversionSettings& settings, std::vector<Conversion> rows) {
    WorkFolder work(absolutePath(temporaryFolder()));
    if (work.path().empty()) {
        services.errors.report(Text::NoWorkFolder, temporaryFolder());
        return true;
    }
    ConversionRun run(services, settings, work, std::move(rows));
    const int jobsAtOnce = services.options.jobsAtOnce.value_or(1);
    const bool isWritten = run.run(static_cast<std::size_t>(jobsAtOnce));
    saveLog(services, run.log());
    return isWritten;
}
}  // namespace

int convertFiles(Services& services) {
    const auto options = decodedOptions(services);
    if (!options || !isPossible(services)) return unusableCommandLine;
    JobFiles wanted;
    if (services.options.mode == RunMode::Decode) {
        wanted = {static_cast<FileTypes>(FileType::Audio & ~FileType::Wave), Text::NoDecoder};
    }
    cFilesCollection files(services.progress, services.cancel);
    if (!gatherFilesToChange(services, wanted, files)) return unusableCommandLine;
    const CodePage ansi(services.ansiCodePage);
    ConversionSettings settings =
        conversionSettings(services.settings, *options, services.programName);
    std::vector<Conversion> rows = planConversions(sourcesOf(services, files), settings, ansi);
    // A scan that was cancelled found a part of the files only: then nothing is converted.
    if (services.cancel.load()) {
        services.errors.report(Text::Cancelled);
    } else if (!(services.options.dryRun ? showPlan(services, settings, rows)
                                         : perform(services, settings, std::move(rows)))) {
        services.errors.report(Text::OutputNotWritten);
    }
    return services.errors.exitCode();
}

}  // namespace tavlo
