// Under the name of an encoder: puts a prepared sound, as.wav after "--decode" or as.mp3, in the
// folder BENCH_SOUNDS, where the program expects its result, and ends at once.
// bench_stand_in --waves FOLDER COUNT SECONDS  makes WAV files, as.wav first
// bench_stand_in --children TOOL COUNT FOLDER  starts as many decoders and encoders, and nothing
// else

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "platform/Process.h"

namespace fs = std::filesystem;

namespace {
std::string number(std::uint32_t value, int bytes) {
    std::string text;
    for (int i = 0; i < bytes; ++i) text += static_cast<char>(value >> (8 * i) & 0xFFU);
    return text;
}

// 16 bits, stereo, 44100 Hz: chords, so that an encoder has work to do.
void makeWave(const fs::path& path, int seconds, int pitch) {
    constexpr int rate = 44100, frameSize = 4;
    const auto size = static_cast<std::uint32_t>(seconds * rate * frameSize);
    std::string bytes = "RIFF" + number(size + 36, 4) + "WAVEfmt " + number(16, 4) + number(1, 2) +
                        number(2, 2) + number(rate, 4) + number(rate * frameSize, 4) +
                        number(frameSize, 2) + number(16, 2) + "data" + number(size, 4);
    for (int i = 0; i < seconds * rate; ++i) {
        double level = 0;
        for (const int tone : {3, 4, 5, 9, 31}) level += std::sin(i * 0.002 * tone * pitch);
        const auto sample = static_cast<std::uint32_t>(static_cast<int>(level * 5000));
        bytes += number(sample, 2) + number(sample, 2);
    }
    std::ofstream(path, std::ios::binary) << bytes;
}

int makeWaves(const fs::path& folder, int count, int seconds) {
    fs::create_directories(folder);
    makeWave(folder / "as.wav", seconds, 10);
    for (int i = 1; i <= count; ++i) makeWave(folder / (std::to_string(i) + ".wav"), seconds, i);
    return 0;
}

bool runTool(const std::string& tool, const std::string& arguments) {
    const auto child = tavlo::startProcess({tool, "lame.exe" + arguments, {}});
    if (child == nullptr) return false;
    while (!child->waitFor(100)) {
    }
    return true;
}

int startChildren(const std::string& tool, int count, const std::string& folder) {
    fs::create_directories(folder);
    for (int i = 1; i <= count; ++i) {
        const std::string path = folder + "/" + std::to_string(i) + ".mp3";
        if (!runTool(tool, " --mp3input --decode \"" + path + "\"")) return 1;
        if (!runTool(tool, " --preset medium \"a.wav\" \"" + path + "\"")) return 1;
        fs::remove(path + ".wav");
    }
    return 0;
}

int standIn(const std::string& first, const std::string& last) {
    const fs::path sounds = std::getenv("BENCH_SOUNDS");
    const bool decodes = first == "--mp3input";
    const auto overwrite = fs::copy_options::overwrite_existing;
    fs::copy_file(sounds / (decodes ? "as.wav" : "as.mp3"), decodes ? last + ".wav" : last,
                  overwrite);
    return 0;
}
}  // namespace

int main(int count, char** arguments) {
    const std::string first = count > 1 ? arguments[1] : "";
    if (first == "--waves" && count == 5) {
        return makeWaves(arguments[2], std::atoi(arguments[3]), std::atoi(arguments[4]));
    }
    if (first == "--children" && count == 5) {
        return startChildren(arguments[2], std::atoi(arguments[3]), arguments[4]);
    }
    return count > 2 ? standIn(first, arguments[count - 1]) : 0;
}
