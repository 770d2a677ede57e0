#pragma once

#include <functional>
#include <span>
#include <string>
#include <vector>

#include "core/CommandString.h"
#include "core/ErrorReport.h"
#include "core/Options.h"
#include "core/Progress.h"
#include "core/RegistryEx.h"
#include "core/Settings.h"
#include "core/Texts.h"
#include "platform/Environment.h"
#include "platform/PriorityClass.h"

namespace tavlo {

/// The company and application words of the settings' key, and its version.
void bindToProgram(RegistryEx& store);

/// What a job is handed; everything lives longer than the job.
struct Services {
    const JobOptions& options;
    Settings& settings;
    const Texts& texts;
    ErrorReport& errors;
    TextSink& output;
    Progress& progress;
    CancelFlag& cancel;
    int ansiCodePage;
    std::string programName = {};            ///< with the version
    std::function<void()> changeTexts = {};  ///< makes `texts` what the settings say now
};

/// A run mode and what does its work; the answer is the process's exit code.
struct JobRow {
    RunMode mode;
    std::function<int(Services&)> run;
};

constexpr int unusableCommandLine = 2;  // exit code

/// What start-up stands on, made by main and handed down.
struct StartUpParts {
    Registry& registry;
    TextSink& output;
    TextSink& messages;
    Progress& progress;
    CancelFlag& cancel;
    std::string programVersion;
    std::function<void(PriorityClass)> setPriority = setPriorityClass;
    /// Sets right what runs that were killed have left behind, before a job touches files.
    std::function<void(ErrorReport& errors)> mend = {};
    /// Shows the help where nobody hears the output; empty: it is printed all the same.
    std::function<void(const std::string& page, const Texts& texts)> showPage = {};
};

/// Prepares the process step by step and then runs the one job that the command line asks for. A
/// step that fails leaves its defaults and the next one follows.
class StartUp {
 public:
    StartUp(const StartUpParts& parts, std::vector<JobRow> jobs);

    /// Gives the process's exit code.
    int run(const CommandLine& commandLine);

    const JobOptions& options() const { return options_; }

 private:
    struct Step {
        std::string_view name;
        void (StartUp::*perform)(const CommandLine&);
    };
    static std::span<const Step> steps();

    void bindStore(const CommandLine& commandLine);
    void loadSettings(const CommandLine& commandLine);
    void readCommandLine(const CommandLine& commandLine);
    void choosePriority(const CommandLine& commandLine);
    void chooseLanguage(const CommandLine& commandLine);
    void tellIgnoredWords(const CommandLine& commandLine);

    int dispatch();
    int runJob(const JobRow& job);
    int writeTemplate();
    int showHelp();
    int print(const std::string& text);

    StartUpParts parts_;
    std::vector<JobRow> jobs_;
    RegistryEx store_;
    Settings settings_;
    Texts texts_;
    ErrorReport errors_;
    JobOptions options_;
};

/// "idle", "normal" or "high" in any case; any other text is idle.
PriorityClass priorityFromSetting(std::string_view text);

}  // namespace tavlo
