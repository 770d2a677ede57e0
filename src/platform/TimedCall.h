#pragma once

#include <chrono>
#include <functional>

namespace tavlo {

/// Lets a thread of its own do `work`, and waits for it; false where it has not ended in time. It
/// then goes on, perhaps for ever, so it has to own all that it touches.
bool doneWithin(std::chrono::milliseconds limit, std::function<void()> work);

}  // namespace tavlo
