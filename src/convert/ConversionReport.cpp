#include "convert/ConversionReport.h"

#include "core/JsonLine.h"
#include "platform/PlainText.h"

namespace tavlo {

namespace {
struct StepWord {
    std::string_view json;
    Text text;
};
// In the order of `ConversionStep`.
constexpr auto stepWords = std::to_array<StepWord>({
    {"encode", Text::StepEncode},
    {"reencode", Text::StepReEncode},
    {"decode", Text::StepDecode},
    {"copy", Text::StepCopy},
    {"skip", Text::StepSkip},
    {"there", Text::AlreadyDone},
    {"failed", Text::FileNotCreated},
});
const StepWord& wordsOf(ConversionStep step) {
    return stepWords[static_cast<std::size_t>(step)];
}

// In the order of `ConversionResult`.
constexpr auto resultWords = std::to_array<std::string_view>(
    {"converted", "copied", "skipped", "there", "cancelled", "failed"});
}  // namespace

std::vector<std::string> plannedCommands(const Conversion& row,
                                         const ConversionSettings& settings) {
    std::vector<std::string> commands;
    const std::string base(baseNameOf(row.source, nativePathStyle()));
    std::string wav = row.step == ConversionStep::Decode ? row.target : row.source;
    if (row.step == ConversionStep::ReEncode) {
        wav = joinPath(temporaryFolder(), base + ".wav", nativePathStyle());
    }
    if (row.step == ConversionStep::ReEncode || row.step == ConversionStep::Decode) {
        const auto decoder = decodeCommand(row.type, row.source, wav, settings.encoders,
                                           firstDecoder(row.type, row.isLossless));
        if (decoder) commands.push_back(decoder->line);
    }
    if (row.step != ConversionStep::ReEncode && row.step != ConversionStep::Encode) return commands;
    const ConversionTarget& target = settings.target;
    const auto encoder =
        encodeCommand(target.format, target.mode,
                      {wav, row.target, std::string(baseNameOf(row.target, nativePathStyle()))},
                      settings.encoders);
    if (!encoder) return commands;
    commands.push_back(encoder->line);
    if (encoder->isRewrapped) {
        for (const std::string& line : rewrapCommands(row.target)) commands.push_back(line);
    }
    return commands;
}

void ConversionReport::print(const std::string& text) {
    if (isWritten_) isWritten_ = services_.output.write(text);
}

void ConversionReport::tellPlanned(const Conversion& row) {
    if (row.step == ConversionStep::Fail) {
        const std::string message = services_.texts.get(Text::FileNotRead, row.source);
        services_.errors.reportLine(message);
        countFailure();
        return tell(row, ConversionResult::Failed, message);
    }
    ++(row.step == ConversionStep::Copy   ? copied_
       : row.step == ConversionStep::Skip ? skipped_
       : row.step == ConversionStep::Done ? there_
                                          : converted_);
    const auto commands = plannedCommands(row, settings_);
    for (const std::string& line : commands) tools_.insert(programOf(line));
    if (services_.options.json) return tellPlannedJson(row, commands);
    std::string text = withoutControls(row.source + " -> " + row.target + "  " +
                                       services_.texts.get(wordsOf(row.step).text)) +
                       '\n';
    for (const std::string& line : commands) text += "    " + withoutControls(line) + '\n';
    print(text);
}

void ConversionReport::tellPlannedJson(const Conversion& row,
                                       const std::vector<std::string>& commands) {
    JsonLine line;
    line.addName("Path", row.source);
    line.addName("NewPath", row.target);
    line.add("Step", wordsOf(row.step).json);
    line.addNames("Commands", commands);
    line.add("Result", "planned");
    print(line.finish());
}

void ConversionReport::tell(const Conversion& row, ConversionResult result,
                            std::string_view message) {
    if (result == ConversionResult::Converted) ++converted_;
    if (result == ConversionResult::Copied) ++copied_;
    if (result == ConversionResult::Skipped) ++skipped_;
    if (result == ConversionResult::There) ++there_;
    if (!services_.options.json) return;
    JsonLine line;
    line.addName("Path", row.source);
    line.addName("NewPath", row.target);
    line.add("Step", wordsOf(row.step).json);
    line.add("Result", resultWords[static_cast<std::size_t>(result)]);
    if (!message.empty()) line.add("Message", message);
    print(line.finish());
}

bool ConversionReport::finish() {
    if (services_.options.json) return isWritten_;
    const Texts& texts = services_.texts;
    const bool dryRun = services_.options.dryRun;
    const auto count = [&](Text text, std::size_t number) {
        return "  " + texts.get(text, std::to_string(number));
    };
    std::string line = texts.get(dryRun ? Text::SummaryWouldConvert : Text::SummaryConverted,
                                 std::to_string(converted_));
    if (copied_ > 0) {
        line += count(dryRun ? Text::SummaryWouldCopy : Text::SummaryCopied, copied_);
    }
    if (skipped_ > 0) line += count(Text::SummaryNotConverted, skipped_);
    if (there_ > 0) line += count(Text::SummaryThere, there_);
    if (failed_ > 0) line += count(Text::SummaryErrors, failed_);
    print(line + '\n');
    return isWritten_;
}

}  // namespace tavlo
