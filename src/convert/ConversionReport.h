#pragma once

#include <set>
#include <string>
#include <vector>

#include "convert/Converter.h"
#include "core/StartUp.h"

namespace tavlo {

/// Prints what is to be done, or what came of it, file by file, and sums it up.
class ConversionReport {
 public:
    ConversionReport(Services& services, const ConversionSettings& settings)
        : services_(services), settings_(settings) {}

    void tellPlanned(const Conversion& row);
    /// `message` may be empty.
    void tell(const Conversion& row, ConversionResult result, std::string_view message);
    /// One more file of which something went wrong.
    void countFailure() { ++failed_; }
    [[nodiscard]] std::size_t failures() const { return failed_; }
    /// The programs that the rows told so far will run.
    [[nodiscard]] const std::set<std::string>& plannedTools() const { return tools_; }
    /// False when the output took no more.
    bool finish();

 private:
    void print(const std::string& text);
    void tellPlannedJson(const Conversion& row, const std::vector<std::string>& commands);

    Services& services_;
    const ConversionSettings& settings_;
    bool isWritten_ = true;
    std::size_t converted_ = 0, copied_ = 0, skipped_ = 0, there_ = 0, failed_ = 0;
    std::set<std::string> tools_;
};

/// The command lines that a row will run, with the names that a person knows.
std::vector<std::string> plannedCommands(const Conversion& row, const ConversionSettings& settings);

}  // namespace tavlo
