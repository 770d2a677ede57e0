#include "desk/ToolUses.h"

#include <algorithm>
#include <array>

namespace tavlo {

namespace {
constexpr auto uses = std::to_array<ToolUse>({
    {"lame.exe", Text::OptToolLame},
    {"oggenc.exe", Text::OptToolOggEnc},
    {"oggdec.exe", Text::OptToolOggDec},
    {"mppenc.exe", Text::OptToolMppEnc},
    {"mpcenc.exe", Text::OptToolMpcEnc},
    {"mpcdec.exe", Text::OptToolMpcDec},
    {"faac.exe", Text::OptToolFaac},
    {"faad.exe", Text::OptToolFaad},
    {"neroaacenc.exe", Text::OptToolNeroEnc},
    {"neroaacdec.exe", Text::OptToolNeroDec},
    {"mp4creator60.exe", Text::OptToolMp4Creator},
    {"ffmpeg.exe", Text::OptToolFfmpeg},
    {"alacdec.exe", Text::OptToolAlacDec},
    {"flac.exe", Text::OptToolFlac},
    {"wavpack.exe", Text::OptToolWavPack},
    {"wvunpack.exe", Text::OptToolWvUnpack},
    {"mac.exe", Text::OptToolMac},
    {"wmal2pcm.exe", Text::OptToolWmaDec},
    {"mplayer.exe", Text::OptToolMplayer},
    {"cddae.exe", Text::OptToolCdDrive},
    {"wnaspi32.dll", Text::OptToolAspi},
});
}  // namespace

std::span<const ToolUse> toolUses() {
    return uses;
}

std::vector<MissingTool> missingToolUses(const ToolPlaces& places) {
    const auto names = missingToolNames(places);
    std::vector<MissingTool> missing;
    for (const ToolUse& use : uses)
        if (std::ranges::find(names, use.tool) != names.end())
            missing.push_back({toolFileName(use.tool, places.style), use.enables});
    return missing;
}

}  // namespace tavlo
