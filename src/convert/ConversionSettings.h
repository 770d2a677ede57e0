#pragma once

#include <string>

#include "convert/EncoderCatalogue.h"
#include "core/Options.h"
#include "core/Settings.h"
#include "tags/TagWriting.h"

namespace tavlo {

/// What a conversion makes: a type code and the mode within it. WAV stands for decoding.
struct ConversionTarget {
    FileTypes format = FileType::Mp3;
    int mode = 0;
};

/// Everything that settings and options say about a conversion.
struct ConversionSettings {
    EncoderSettings encoders;
    ConversionTarget target;
    bool bitrateRise = false;         ///< re-encode into an equal or higher bit rate too
    bool deletesWaves = false;        ///< a WAV source goes after its result was read back
    bool deletesCompressed = false;   ///< the same of a compressed one
    bool usesRecycleBin = true;       ///< where sources go
    bool keepsWavUnprocessed = true;  ///< the sound processing leaves its WAV as it was
    bool isBeginner = false;
    bool writesTags = true;
    bool encodesWindowsMedia = true;
    TagSettings tags;
    std::string artist, album, year, genre;  ///< for files that have none
};

/// The settings with what the command line says over them.
ConversionSettings conversionSettings(const Settings& settings, const JobOptions& options,
                                      std::string program);

}  // namespace tavlo
