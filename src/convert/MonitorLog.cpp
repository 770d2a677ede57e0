#include "convert/MonitorLog.h"

#include "platform/PlainText.h"

namespace tavlo {

void MonitorLog::AddLogLine(std::string text, LogKind kind) {
    lines_.push_back({withoutControls(std::move(text)), kind});
    if (show_) show_(lines_.back());
}

void MonitorLog::append(const MonitorLog& other) {
    for (const LogLine& line : other.lines_) AddLogLine(line.text, line.kind);
}

std::string MonitorLog::text() const {
    std::string all;
    for (const LogLine& line : lines_) all += line.text + "\r\n";
    return all;
}

}  // namespace tavlo
