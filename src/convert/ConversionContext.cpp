#include "convert/ConversionContext.h"

#include "platform/PlainText.h"
#include "platform/Utf8.h"
#include "tags/AudioFile.h"

namespace tavlo {

bool ConversionContext::run(const std::string& commandLine, const std::string& folder) const {
    return runner.RunProcessAndWait(commandLine, control.showsWindows, control.priority, folder);
}

bool ConversionContext::runHidden(const std::string& commandLine) const {
    return runner.RunProcessAndWait(commandLine, false, control.priority);
}

void ConversionContext::tellMissing(const std::string& tool) const {
    error(Text::ToolNotFound, tool);
    missed.add(tool);
}

namespace {
// Without what moves a terminal's cursor or colours its text.
std::string withoutEscapes(std::string_view line) {
    std::string text;
    while (!line.empty()) {
        if (line.starts_with("\x1b[")) {
            constexpr std::string_view parameters = "0123456789;?[\x1b";
            line.remove_prefix(std::min(line.size(), line.find_first_not_of(parameters)));
            line.remove_prefix(std::min<std::size_t>(line.size(), 1));
        } else {
            text += line.front();
            line.remove_prefix(1);
        }
    }
    return text;
}
}  // namespace

void ConversionContext::tellOutput() const {
    constexpr std::size_t most = 5;  // lines
    std::vector<std::string> lines;
    std::string_view rest = runner.output();
    while (!rest.empty()) {
        // Progress is drawn over and over on one line.
        std::string_view line = takeLine(rest);
        line.remove_prefix(std::min(line.size(), line.rfind('\r') + 1));
        if (!trimBlanks(line).empty()) lines.push_back(withoutEscapes(line));
    }
    const std::size_t first = lines.size() - std::min(most, lines.size());
    for (std::size_t i = first; i < lines.size(); ++i) {
        log.AddLogLine("    " + (isValidUtf8(lines[i]) ? lines[i] : ansi.toUtf8(lines[i])));
    }
}

void ConversionContext::step(Text text, std::string_view argument) const {
    log.AddLogLine(texts.get(text, argument));
}

void ConversionContext::error(Text text, std::string_view argument) const {
    log.AddErrorLine(texts.get(text, argument));
}

std::optional<ID3tag> readSound(const std::string& path, const CodePage& ansi) {
    ID3tag record = ReadAudioFile(path, {ansi, ReadDepth::List});
    if (!record.OK || !record.StreamFound) return std::nullopt;
    return record;
}

}  // namespace tavlo
