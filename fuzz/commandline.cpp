#include "core/ByteCursor.h"
#include "core/CommandString.h"
#include "core/Options.h"
#include "fuzz/Promise.h"

using namespace tavlo;

namespace {
std::vector<std::string> argumentsOf(const CommandString& line) {
    std::vector<std::string> arguments;
    for (std::size_t i = 1; i <= line.count(); ++i) arguments.push_back(line.ParameterEx(i));
    return arguments;
}

void check(std::string_view text, PathStyle style) {
    CommandString line(style, isOptionWord);
    line.Command(std::string(text));
    promise(line.count() <= (text.size() + 1) / 2);
    promise(line.Parameter(0).empty() && line.Parameter(line.count() + 1).empty());
    promise(!line.NextIsValue(line.count()));
    readOptions(line, "start");

    // A line made of split arguments splits into the same ones.
    const std::vector<std::string> arguments = argumentsOf(line);
    CommandString given(style, isOptionWord);
    given.assign(arguments);
    promise(argumentsOf(given) == arguments);
    given.Process();
    promise(argumentsOf(given) == arguments);
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    check(textOf({data, size}), PathStyle::Posix);
    check(textOf({data, size}), PathStyle::Windows);
    return 0;
}
