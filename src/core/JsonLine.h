#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "core/JsonText.h"

namespace tavlo {

/// One JSON object on a line of its own, key by key.
class JsonLine {
 public:
    JsonLine() { json_.StartObject(); }

    void add(std::string_view key, std::string_view text) {
        writeText(json_, key);
        writeText(json_, text);
    }
    void addName(std::string_view key, const std::string& path) {
        writeText(json_, key);
        writeName(json_, path);
    }
    void addNumber(std::string_view key, std::size_t number) {
        writeText(json_, key);
        json_.Uint64(number);
    }
    void addNames(std::string_view key, const std::vector<std::string>& names) {
        writeText(json_, key);
        json_.StartArray();
        for (const std::string& name : names) writeName(json_, name);
        json_.EndArray();
    }
    void addFlag(std::string_view key, bool flag) {
        writeText(json_, key);
        json_.Bool(flag);
    }
    /// What comes next, up to `endObject`, is an object of an array that stands under a key.
    void beginArray(std::string_view key) {
        writeText(json_, key);
        json_.StartArray();
    }
    void beginObject() { json_.StartObject(); }
    void endObject() { json_.EndObject(); }
    void endArray() { json_.EndArray(); }
    [[nodiscard]] std::string finish() {
        json_.EndObject();
        return std::string(buffer_.GetString(), buffer_.GetSize()) + '\n';
    }

 private:
    rapidjson::StringBuffer buffer_;
    JsonWriter json_{buffer_};
};

/// What happened, or would, to a file that gets another path; no message where it is empty.
inline std::string pathsLine(const std::string& path, const std::string& newPath,
                             std::string_view result, std::string_view message) {
    JsonLine line;
    line.addName("Path", path);
    line.addName("NewPath", newPath);
    line.add("Result", result);
    if (!message.empty()) line.add("Message", message);
    return line.finish();
}

}  // namespace tavlo
