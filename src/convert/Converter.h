#pragma once

#include <string>

#include "convert/ConversionContext.h"
#include "convert/ConversionPlan.h"
#include "convert/WavDecoder.h"
#include "convert/WavEncoder.h"

namespace tavlo {

enum class ConversionResult {
    Converted,
    Copied,   ///< unchanged
    Skipped,  ///< it lies there as it is
    There,    ///< an earlier result
    Cancelled,
    Failed
};

/// Carries out the rows of a plan, one after the other. Whatever goes wrong, the source stays as it
/// was, and neither a half file nor a WAV is left.
class Converter {
 public:
    explicit Converter(const ConversionContext& context)
        : context_(context), encoder_(context), decoder_(context) {}

    /// What the row's step asks for. The row's target then is where the result lies.
    ConversionResult convert(Conversion& row);

 private:
    /// What of the source's tags came into the result.
    enum class Carried { NotWritten, KnownFields, Everything };

    ConversionResult EncodeWavFile(Conversion& row);
    ConversionResult ReEncodeFile(Conversion& row);
    ConversionResult decode(Conversion& row);
    ConversionResult keepSource(Conversion& row, Text copied, Text skipped);
    ConversionResult failReEncode(Conversion& row);
    bool decodeWhole(Conversion& row, const std::string& wav);
    bool copySource(Conversion& row);
    bool finish(Conversion& row, const std::string& result, const EncodedFile& encoded,
                bool deletesSource);
    bool prepareFolder(const Conversion& row);
    Carried carryTags(const Conversion& row, const std::string& result, const EncodedFile& encoded);
    [[nodiscard]] bool gatherTags(const Conversion& row, const std::string& path) const;
    bool writeTags(ID3tag& record);
    [[nodiscard]] bool holdsAllTags(const Conversion& row, const std::string& result) const;
    void removeSource(const Conversion& row, bool hasAllTags);
    [[nodiscard]] bool isStopped(bool isFinished) const;
    [[nodiscard]] bool mayReplace(const Conversion& row, const std::string& result,
                                  bool hasAllTags) const;
    [[nodiscard]] bool isReadBack(const Conversion& row, const std::string& result) const;

    const ConversionContext& context_;
    WavEncoder encoder_;
    WavDecoder decoder_;
};

}  // namespace tavlo
