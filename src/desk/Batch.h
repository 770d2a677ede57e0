#pragma once

#include <atomic>
#include <cstddef>
#include <functional>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

#include "core/Progress.h"

namespace tavlo {

/// Work on many items, one after the other, while its owner goes on. An owner that goes waits for
/// the item that is at work, for nothing is ever left half way; the rest stays undone.
template <class Item, class Result>
class Batch {
 public:
    /// `work` is told of a cancel so that it can leave a long item.
    using Work = std::function<Result(const Item&, const CancelFlag&)>;

    Batch(std::vector<Item> items, Work work)
        : items_(std::move(items)), work_(std::move(work)), thread_([this] { run(); }) {}
    Batch(const Batch&) = delete;
    Batch& operator=(const Batch&) = delete;
    ~Batch() {
        cancel();
        thread_.join();
    }

    /// Items that were not begun stay as they are.
    void cancel() { isCancelled_ = true; }

    /// The results since the last call.
    std::vector<Result> take() {
        const std::scoped_lock lock(mutex_);
        return std::exchange(results_, {});
    }
    /// True when all is done, or was cancelled, and every result was taken.
    [[nodiscard]] bool isDone() const {
        const std::scoped_lock lock(mutex_);
        return isDone_ && results_.empty();
    }
    [[nodiscard]] std::size_t done() const { return done_; }
    [[nodiscard]] std::size_t count() const { return items_.size(); }

 private:
    void run() {
        for (const Item& item : items_) {
            if (isCancelled_) break;
            Result result = work_(item, isCancelled_);
            ++done_;
            const std::scoped_lock lock(mutex_);
            results_.push_back(std::move(result));
        }
        const std::scoped_lock lock(mutex_);
        isDone_ = true;
    }

    const std::vector<Item> items_;
    const Work work_;
    CancelFlag isCancelled_{false};
    std::atomic<std::size_t> done_{0};
    mutable std::mutex mutex_;  // of the two below
    std::vector<Result> results_;
    bool isDone_ = false;
    std::thread thread_;  // last: it uses all the others
};

}  // namespace tavlo
