#pragma once

#include <functional>
#include <mutex>
#include <set>
#include <string>

#include "convert/ConversionSettings.h"
#include "convert/MonitorLog.h"
#include "convert/ProcessRunner.h"
#include "convert/WorkFolder.h"
#include "core/Progress.h"
#include "core/Texts.h"
#include "platform/CodePage.h"
#include "tags/ID3tag.h"

namespace tavlo {

/// Changes the sound of a WAV file before it is encoded and keeps the old one beside it, with
/// ".bak" behind its name. Empty where nothing is to be changed.
using WaveProcessing = std::function<bool(const std::string& wav, bool isTargetLossless)>;

/// The external programs that were missed; from any thread.
class MissedTools {
 public:
    void add(const std::string& tool) {
        const std::lock_guard lock(mutex_);
        tools_.insert(tool);
    }
    [[nodiscard]] std::set<std::string> tools() const {
        const std::lock_guard lock(mutex_);
        return tools_;
    }

 private:
    mutable std::mutex mutex_;
    std::set<std::string> tools_;
};

/// What the conversion of a file works with.
struct ConversionContext {
    const Texts& texts;
    const ConversionSettings& settings;
    const CodePage& ansi;
    const RunControl& control;
    const CancelFlag& cancel;
    ProcessRunner& runner;
    WorkFolder& work;
    MissedTools& missed;
    MonitorLog& log;
    std::function<bool(const std::string& folder)> isRemovable;
    WaveProcessing processWave;

    /// Runs a program as the settings say.
    bool run(const std::string& commandLine, const std::string& folder = {}) const;
    bool runHidden(const std::string& commandLine) const;
    /// Tells that a program could not be started.
    void tellMissing(const std::string& tool) const;
    /// The last lines of what the program said that ran last.
    void tellOutput() const;
    void step(Text text, std::string_view argument = {}) const;
    void error(Text text, std::string_view argument = {}) const;
    [[nodiscard]] bool isCancelled() const { return cancel.load(std::memory_order_relaxed); }
};

/// Reads a file as a list does; nothing where it is empty or not of the format that its name says.
std::optional<ID3tag> readSound(const std::string& path, const CodePage& ansi);

}  // namespace tavlo
