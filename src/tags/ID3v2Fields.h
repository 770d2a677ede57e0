#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include "tags/ID3tag.h"

namespace tavlo {

enum class FrameKind : std::uint8_t { Text, Genre, Comment, Url, UserText, Picture };

/// The description of the one TXXX frame that the program understands, and an APEv2 item's key.
inline constexpr std::string_view encodingHistoryKey = "ENCODER_INFO";

/// A frame that the program understands, and the field that it feeds and is written from.
struct FieldFrame {
    std::string_view id;     ///< in versions 3 and 4
    std::string_view oldId;  ///< in version 2; empty where that version's frame is not interpreted
    FrameKind kind;
    FieldSet fields;  ///< that it tells
    void (*set)(ID3tag&, std::string_view);
    /// The text for a tag of the given version; an empty one writes no frame.
    std::string (*get)(const ID3tag&, int majorVersion);
};

inline constexpr std::size_t fieldFrameCount = interpretedFrameCount;

/// In the order in which they are written.
std::span<const FieldFrame, fieldFrameCount> fieldFrames();

/// The row of an identifier; null where the frame is not interpreted.
const FieldFrame* findFieldFrame(std::string_view id, int majorVersion);

}  // namespace tavlo
