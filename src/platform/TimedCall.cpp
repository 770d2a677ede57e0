#include "platform/TimedCall.h"

#include <future>
#include <system_error>
#include <thread>
#include <utility>

namespace tavlo {

// What the work owned is gone before it counts as done.
bool doneWithin(std::chrono::milliseconds limit, std::function<void()> work) {
    std::promise<void> promise;
    const std::future<void> done = promise.get_future();
    try {
        std::thread([work = std::move(work), promise = std::move(promise)]() mutable {
            work();
            work = nullptr;
            promise.set_value();
        }).detach();
    } catch (const std::system_error&) {
        return false;  // there is no thread to be had
    }
    return done.wait_for(limit) == std::future_status::ready;
}

}  // namespace tavlo
