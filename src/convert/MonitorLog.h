#pragma once

#include <functional>
#include <string>
#include <vector>

namespace tavlo {

enum class LogKind { Step, Result, Error };

struct LogLine {
    std::string text;
    LogKind kind = LogKind::Step;
};

/// What a conversion says as it goes on, line by line.
class MonitorLog {
 public:
    using Show = std::function<void(const LogLine&)>;

    /// Each line is shown as it comes.
    explicit MonitorLog(Show show = {}) : show_(std::move(show)) {}

    void AddLogLine(std::string text, LogKind kind = LogKind::Step);
    void AddErrorLine(std::string text) { AddLogLine(std::move(text), LogKind::Error); }
    /// The lines of another log behind the own.
    void append(const MonitorLog& other);

    [[nodiscard]] const std::vector<LogLine>& lines() const { return lines_; }
    /// All lines with CR and LF behind each, as they are saved.
    [[nodiscard]] std::string text() const;

 private:
    Show show_;
    std::vector<LogLine> lines_;
};

}  // namespace tavlo
