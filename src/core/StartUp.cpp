#include "core/StartUp.h"

#include <algorithm>
#include <array>

#include "core/AnsiCodePage.h"
#include "core/Help.h"
#include "core/LanguageFile.h"
#include "platform/PlainText.h"

namespace tavlo {
namespace {

struct PriorityRow {
    std::string_view word;
    PriorityClass priority;
};

constexpr std::array priorityRows{PriorityRow{"idle", PriorityClass::Idle},
                                  PriorityRow{"normal", PriorityClass::Normal},
                                  PriorityRow{"high", PriorityClass::High}};

CommandString splitLine(const CommandLine& commandLine) {
    const PathStyle style = commandLine.text ? PathStyle::Windows : PathStyle::Posix;
    CommandString line(style, isOptionWord);
    if (commandLine.text) {
        line.Command(*commandLine.text);
    } else {
        line.assign(commandLine.arguments);
    }
    return line;
}

}  // namespace

void bindToProgram(RegistryEx& store) {
    store.Company("Tavlo");
    store.AppName("Audio Desk");
    store.Version("4.0");
}

PriorityClass priorityFromSetting(std::string_view text) {
    const auto* row = std::ranges::find(priorityRows, lowerAscii(text), &PriorityRow::word);
    return row == priorityRows.end() ? PriorityClass::Idle : row->priority;
}

StartUp::StartUp(const StartUpParts& parts, std::vector<JobRow> jobs)
    : parts_(parts),
      jobs_(std::move(jobs)),
      store_(parts.registry),
      settings_(store_),
      texts_(languageFor(systemLanguage())),
      errors_(texts_, parts_.messages) {}

std::span<const StartUp::Step> StartUp::steps() {
    // The priority is chosen once both who may name it have been read: on many systems a process
    // that has made itself idle may not rise again.
    static constexpr std::array table{Step{"bind settings store", &StartUp::bindStore},
                                      Step{"load settings", &StartUp::loadSettings},
                                      Step{"read command line", &StartUp::readCommandLine},
                                      Step{"choose priority class", &StartUp::choosePriority},
                                      Step{"choose language", &StartUp::chooseLanguage},
                                      Step{"tell ignored words", &StartUp::tellIgnoredWords}};
    return table;
}

int StartUp::run(const CommandLine& commandLine) {
    for (const Step& step : steps()) (this->*step.perform)(commandLine);
    return dispatch();
}

void StartUp::bindStore(const CommandLine&) {
    bindToProgram(store_);
}

void StartUp::loadSettings(const CommandLine&) {
    settings_.load();
}

void StartUp::readCommandLine(const CommandLine& commandLine) {
    options_ = readOptions(splitLine(commandLine), currentFolder());
}

void StartUp::choosePriority(const CommandLine&) {
    const std::string& setting = settings_.text(Setting::Priority);
    parts_.setPriority(options_.priority.value_or(priorityFromSetting(setting)));
}

void StartUp::chooseLanguage(const CommandLine&) {
    const std::string& chosen = settings_.text(Setting::InterfaceLanguage);
    texts_ = Texts(languageFor(chosen.empty() ? systemLanguage() : chosen));
    std::string file = options_.languageFile.value_or("");
    if (file.empty() && !options_.noLanguageFile && settings_.flag(Setting::LangFileEn))
        file = settings_.text(Setting::LangFile);
    if (file.empty()) return;
    if (const auto text = readLanguageFile(file)) {
        texts_.addReplacements(*text);
    } else {
        errors_.note(Text::LanguageFileNotRead, file);
    }
}

void StartUp::tellIgnoredWords(const CommandLine&) {
    for (const std::string& word : options_.ignored) errors_.note(Text::UnknownOption, word);
}

int StartUp::dispatch() {
    switch (options_.mode) {
        case RunMode::Help:
            return showHelp();
        case RunMode::Version:
            return print(texts_.get(Text::VersionLine, parts_.programVersion) + '\n');
        case RunMode::LanguageTemplate:
            return writeTemplate();
        default:
            break;
    }
    if (!options_.secondJob.empty()) {
        errors_.report(Text::TwoJobs, options_.secondJob);
        return unusableCommandLine;
    }
    const auto job = std::ranges::find(jobs_, options_.mode, &JobRow::mode);
    if (job != jobs_.end()) return runJob(*job);
    errors_.report(Text::JobNotAvailable, options_.modeWord);
    return unusableCommandLine;
}

int StartUp::runJob(const JobRow& job) {
    if (parts_.mend) parts_.mend(errors_);
    Services services{options_,
                      settings_,
                      texts_,
                      errors_,
                      parts_.output,
                      parts_.progress,
                      parts_.cancel,
                      ansiCodePage(settings_),
                      texts_.get(Text::VersionLine, parts_.programVersion),
                      [this] { chooseLanguage({}); }};
    return job.run(services);
}

int StartUp::writeTemplate() {
    if (const auto path = writeLanguageTemplate(texts_, options_.startFolder))
        return print(texts_.get(Text::TemplateWritten, *path) + '\n');
    errors_.report(Text::FileNotOpenedForWriting, "tavlo.lng");
    return errors_.exitCode();
}

int StartUp::showHelp() {
    if (!parts_.showPage) return print(helpPage(texts_));
    parts_.showPage(helpPage(texts_), texts_);
    return errors_.exitCode();
}

int StartUp::print(const std::string& text) {
    if (!parts_.output.write(text)) errors_.report(Text::OutputNotWritten);
    return errors_.exitCode();
}

}  // namespace tavlo
