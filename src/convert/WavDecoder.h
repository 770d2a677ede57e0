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
    /// the decoder that failed, where none came out, or less than all of it.
    bool DecodeToWav(const Conversion& row, const std::string& wav);

 private:
    struct Attempt {
        std::string executable;
        bool wasStarted = false;
        bool isDone = false;
        bool isCorrupted = false;  ///< it is shorter than the source
    };
    Attempt tryDecoder(const Conversion& row, const std::string& wav, int alternative);
    static void takeNamed(const std::string& copy, const std::string& wav);
    void judge(const Conversion& row, const std::string& wav, Attempt& attempt) const;

    const ConversionContext& context_;
};

}  // namespace tavlo
