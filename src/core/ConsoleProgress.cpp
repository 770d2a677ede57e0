#include "core/ConsoleProgress.h"

#include "platform/PlainText.h"

namespace tavlo {
namespace {

constexpr auto pause = std::chrono::milliseconds(100);

/// The beginning of a text, at most so many characters.
std::string beginning(std::string_view text, std::size_t characters) {
    std::string result;
    for (const char c : text) {
        if (!isUtf8Continuation(c) && characters-- == 0) break;
        result += c;
    }
    return withoutControls(std::move(result));
}

}  // namespace

void ConsoleProgress::setRange(std::size_t count) {
    count_ = count;
    done_ = 0;
    nextDraw_ = {};
    if (count == 0) erase();
}

void ConsoleProgress::reportAt(std::string_view name, Clock::time_point now) {
    if (columns_ <= 1 || now < nextDraw_) return;
    nextDraw_ = now + pause;
    draw(name);
}

void ConsoleProgress::draw(std::string_view name) {
    std::string text = std::to_string(done_);
    if (count_ > 0) text += '/' + std::to_string(count_);
    // The last column stays free: writing into it wraps the line.
    text = beginning(text.append(" ").append(name), static_cast<std::size_t>(columns_ - 1));
    const std::size_t length = characterCount(text);
    const std::size_t rest = drawn_ > length ? drawn_ - length : 0;
    terminal_.write('\r' + text + std::string(rest, ' '));
    drawn_ = length;
}

void ConsoleProgress::erase() {
    if (drawn_ == 0) return;
    terminal_.write('\r' + std::string(drawn_, ' ') + '\r');
    drawn_ = 0;
}

bool ConsoleProgress::write(std::string_view text) {
    erase();
    nextDraw_ = {};
    return terminal_.write(text);
}

}  // namespace tavlo
