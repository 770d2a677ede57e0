#include "collection/FolderPlaylist.h"

#include <gtest/gtest.h>

#include "core/PathText.h"
#include "support/TagBytes.h"
#include "support/TempFolder.h"
#include "support/TestProgress.h"

namespace tavlo::test {
namespace {

std::string song(const std::string& title) {
    return tag(4, textFrame(4, "TPE1", "A", 3) + textFrame(4, "TIT2", title, 3)) + mpegFrames(80);
}

// A second of silence in 8 bits.
std::string wave() {
    return "RIFF" + littleEndian(8036, 4) + "WAVEfmt " + littleEndian(16, 4) + littleEndian(1, 2) +
           littleEndian(1, 2) + littleEndian(8000, 4) + littleEndian(8000, 4) + littleEndian(1, 2) +
           littleEndian(8, 2) + "data" + littleEndian(8000, 4) + std::string(8000, '\x80');
}

TEST(FolderPlaylist, ListsAudioFilesWithTimesAndTitles) {
    const TempFolder folder;
    folder.write("b.mp3", mpegFrames(80));
    folder.write("a.mp3", song("T (M)"));
    folder.write("c.wav", wave());
    folder.write("d.wav", "no wave");
    folder.write("e.m3u", "a.mp3");
    folder.write("f.jpg", "");
    folder.write("CD1/Пёс.mp3", song("Пёс"));
    folder.write("!Playlist.m3u", "an older and longer list, which is replaced as a whole");
    const CodePage ansi(1252);
    TestProgress progress;
    const std::string top =
        "#EXTM3U\r\n#EXTINF:1,A - T (M)\r\na.mp3\r\n#EXTINF:1,b\r\nb.mp3\r\n"
        "#EXTINF:1,c\r\nc.wav\r\nd.wav\r\n";
    ASSERT_TRUE(MakeFolderPlaylist({folder.path()}, ansi, progress, progress.cancel));
    EXPECT_EQ(folder.read("!Playlist.m3u"), top);

    PlaylistWish wish{folder.path(), folder.path("all.m3u"), "*.*", true, true, true};
    const auto list = folderPlaylist(wish, ansi, progress, progress.cancel);
    ASSERT_TRUE(list && writePlaylist(*list, true));
    EXPECT_EQ(list->files, 5U);
    EXPECT_EQ(list->notHeld, 1U);
    const std::string deep = folder.read("all.m3u8");
    EXPECT_NE(deep.find("#EXTINF:1,A - Пёс\r\n" + folder.path("CD1/Пёс.mp3") + "\r\n"),
              std::string::npos)
        << deep;
    EXPECT_NE(folder.read("all.m3u").find("#EXTINF:1,A - ???\r\n"), std::string::npos);

    progress.cancel = true;
    EXPECT_FALSE(MakeFolderPlaylist({folder.path()}, ansi, progress, progress.cancel));
    EXPECT_EQ(folder.read("!Playlist.m3u"), top);
}

TEST(FolderPlaylist, EmptyFolderHasAnEmptyList) {
    const TempFolder folder;
    TestProgress progress;
    const std::string path = folder.path() + separatorOf(nativePathStyle());
    ASSERT_TRUE(MakeFolderPlaylist({path}, CodePage(1252), progress, progress.cancel));
    EXPECT_EQ(folder.read("!Playlist.m3u"), "#EXTM3U\r\n");
}

}  // namespace
}  // namespace tavlo::test
