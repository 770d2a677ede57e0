// Stands in for encoders and decoders. It writes the arguments that it got to the end of the file
// TAVLO_CHILD_LOG, bytes other than letters and the like as "%41", then does what TAVLO_CHILD_DOES
// or an argument "--does=..." says, words one after another, each of them also in the form
// NAME:WORD, which is for a program with that name only:
//   copy         the input file becomes the output file (so it does when nothing is said)
//   garbage      writes an output file that is none
//   give=PATH    the output file becomes what lies at PATH, with the output's extension behind it,
//                if there is such a file;  half=PATH  its first half
//   beside       from now on the output's name is the input's, with the output's extension;
//   behind       ... or with ".wav" behind it
//   print=COUNT  writes so many letters;  args  writes the arguments, as in the log
//   input        writes how many bytes its input has;  priority, inheritance  writes these
//   sleep=MILLISECONDS;  await  waits until the file named last is there
//   leave=MILLISECONDS  starts another one that sleeps and keeps the output open
//   crash;  exit=CODE
#include "child.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string_view>
#include <thread>

namespace tavlo::child {

namespace fs = std::filesystem;

namespace {
constexpr std::string_view doesOption = "--does=";

std::string utf8(const fs::path& path) {
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
}

fs::path pathOf(std::string_view text) {
    return fs::path(std::u8string(text.begin(), text.end()));
}

std::string printable(const std::string& text) {
    std::string result;
    for (const char c : text) {
        char code[4];
        std::snprintf(code, sizeof code, "%%%02X", static_cast<unsigned>(c) & 0xFFU);
        const bool isPlain = c > ' ' && c < '\x7F' && c != '%' && c != '>';
        result += isPlain ? std::string(1, c) : std::string(code);
    }
    return result;
}

/// Where a stand-in for an encoder reads and writes.
struct Ways {
    fs::path input, output;
};

// The last file named in another argument: behind the options that begin it.
std::string_view fileIn(std::string_view argument, bool& isOutput) {
    for (const std::string_view option : {"-create=", "-o", "-n"}) {
        if (!argument.starts_with(option)) continue;
        isOutput = option != "-create=";
        return argument.substr(option.size());
    }
    const std::size_t file = argument.find(":file=");
    isOutput = file != std::string_view::npos;
    return isOutput ? argument.substr(file + 6) : argument;
}

bool isPathLike(std::string_view text) {
    return !text.starts_with('-') && text.find_first_of("/\\.") != std::string_view::npos;
}

Ways waysOf(const std::vector<std::string>& arguments) {
    Ways ways;
    std::string_view last;
    for (const std::string& argument : arguments) {
        bool isOutput = false;
        const std::string_view file = fileIn(argument, isOutput);
        isOutput = isOutput || last == "-o" || last == "-of" || last == "-f";
        last = argument;
        if (!isPathLike(file)) continue;
        std::error_code error;
        const bool isFirst = ways.input.empty() && fs::is_regular_file(pathOf(file), error);
        (isFirst && !isOutput ? ways.input : ways.output) = pathOf(file);
    }
    const bool isDecoder = ways.output.empty() && !ways.input.empty();
    if (isDecoder) ways.output = fs::path(ways.input).replace_extension(".wav");
    return ways;
}

void say(const std::string& text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
    std::fflush(stdout);
}

void sleepFor(const std::string& milliseconds) {
    std::this_thread::sleep_for(std::chrono::milliseconds(std::atoi(milliseconds.c_str())));
}

void await(const fs::path& file) {
    while (!fs::exists(file)) sleepFor("5");
}

std::string letters(int count) {
    std::string text;
    for (int i = 0; i < count; ++i) text += static_cast<char>('a' + i % 26);
    return text;
}

std::string inputSize() {
    std::size_t count = 0;
    while (std::getchar() != EOF) ++count;
    return std::to_string(count);
}

/// One run of the program: its name, arguments and the code that it ends with.
struct Run {
    std::vector<fs::path> paths;
    std::string name;
    std::vector<std::string> arguments;  // without the program's path
    int exitCode = 0;
    std::string naming = {};  // of its own: "beside" or "behind" the input

    [[nodiscard]] std::string told() const {
        std::string text;
        for (const std::string& argument : arguments) text += printable(argument) + "\n";
        return text;
    }

    [[nodiscard]] Ways ways() const {
        Ways found = waysOf(arguments);
        const fs::path extension = found.output.extension();
        if (naming == "beside") found.output = fs::path(found.input).replace_extension(extension);
        if (naming == "behind") found.output = fs::path(found.input) += ".wav";
        return found;
    }

    void copy(const fs::path& from, const fs::path& to) {
        std::error_code error;
        // Not every system lets a copy take another file's place.
        if (fs::exists(from)) fs::remove(to, error);
        if (!fs::copy_file(from, to, error)) exitCode = 1;
    }

    void give(const std::string& prepared, bool isHalf) {
        const fs::path output = ways().output;
        copy(pathOf(prepared + utf8(output.extension())), output);
        if (isHalf && exitCode == 0) fs::resize_file(output, fs::file_size(output) / 2);
    }

    void act(const std::string& word, const std::string& value) {
        if (word == "copy") copy(ways().input, ways().output);
        if (word == "garbage") std::ofstream(ways().output) << "garbage";
        if (word == "give" || word == "half") give(value, word == "half");
        if (word == "beside" || word == "behind") naming = word;
        if (word == "print") say(letters(std::atoi(value.c_str())));
        if (word == "args") say(told());
        if (word == "input") say(inputSize());
        if (word == "priority") say(priority());
        if (word == "inheritance") say(inheritance());
        if (word == "sleep") sleepFor(value);
        if (word == "await") await(pathOf(arguments.back()));
        if (word == "leave") leaveAnother(paths.front(), value);
        if (word == "crash") std::abort();
        if (word == "exit") exitCode = std::atoi(value.c_str());
    }

    void follow(const std::string& words) {
        std::istringstream stream(words);
        for (std::string word; stream >> word;) {
            const std::size_t colon = word.find_first_of(":=");
            const bool isNamed = colon != std::string::npos && word[colon] == ':';
            if (isNamed && word.substr(0, colon) != name) continue;
            if (isNamed) word.erase(0, colon + 1);
            const std::size_t equals = std::min(word.find('='), word.size());
            act(word.substr(0, equals), word.substr(std::min(equals + 1, word.size())));
        }
    }
};
}  // namespace

int run(const std::vector<fs::path>& arguments) {
    Run run{arguments, utf8(arguments.front().stem()), {}};
    std::string words = utf8(variable("TAVLO_CHILD_DOES"));
    for (std::size_t i = 1; i < arguments.size(); ++i) {
        const std::string argument = utf8(arguments[i]);
        if (argument.starts_with(doesOption)) words = argument.substr(doesOption.size());
        if (!argument.starts_with(doesOption)) run.arguments.push_back(argument);
    }
    const fs::path log = variable("TAVLO_CHILD_LOG");
    if (!log.empty()) {
        const std::string text = ">" + run.name + "\n" + run.told();
        std::ofstream(log, std::ios::binary | std::ios::app) << text;
    }
    // Not in the first thread, for encoders use several.
    std::thread([&] { run.follow(words.empty() ? "copy" : words); }).join();
    return run.exitCode;
}

}  // namespace tavlo::child
