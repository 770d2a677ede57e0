#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "core/PathText.h"

namespace tavlo {

/// One command line split into arguments; indexes count from 1, an index out of range gives an
/// empty text or false.
class CommandString {
 public:
    /// Tells whether a word is an option; asked only for words that begin with "/" where paths do
    /// so too.
    using KnownOption = bool (*)(std::string_view word);

    CommandString(PathStyle style, KnownOption known) : style_(style), known_(known) {}

    const std::string& Command() const { return command_; }
    /// Splits the new line at once.
    void Command(std::string line);

    /// Takes arguments that the system has already split; they may hold any character.
    void assign(std::vector<std::string> arguments);

    const std::string& Prefix() const { return prefix_; }
    void Prefix(std::string characters) { prefix_ = std::move(characters); }

    /// The argument in the spelling of the option table: "--x" and "-x" read as "/x".
    std::string Parameter(std::size_t index) const;

    /// The argument as it was given, without quotes.
    const std::string& ParameterEx(std::size_t index) const;

    std::size_t count() const { return arguments_.size(); }
    bool IsOption(std::size_t index) const;
    bool NextIsValue(std::size_t index) const;

    /// Splits `Command` at blanks and tabs; quotes hold blanks together and are taken away, a
    /// quote without its partner reaches to the end.
    void Process();

 private:
    PathStyle style_;
    KnownOption known_;
    std::string command_;
    std::string prefix_ = "/-";
    std::vector<std::string> arguments_;
};

}  // namespace tavlo
