#include "core/Help.h"

#include "core/OptionTable.h"
#include "platform/PlainText.h"

namespace tavlo {
namespace {

constexpr std::size_t namesWidth = 30;  // characters before the explanation

constexpr std::array groups{Text::GroupJobs,       Text::GroupFiles, Text::GroupTags,
                            Text::GroupConversion, Text::GroupWave,  Text::GroupProgram};

std::string valueWord(const Texts& texts, const OptionAction& action) {
    if (std::holds_alternative<TakeNumber>(action)) return ' ' + texts.get(Text::HelpValueNumber);
    const auto* special = std::get_if<TakeSpecial>(&action);
    const bool takesText = special != nullptr ? *special != TakeSpecial::Limits
                                              : std::holds_alternative<TakeText>(action);
    return takesText ? ' ' + texts.get(Text::HelpValueText) : std::string();
}

std::string helpLine(std::string names, const std::string& explanation) {
    const std::size_t width = characterCount(names);
    const bool fits = width < namesWidth;
    names += fits ? std::string(namesWidth - width, ' ') : '\n' + std::string(namesWidth, ' ');
    return names + explanation + '\n';
}

std::string optionLine(const Texts& texts, const OptionRow& option) {
    std::string names = "  ";
    for (const std::string_view name : option.names)
        if (!name.empty()) names.append(names.size() > 2 ? ", " : "").append(name);
    return helpLine(names + valueWord(texts, option.action), texts.get(option.help));
}

}  // namespace

std::string helpPage(const Texts& texts) {
    std::string page = texts.get(Text::HelpUsage) + '\n' + texts.get(Text::HelpSpelling) + '\n';
    for (const Text group : groups) {
        page += '\n' + texts.get(group) + ":\n";
        for (const OptionRow& option : optionTable)
            if (option.group == group) page += optionLine(texts, option);
        if (group == Text::GroupConversion)
            page += helpLine("  /f" + texts.get(Text::HelpValueNumber),
                             texts.get(Text::HelpOutputFormat));
    }
    return page;
}

}  // namespace tavlo
