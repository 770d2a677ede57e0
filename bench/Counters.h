#pragma once

#include <malloc.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <new>
#include <string>
#include <vector>

namespace tavlo {

/// What the process has spent so far. To be included by one source of a program: it replaces
/// operator new.
struct Counters {
    std::uint64_t allocations = 0;  ///< calls of operator new
    std::uint64_t heldBytes = 0;    ///< heap in use
    std::uint64_t readBytes = 0;
    std::uint64_t reads = 0;  ///< system calls that read
    std::uint64_t writtenBytes = 0;
    std::uint64_t writes = 0;  ///< system calls that write

    Counters operator-(const Counters& before) const {
        return {allocations - before.allocations,   heldBytes - before.heldBytes,
                readBytes - before.readBytes,       reads - before.reads,
                writtenBytes - before.writtenBytes, writes - before.writes};
    }
};

inline std::uint64_t allocationCount = 0;

/// The most heap in use at once while one of these lives, beyond what was in use before.
class PeakWatch {
 public:
    PeakWatch() { watch_ = this; }
    ~PeakWatch() { watch_ = nullptr; }
    PeakWatch(const PeakWatch&) = delete;
    PeakWatch& operator=(const PeakWatch&) = delete;

    [[nodiscard]] std::uint64_t bytes() const { return static_cast<std::uint64_t>(peak_); }

    static void took(void* memory) {
        if (watch_ == nullptr) return;
        watch_->held_ += sizeOf(memory);
        watch_->peak_ = std::max(watch_->peak_, watch_->held_);
    }
    static void gives(void* memory) {
        if (watch_ != nullptr && memory != nullptr) watch_->held_ -= sizeOf(memory);
    }

 private:
    // With the word that the system keeps in front.
    static std::int64_t sizeOf(void* memory) {
        return static_cast<std::int64_t>(::malloc_usable_size(memory) + sizeof(std::size_t));
    }

    static inline PeakWatch* watch_ = nullptr;
    std::int64_t held_ = 0, peak_ = 0;
};

inline Counters counters() {
    Counters now;
    std::ifstream io("/proc/self/io");
    std::string name;
    for (std::uint64_t value = 0; io >> name >> value;) {
        if (name == "rchar:") now.readBytes = value;
        if (name == "syscr:") now.reads = value;
        if (name == "wchar:") now.writtenBytes = value;
        if (name == "syscw:") now.writes = value;
    }
    now.allocations = allocationCount;
    now.heldBytes = ::mallinfo2().uordblks + ::mallinfo2().hblkhd;
    return now;
}

/// The paths of all files below a folder whose names end in ".mp3", sorted.
inline std::vector<std::string> mp3FilesBelow(const std::string& folder) {
    std::vector<std::string> paths;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        if (entry.path().extension() == ".mp3") paths.push_back(entry.path().string());
    }
    std::sort(paths.begin(), paths.end());
    return paths;
}

}  // namespace tavlo

// Not inlined: the compiler must not see that they end in the C library.
[[gnu::noinline]] void* operator new(std::size_t size) {
    ++tavlo::allocationCount;
    void* const memory = std::malloc(size != 0 ? size : 1);
    if (memory == nullptr) throw std::bad_alloc();
    tavlo::PeakWatch::took(memory);
    return memory;
}
[[gnu::noinline]] void operator delete(void* memory) noexcept {
    tavlo::PeakWatch::gives(memory);
    std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept {
    tavlo::PeakWatch::gives(memory);
    std::free(memory);
}
