#pragma once

#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace tavlo::test {

/// A new empty folder that goes away with everything in it. Names are UTF-8 and may hold "/".
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

    std::string path() const { return utf8(folder_); }
    std::string path(const std::string& name) const { return utf8(at(name).make_preferred()); }

    /// Makes the folders that the name asks for; gives the file's path.
    std::string write(const std::string& name, const std::string& bytes) const {
        std::filesystem::create_directories(at(name).parent_path());
        std::ofstream(at(name), std::ios::binary) << bytes;
        return path(name);
    }
    std::string read(const std::string& name) const {
        std::ifstream stream(at(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    std::string makeFolder(const std::string& name) const {
        std::filesystem::create_directories(at(name));
        return path(name);
    }

 private:
    std::filesystem::path at(const std::string& name) const {
        return folder_ / std::u8string(name.begin(), name.end());
    }
    static std::string utf8(const std::filesystem::path& path) {
        const std::u8string text = path.u8string();
        return {text.begin(), text.end()};
    }

    std::filesystem::path folder_;
};

}  // namespace tavlo::test
