#pragma once

#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace tavlo::test {

/// A new empty folder that goes away with everything in it.
class TempFolder {
 public:
    TempFolder() {
        static std::atomic<int> counter{0};
        const auto ticks = std::chrono::steady_clock::now().time_since_epoch().count();
        folder_ = std::filesystem::temp_directory_path() /
                  ("tavlo-test-" + std::to_string(ticks) + "-" + std::to_string(++counter));
        std::filesystem::create_directories(folder_);
    }
    ~TempFolder() {
        std::error_code error;
        std::filesystem::remove_all(folder_, error);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    std::string path() const { return folder_.string(); }
    std::string path(const std::string& name) const { return (folder_ / name).string(); }

    void write(const std::string& name, const std::string& bytes) const {
        std::ofstream(folder_ / name, std::ios::binary) << bytes;
    }
    std::string read(const std::string& name) const {
        std::ifstream stream(folder_ / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

 private:
    std::filesystem::path folder_;
};

}  // namespace tavlo::test
