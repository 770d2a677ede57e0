#pragma once

#include <string>

#include "convert/ConversionContext.h"
#include "convert/ConversionPlan.h"

namespace tavlo {

/// Decodes files, one after the other.
class WavDecoder {
 public:
    explicit WavDecoder(const ConversionContext& context) : context_(context) {}

    /// Decodes a file into a WAV file in the work folder. False, and a word in the log that names
    /// the decoder that failed, where none came out.
    bool DecodeToWav(const Conversion& row, const std::string& wav);

    /// Whether the last WAV is shorter than its source said, so that some of it is missing.
    [[nodiscard]] bool isCutShort() const { return isCutShort_; }

 private:
    struct Attempt {
        std::string executable;
        bool wasStarted = false;
        bool isDone = false;
    };
    Attempt tryDecoder(const Conversion& row, const std::string& wav, int alternative);
    static void takeNamed(const std::string& copy, const std::string& wav);
    bool check(const Conversion& row, const std::string& wav);

    const ConversionContext& context_;
    bool isCutShort_ = false;
};

}  // namespace tavlo
