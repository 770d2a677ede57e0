#include "platform/Process.h"

#include <algorithm>
#include <system_error>
#include <thread>
#include <utility>

namespace tavlo {

void Process::leave(std::unique_ptr<Process> running) {
    constexpr int minute = 60'000;
    Process* const process = running.release();
    try {
        std::thread([process] {
            const std::unique_ptr<Process> left(process);
            while (!left->waitFor(minute)) {
            }
        }).detach();
    } catch (const std::system_error&) {
        // Without a thread it stays as it is until this process ends.
    }
}

// 2n backslashes and a quote are n backslashes and a quote that opens or closes; one more of them
// makes the quote a character. Two quotes inside quoted text are one.
std::vector<std::string> splitCommandLine(std::string_view line) {
    std::vector<std::string> words;
    std::string word;
    bool isWord = false;
    bool isQuoted = false;
    for (std::size_t i = 0; i < line.size(); ++i) {
        const char c = line[i];
        if (!isQuoted && (c == ' ' || c == '\t')) {
            if (isWord) words.push_back(std::move(word));
            word.clear();
            isWord = false;
            continue;
        }
        isWord = true;
        const std::size_t slashes = std::min(line.find_first_not_of('\\', i), line.size()) - i;
        const bool beforeQuote = i + slashes < line.size() && line[i + slashes] == '"';
        if (slashes > 0) {
            word.append(beforeQuote ? slashes / 2 : slashes, '\\');
            i += slashes - 1;
            if (beforeQuote && slashes % 2 == 1) {
                word += '"';
                ++i;
            }
        } else if (c == '"' && isQuoted && i + 1 < line.size() && line[i + 1] == '"') {
            word += '"';
            ++i;
        } else if (c == '"') {
            isQuoted = !isQuoted;
        } else {
            word += c;
        }
    }
    if (isWord) words.push_back(std::move(word));
    return words;
}

// A quote in a name, which not every system forbids, is escaped with the backslashes in front of
// it.
std::string quotedArgument(std::string_view text) {
    std::string result = "\"";
    std::size_t slashes = 0;
    for (const char c : text) {
        if (c == '"') result.append(slashes + 1, '\\');
        slashes = c == '\\' ? slashes + 1 : 0;
        result += c;
    }
    return result.append(slashes, '\\') + '"';
}

}  // namespace tavlo
