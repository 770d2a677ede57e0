#include <gtest/gtest.h>
#include <windows.h>

#include "support/MemoryFile.h"
#include "support/TagBytes.h"
#include "support/TempFolder.h"

namespace tavlo::test {
namespace {

TEST(UpdateTagsOnWindows, FileThatAnotherProgramHoldsIsReported) {
    const TempFolder folder;
    const CodePage ansi(1252);
    const Texts texts;
    MemorySink sink;
    ErrorReport errors(texts, sink);
    TestProgress progress;
    const std::string bytes = mpegFrames(9);
    const std::string path = folder.write("a.mp3", bytes);
    ID3tag record = ReadAudioFile(path, {ansi});
    record.SetArtist("Artist");
    const std::wstring wide(path.begin(), path.end());
    const HANDLE held = ::CreateFileW(wide.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING,
                                      FILE_ATTRIBUTE_NORMAL, nullptr);
    ASSERT_NE(held, INVALID_HANDLE_VALUE);
    EXPECT_EQ(UpdateTags(record, {ansi, {}, errors, progress}), TagUpdate::Refused);
    ::CloseHandle(held);
    EXPECT_FALSE(record.OK);
    EXPECT_EQ(record.Path, "");
    EXPECT_EQ(record.Refused, Refusal::InUse);
    EXPECT_EQ(sink.text, texts.get(Text::FileInUse, path) + "\n");
    EXPECT_TRUE(folder.read("a.mp3") == bytes);
}

}  // namespace
}  // namespace tavlo::test
