#pragma once

#include <cstddef>
#include <string_view>

#include "core/TextSink.h"
#include "core/Texts.h"

namespace tavlo {

/// The one routine for failures that a person must know of; work goes on after it.
class ErrorReport {
 public:
    ErrorReport(const Texts& texts, TextSink& sink) : texts_(texts), sink_(sink) {}

    /// Tells one line and counts it.
    void report(Text text, std::string_view argument = {});

    /// Tells one line that is no failure.
    void note(Text text, std::string_view argument = {});

    /// The same two for a line that is made already.
    void reportLine(std::string_view line);
    void noteLine(std::string_view line);

    std::size_t count() const { return count_; }
    const Texts& texts() const { return texts_; }

    /// The process's exit code: 1 when anything was reported, else 0.
    int exitCode() const { return count_ > 0 ? 1 : 0; }

 private:
    const Texts& texts_;
    TextSink& sink_;
    std::size_t count_ = 0;
};

}  // namespace tavlo
