#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/Progress.h"
#include "core/TextSink.h"

namespace tavlo {

/// For work on a single file, whose progress nobody asks for.
class NoProgress final : public Progress {
 public:
    void setRange(std::size_t) override {}
    void step() override {}
    void report(std::string_view) override {}
    void pumpMessages() override {}
};

/// Keeps what is told, a line each, for somebody who tells it later.
class KeptLines final : public TextSink {
 public:
    bool write(std::string_view text) override {
        while (text.ends_with('\n')) text.remove_suffix(1);
        lines.emplace_back(text);
        return true;
    }

    [[nodiscard]] std::string joined() const {
        std::string text;
        for (const std::string& line : lines) text += (text.empty() ? "" : "\n") + line;
        return text;
    }

    std::vector<std::string> lines;
};

}  // namespace tavlo
