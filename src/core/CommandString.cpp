#include "core/CommandString.h"

#include <utility>

namespace tavlo {
namespace {

constexpr std::string_view blanks = " \t";

bool isBlank(char c) {
    return blanks.find(c) != std::string_view::npos;
}

std::string quotedIfNeeded(const std::string& argument) {
    const bool plain = !argument.empty() && argument.find_first_of(blanks) == std::string::npos;
    return plain ? argument : '"' + argument + '"';
}

}  // namespace

void CommandString::Command(std::string line) {
    command_ = std::move(line);
    Process();
}

void CommandString::assign(std::vector<std::string> arguments) {
    arguments_ = std::move(arguments);
    command_.clear();
    for (const std::string& argument : arguments_) {
        if (!command_.empty()) command_ += ' ';
        command_ += quotedIfNeeded(argument);
    }
}

std::string CommandString::Parameter(std::size_t index) const {
    const std::string& argument = ParameterEx(index);
    if (!IsOption(index) || !argument.starts_with('-')) return argument;
    return '/' + argument.substr(argument.starts_with("--") ? 2 : 1);
}

const std::string& CommandString::ParameterEx(std::size_t index) const {
    static const std::string none;
    return index >= 1 && index <= count() ? arguments_[index - 1] : none;
}

bool CommandString::IsOption(std::size_t index) const {
    const std::string& argument = ParameterEx(index);
    if (argument.empty() || prefix_.find(argument.front()) == std::string::npos) return false;
    return style_ == PathStyle::Windows || argument.front() != '/' || known_(argument);
}

bool CommandString::NextIsValue(std::size_t index) const {
    return index >= 1 && index < count() && !IsOption(index + 1);
}

void CommandString::Process() {
    arguments_.clear();
    std::string argument;
    bool inArgument = false;
    bool inQuotes = false;
    for (const char c : command_) {
        if (!inQuotes && isBlank(c)) {
            if (inArgument) arguments_.push_back(std::exchange(argument, {}));
            inArgument = false;
            continue;
        }
        inArgument = true;
        if (c == '"') {
            inQuotes = !inQuotes;
        } else {
            argument += c;
        }
    }
    if (inArgument) arguments_.push_back(std::move(argument));
}

}  // namespace tavlo
