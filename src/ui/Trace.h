#pragma once

#include <atomic>
#include <chrono>
#include <cstdio>
#include <memory>
#include <string_view>
#include <thread>

namespace tavlo {

/// The window's own account of how fast it answers: a line "MILLISECONDS EVENT NUMBER" for what
/// happens, written to the file that the environment's TAVLO_TRACE names; without it all of this
/// costs nothing.
class Trace {
 public:
    Trace();
    Trace(const Trace&) = delete;
    Trace& operator=(const Trace&) = delete;
    ~Trace();

    void note(std::string_view event, double number = 0);

    /// From here on the event loop is asked every few milliseconds whether it answers.
    void beginWatch();
    /// Notes the longest time that it took, in milliseconds, as "longest".
    void endWatch();

    /// Notes how long something took, in milliseconds, when it goes.
    class Span {
     public:
        Span(Trace& trace, std::string_view event) : trace_(trace), event_(event) {}
        Span(const Span&) = delete;
        Span& operator=(const Span&) = delete;
        ~Span();

     private:
        using Clock = std::chrono::steady_clock;
        Trace& trace_;
        std::string_view event_;
        Clock::time_point start_ = Clock::now();
    };

 private:
    struct Watch;
    struct Closer {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };

    std::unique_ptr<std::FILE, Closer> file_;
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
    std::shared_ptr<Watch> watch_;
};

}  // namespace tavlo
