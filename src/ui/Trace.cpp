#include "ui/Trace.h"

#include <wx/app.h>

#include <algorithm>

#include "platform/Environment.h"

namespace tavlo {

namespace {
using Clock = std::chrono::steady_clock;

double millisecondsSince(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}
}  // namespace

// Shared with the events that are still under way when the watch ends.
struct Trace::Watch {
    std::atomic<bool> isOn{true}, isAnswered{true};
    double longest = 0;  // only the event loop touches it
};

Trace::Trace() {
    const auto path = environmentVariable("TAVLO_TRACE");
    if (path && !path->empty()) file_.reset(std::fopen(path->c_str(), "w"));
}

Trace::~Trace() {
    if (watch_) watch_->isOn = false;
}

void Trace::note(std::string_view event, double number) {
    if (!file_) return;
    std::fprintf(file_.get(), "%.1f %.*s %.1f\n", millisecondsSince(start_),
                 static_cast<int>(event.size()), event.data(), number);
    std::fflush(file_.get());
}

void Trace::beginWatch() {
    if (!file_) return;
    watch_ = std::make_shared<Watch>();
    std::thread([watch = watch_] {
        while (watch->isOn) {
            std::this_thread::sleep_for(std::chrono::milliseconds(4));
            if (!watch->isOn || !watch->isAnswered.exchange(false)) continue;
            wxTheApp->CallAfter([watch, asked = Clock::now()] {
                watch->longest = std::max(watch->longest, millisecondsSince(asked));
                watch->isAnswered = true;
            });
        }
    }).detach();
}

void Trace::endWatch() {
    if (!watch_) return;
    note("longest", watch_->longest);
    watch_->isOn = false;
    watch_.reset();
}

Trace::Span::~Span() {
    trace_.note(event_, millisecondsSince(start_));
}

}  // namespace tavlo
