#pragma once

#include <optional>
#include <string>

#include "convert/ConversionContext.h"
#include "convert/ConversionPlan.h"

namespace tavlo {

/// What an encoder made, not yet under its name.
struct EncodedFile {
    ID3tag record;
    std::string description;  ///< of the encoder and its options
};

/// Encodes WAV files, one after the other.
class WavEncoder {
 public:
    explicit WavEncoder(const ConversionContext& context) : context_(context) {}

    /// Whether the row's encoder is there; otherwise that is told.
    [[nodiscard]] bool isAvailable(const Conversion& row) const;

    /// Encodes a WAV file into `result` and reads that back; nothing, and a word in the log, where
    /// no sound file of the WAV's playing time came out.
    std::optional<EncodedFile> encode(const Conversion& row, const std::string& wav,
                                      const std::string& result);

    /// Where the result of a row is made: beside its place, or in the work folder where an encoder
    /// should not write straight into it (removable drives, Ogg files on the network).
    std::string workPath(const Conversion& row);

 private:
    [[nodiscard]] std::optional<EncodeCommand> commandFor(const Conversion& row,
                                                          const std::string& wav,
                                                          const std::string& result) const;
    bool run(const EncodeCommand& command, const std::string& result);
    bool rewrap(const std::string& result);
    bool encodeWma(const std::string& wav, const std::string& result);
    void tellStep(const EncodeCommand& command) const;
    std::optional<ID3tag> readBack(const std::string& wav, const std::string& result) const;

    const ConversionContext& context_;
};

/// Gives a finished file its row's name, which may have become another one meanwhile, or puts it in
/// the source's place.
bool placeResult(const std::string& result, Conversion& row);

}  // namespace tavlo
