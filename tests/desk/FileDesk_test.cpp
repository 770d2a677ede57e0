#include "desk/FileDesk.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "platform/FileSystem.h"
#include "support/DeskFixture.h"
#include "support/SoundBytes.h"

namespace tavlo::test {
namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

using namespace std::string_literals;

class FileDeskTest : public DeskFixture {};

TEST_F(FileDeskTest, ShowsFoldersListsAndFiles) {
    for (const char* name : {"1.mp3", "2.mp3", "sub/3.mp3"}) song(name);
    folder.write("l.m3u8", "2.mp3\n1.mp3\n");
    desk.show({folder.path()});
    EXPECT_TRUE(desk.isLoading());
    EXPECT_TRUE(desk.state().isLoading);
    DeskNews all;
    EXPECT_TRUE(soon([&] {
        const DeskNews news = desk.poll();
        all.rowsCame |= news.rowsCame;
        return all.loadingEnded = news.loadingEnded;
    }));
    EXPECT_TRUE(all.rowsCame);
    EXPECT_FALSE(desk.isLoading());
    EXPECT_EQ(names(), "3.mp3 1.mp3 2.mp3");
    EXPECT_EQ(desk.folder(), folder.path());
    EXPECT_EQ(desk.table().sums().files, 3U);
    EXPECT_FALSE(desk.wasStopped());

    settings.set(Setting::MainSubfolders, false);
    desk.show(std::vector(desk.paths()));
    settle();
    EXPECT_EQ(names(), "1.mp3 2.mp3");
    show({folder.path("l.m3u8")});
    EXPECT_EQ(names(), "2.mp3 1.mp3");
    EXPECT_EQ(desk.folder(), "");
    EXPECT_EQ(desk.rowsOf({folder.path("1.mp3"), folder.path("sub/3.mp3")}),
              std::vector<RowId>{row("1.mp3")});
    show({folder.path("sub"), folder.path("1.mp3")});
    EXPECT_EQ(names(), "3.mp3 1.mp3");
    EXPECT_EQ(desk.folder(), "");
    EXPECT_TRUE(desk.takeFailures().empty());
}

TEST_F(FileDeskTest, FolderThatIsNotThereIsToldOnce) {
    song("1.mp3");
    show();
    show({folder.path("none")});
    EXPECT_EQ(names(), "");
    EXPECT_EQ(desk.takeFailures(), Lines{told(Text::FolderNotFound, "none")});
    EXPECT_TRUE(desk.takeFailures().empty());
    folder.write("a.png", "");
    show({folder.path("a.png"), folder.path("1.mp3")});
    EXPECT_EQ(desk.takeFailures(), Lines{told(Text::NeitherAudioNorList, "a.png")});
    EXPECT_EQ(desk.place(), folder.path());
    fs::remove_all(fs::path(folder.path()));
    show();
    EXPECT_EQ(desk.table().sums().files, 0U);
    EXPECT_EQ(desk.takeFailures().size(), 1U);
}

TEST_F(FileDeskTest, StoppedReadingKeepsWhatCame) {
    for (int i = 0; i < 300; ++i) song(std::to_string(i) + ".mp3");
    desk.show({folder.path()});
    desk.stop();
    EXPECT_TRUE(desk.wasStopped());
    settle();
    EXPECT_EQ(desk.table().sums().files, desk.table().shownCount());
    show();
    EXPECT_FALSE(desk.wasStopped());
    EXPECT_EQ(desk.table().shownCount(), 300U);
}

TEST_F(FileDeskTest, EditsReachTheFilesAndTheRows) {
    for (const char* name : {"1.mp3", "2.mp3", "3.mp3"}) song(name);
    show();
    select({"1.mp3", "2.mp3"});
    edit(TagField::Title, "New (Live)");
    edit(TagField::Artist, "");
    EXPECT_EQ(desk.state().pending, 2U);
    EXPECT_EQ(onDisk("1.mp3").GetTitle(), "") << "nothing is written unasked";
    desk.save();
    EXPECT_TRUE(desk.state().isSaving);
    EXPECT_EQ(desk.progress().second, 2U);
    settle();
    EXPECT_TRUE(desk.takeFailures().empty());
    EXPECT_EQ(desk.workDone(), 2U);
    EXPECT_TRUE(desk.edits().isEmpty());
    for (const char* name : {"1.mp3", "2.mp3"}) {
        EXPECT_EQ(onDisk(name).GetTitle(), "New");
        EXPECT_EQ(onDisk(name).GetMix(), "Live");
        EXPECT_EQ(onDisk(name).GetArtist(), "");
        const FileRow& shown = desk.table().row(row(name));
        EXPECT_EQ(shown.text(RowText::Title), "New");
        EXPECT_EQ(shown.text(RowText::Artist), "");
        EXPECT_EQ(shown.size, fileInfo(shown.path())->size);
    }
    EXPECT_EQ(onDisk("3.mp3").GetArtist(), "Artist");
    EXPECT_EQ(desk.common(TagField::Mix).text, "Live");

    // The rows know what the files are now, so they can be saved again.
    edit(TagField::Title, "Again");
    desk.save();
    settle();
    EXPECT_TRUE(desk.takeChanged().empty());
    EXPECT_EQ(onDisk("2.mp3").GetTitle(), "Again");
}

// The APEv2 tag is left alone, so its artist comes to light when ID3v2's goes.
TEST_F(FileDeskTest, ValueThatAnotherTagHoldsIsTold) {
    song("1.mp3");
    settings.set(Setting::EnableAPE2Tags, true);
    const auto save = [&](TagField field, const std::string& text) {
        show();
        select({"1.mp3"});
        edit(field, text);
        desk.save();
        settle();
        return desk.takeFailures();
    };
    EXPECT_TRUE(save(TagField::Comment, "Kept").empty());
    settings.set(Setting::EnableAPE2Tags, false);
    EXPECT_TRUE(save(TagField::Album, "Other").empty());
    EXPECT_TRUE(save(TagField::Track, "07").empty());
    EXPECT_TRUE(save(TagField::Track, "007").empty());
    EXPECT_EQ(save(TagField::Artist, ""),
              Lines{folder.path("1.mp3") + ": " + texts.get(Text::FieldsStay, "Artist")});
    EXPECT_EQ(desk.table().row(row("1.mp3")).text(RowText::Artist), "Artist");
}

TEST_F(FileDeskTest, PlaylistOfTheFolderIsWrittenBeside) {
    song("1.mp3");
    show();
    std::string list;
    desk.makeList(false);
    EXPECT_TRUE(desk.isWorking());
    EXPECT_TRUE(soon([&] {
        const DeskNews news = desk.poll();
        list = news.list;
        return news.workEnded;
    }));
    EXPECT_TRUE(fileInfo(list));
    EXPECT_TRUE(desk.takeFailures().empty());
    EXPECT_FALSE(fileInfo(list + "8"));

    song("\u0416.mp3");  // in no list of code page 1252
    desk.makeList(false);
    settle();
    EXPECT_EQ(desk.takeFailures(), Lines{texts.get(Text::ListedInUtf8, list + "8")});
    EXPECT_NE(folder.read("!Playlist.m3u8").find("\u0416.mp3"), std::string::npos);
    fs::remove(fs::path(list));
    fs::create_directory(fs::path(list));
    desk.makeList(true);
    settle();
    EXPECT_EQ(desk.takeFailures(), Lines{texts.get(Text::ListNotWrittenThere, folder.path())});
}

TEST_F(FileDeskTest, EditMadeWhileSavingIsNotLost) {
    song("1.mp3");
    song("2.mp3");
    show();
    select({"1.mp3", "2.mp3"});
    edit(TagField::Title, "First");
    desk.save();
    select({"1.mp3"});
    edit(TagField::Album, "Later");
    settle();
    EXPECT_TRUE(desk.edits().has(row("1.mp3")));
    EXPECT_FALSE(desk.edits().has(row("2.mp3")));
    EXPECT_EQ(desk.common(TagField::Album).text, "Later");
    desk.save();
    settle();
    EXPECT_TRUE(desk.edits().isEmpty());
    EXPECT_EQ(onDisk("1.mp3").GetTitle(), "First");
    EXPECT_EQ(onDisk("1.mp3").GetAlbum(), "Later");
}

TEST_F(FileDeskTest, NothingElseBeginsWhileFilesAreWritten) {
    song("1.mp3");
    song("2.mp3");
    show();
    select({"1.mp3"});
    edit(TagField::Title, "New");
    desk.save();
    desk.show({folder.path("none")});
    desk.deleteSelected();
    EXPECT_EQ(desk.paths(), Lines{folder.path()});
    settle();
    EXPECT_EQ(names(), "1.mp3 2.mp3");
    EXPECT_EQ(onDisk("1.mp3").GetTitle(), "New");
}

TEST_F(FileDeskTest, StoppedSavingKeepsTheRestsEdits) {
    constexpr std::size_t count = 200;
    for (std::size_t i = 0; i < count; ++i) song(std::to_string(i) + ".mp3");
    show();
    desk.select({desk.table().shown().begin(), desk.table().shown().end()});
    edit(TagField::Title, "New");
    desk.save();
    desk.stop();
    settle();
    EXPECT_EQ(desk.workDone() + desk.edits().count(), count);
    for (const RowId id : desk.table().shown()) {
        const bool isSaved = desk.table().row(id).text(RowText::Title) == "New";
        EXPECT_NE(desk.edits().has(id), isSaved);
    }
}

TEST_F(FileDeskTest, EachFailureIsListedOnceAndItsEditsStay) {
    for (const char* name : {"1.mp3", "2.mp3", "3.mp3"}) song(name);
    show();
    select({"1.mp3", "2.mp3", "3.mp3"});
    edit(TagField::Title, "New");
    fs::remove(fs::path(folder.path("2.mp3")));
    desk.save();
    settle();
    EXPECT_EQ(desk.takeFailures(), Lines{told(Text::FileGone, "2.mp3")});
    EXPECT_TRUE(desk.takeFailures().empty());
    EXPECT_EQ(desk.edits().rows(), std::vector<RowId>{row("2.mp3")});
    EXPECT_EQ(onDisk("3.mp3").GetTitle(), "New");
}

class ChangedMeanwhile : public FileDeskTest {
 protected:
    ChangedMeanwhile() {
        song("1.mp3", "Old");
        song("2.mp3", "Old");
        show();
        select({"1.mp3", "2.mp3"});
        edit(TagField::Title, "New");
        song("1.mp3", "Another program's");
        desk.save();
        settle();
        changed = desk.takeChanged();
    }
    std::vector<RowId> changed;
};

TEST_F(ChangedMeanwhile, IsAskedAboutOnce) {
    EXPECT_EQ(changed, std::vector<RowId>{row("1.mp3")});
    EXPECT_TRUE(desk.takeChanged().empty());
    EXPECT_TRUE(desk.takeFailures().empty());
    EXPECT_EQ(onDisk("1.mp3").GetTitle(), "");
    EXPECT_EQ(desk.edits().rows(), changed);
    EXPECT_EQ(onDisk("2.mp3").GetTitle(), "New");
}

TEST_F(ChangedMeanwhile, EditsGoOnTop) {
    desk.saveOnTop(changed);
    settle();
    EXPECT_EQ(onDisk("1.mp3").GetArtist(), "Another program's");
    EXPECT_EQ(onDisk("1.mp3").GetTitle(), "New");
    EXPECT_TRUE(desk.edits().isEmpty());
    EXPECT_EQ(desk.common(TagField::Artist).text, "Another program's");
}

TEST_F(ChangedMeanwhile, OrAreDropped) {
    desk.reload(changed);
    settle();
    EXPECT_TRUE(desk.edits().isEmpty());
    EXPECT_EQ(onDisk("1.mp3").GetTitle(), "");
    select({"1.mp3"});
    EXPECT_EQ(desk.common(TagField::Artist).text, "Another program's");
    edit(TagField::Title, "Newer");
    desk.save();
    settle();
    EXPECT_EQ(onDisk("1.mp3").GetTitle(), "Newer");
}

TEST_F(FileDeskTest, OneTagIsCarriedOverOrTakenOffAndNothingStale) {
    const std::string v2 = tag(3, textFrame(3, "TPE1", "Two") + std::string(99, '\0'));
    folder.write("a.mp3", v2 + mpegFrames(3) + Id3v1{"Title", "One", "", "", ""}.block());
    show();
    select({"a.mp3"});
    edit(TagField::Album, "Not saved yet");
    const ID3tag first = onDisk("a.mp3");
    const auto done = [&](const ID3tag& read, TagKind kind, LayerWish wish) {
        EXPECT_TRUE(desk.changeLayer(read, kind, wish));
        EXPECT_FALSE(desk.changeLayer(read, kind, wish)) << "it is at work";
        settle();
        const FileResult result = desk.takeLayerResult().value_or(FileResult{});
        EXPECT_FALSE(desk.takeLayerResult());
        EXPECT_TRUE(desk.takeFailures().empty());
        return result;
    };
    EXPECT_EQ(done(first, TagKind::ID3v1, LayerWish::CarryOver).outcome, FileOutcome::Saved);
    EXPECT_EQ(onDisk("a.mp3").GetArtist(), "One");
    EXPECT_EQ(desk.table().row(row("a.mp3")).text(RowText::Artist), "One");

    const std::string carried = folder.read("a.mp3");
    for (const LayerWish wish : {LayerWish::CarryOver, LayerWish::Remove}) {
        const FileResult stale = done(first, TagKind::ID3v2, wish);
        EXPECT_EQ(stale.outcome, FileOutcome::Changed);
        EXPECT_EQ(stale.message, told(Text::ChangedMeanwhile, "a.mp3"));
        EXPECT_EQ(folder.read("a.mp3"), carried);
    }
    const ID3tag now = onDisk("a.mp3");
    EXPECT_EQ(done(now, TagKind::ID3v1, LayerWish::CarryOver).outcome, FileOutcome::Read);
    EXPECT_EQ(done(now, TagKind::ID3v1, LayerWish::Remove).outcome, FileOutcome::Saved);
    EXPECT_FALSE(onDisk("a.mp3").IsID3v1Present);
    EXPECT_EQ(done(onDisk("a.mp3"), TagKind::ID3v2, LayerWish::Remove).outcome, FileOutcome::Saved);
    EXPECT_EQ(folder.read("a.mp3"), mpegFrames(3));
    EXPECT_TRUE(desk.isEdited(TagField::Album)) << "an edit of another place went";
    EXPECT_FALSE(desk.changeLayer(onDisk("none.mp3"), TagKind::ID3v2, LayerWish::Remove));
}

TEST_F(FileDeskTest, DeletedFilesLeaveTheSelectionAndTheEdits) {
    for (const char* name : {"1.mp3", "2.mp3", "3.mp3"}) song(name);
    show();
    select({"3.mp3", "1.mp3"});
    edit(TagField::Title, "New");
    desk.deleteSelected();
    select({"2.mp3", "3.mp3"});
    settle();
    EXPECT_EQ(names(), "2.mp3");
    EXPECT_EQ(desk.selected(), std::vector<RowId>{row("2.mp3")});
    EXPECT_TRUE(desk.edits().isEmpty());
    EXPECT_EQ(desk.table().sums().files, 1U);
    EXPECT_FALSE(isTaken(folder.path("1.mp3")));
    EXPECT_TRUE(isTaken(folder.path("2.mp3")));
    EXPECT_EQ(desk.workDone(), 2U);
}

TEST_F(FileDeskTest, CopiesLeaveTheListAsItIs) {
    song("1.mp3");
    song("2.mp3");
    show();
    select({"1.mp3", "2.mp3"});
    folder.makeFolder("to");
    desk.copySelected(folder.path("to"));
    settle();
    EXPECT_EQ(desk.workDone(), 2U);
    EXPECT_TRUE(folder.read("to/2.mp3") == folder.read("2.mp3"));
    EXPECT_EQ(names(), "1.mp3 2.mp3");
    desk.copySelected(folder.path());
    settle();
    EXPECT_EQ(desk.takeFailures(),
              (Lines{told(Text::IsInTarget, "1.mp3"), told(Text::IsInTarget, "2.mp3")}));
    desk.copySelected(folder.path("none"));
    settle();
    EXPECT_EQ(desk.workDone(), 0U);
    EXPECT_EQ(desk.takeFailures().size(), 2U);
}

TEST_F(FileDeskTest, TagsArePastedWithTheirEdits) {
    const std::string cover = frame(3, "APIC", "\0image/png\0\3\0picture"s);
    folder.write("1.mp3", tag(3, textFrame(3, "TPE1", "One") + cover) + mpegFrames(3));
    song("2.mp3", "Two");
    folder.write("3.wav", "");
    show();
    EXPECT_FALSE(desk.state().hasCopiedTags);
    select({"1.mp3"});
    edit(TagField::Year, "1999");
    desk.copyTags();
    EXPECT_TRUE(desk.state().hasCopiedTags);
    select({"2.mp3", "3.wav"});
    edit(TagField::Title, "Own");
    desk.pasteTags();
    desk.save();
    settle();
    EXPECT_EQ(desk.takeFailures(), Lines{told(Text::FormatNotWritten, "3.wav")});
    EXPECT_EQ(onDisk("2.mp3").GetArtist(), "One");
    EXPECT_EQ(onDisk("2.mp3").GetYear(), "1999");
    EXPECT_EQ(onDisk("2.mp3").GetTitle(), "Own") << "the copied file has none";
    EXPECT_EQ(onDisk("2.mp3").AlbumArt.Size, 7U);
    EXPECT_TRUE(desk.state().hasCovers);

    // A cover that is to go is not copied.
    TagChanges changes;
    changes.picture = std::make_shared<const cAlbumArt>();
    desk.editSelected(changes);
    desk.copyTags();
    EXPECT_FALSE(desk.state().hasCovers);
    select({"1.mp3"});
    desk.pasteTags();
    EXPECT_TRUE(desk.state().hasCovers);
}

TEST_F(FileDeskTest, OnlyFilesWhoseTagsCanBeWrittenAreEdited) {
    const Lines editable{"1.mp3", "2.mpc", "3.wv", "4.ape"}, others{"5.wav", "6.flac", "7.ogg"};
    for (const Lines& files : {editable, others}) {
        for (const std::string& name : files) song(name);
    }
    folder.write("2.mpc", "MP+\x07");
    folder.write("3.wv", wavPackBytes(1));
    folder.write("4.ape", "MAC \x96\x0F");
    folder.write("l.m3u", "gone.mp3\n");
    show({folder.path(), folder.path("l.m3u")});
    select({"1.mp3", "2.mpc", "3.wv", "4.ape", "5.wav", "6.flac", "7.ogg", "gone.mp3"});
    EXPECT_EQ(desk.state().selected, 8U);
    EXPECT_EQ(desk.state().editable, editable.size());
    edit(TagField::Title, "New");
    EXPECT_EQ(desk.state().pending, editable.size());
    desk.save();
    settle();
    EXPECT_EQ(desk.takeFailures(),
              (Lines{told(Text::FormatNotWritten, "5.wav"), told(Text::FormatNotWritten, "6.flac"),
                     told(Text::FormatNotWritten, "7.ogg"), told(Text::FileNotRead, "gone.mp3")}));
    for (const std::string& name : editable) EXPECT_EQ(onDisk(name).GetTitle(), "New") << name;
}

TEST_F(FileDeskTest, AnotherFolderBeginsAnew) {
    song("1.mp3");
    show();
    select({"1.mp3"});
    edit(TagField::Title, "New");
    desk.show(std::vector(desk.paths()));
    EXPECT_TRUE(desk.edits().isEmpty());
    EXPECT_TRUE(desk.selected().empty());
    EXPECT_EQ(desk.table().shownCount(), 0U);
    settle();
    EXPECT_EQ(names(), "1.mp3");
    // A selection that was reverted has nothing to be saved.
    select({"1.mp3"});
    edit(TagField::Title, "New");
    desk.revertSelected();
    desk.save();
    EXPECT_FALSE(desk.isWorking());
    EXPECT_TRUE(desk.state().hasFolder);
    EXPECT_EQ(desk.state().shown, 1U);
}

TEST_F(FileDeskTest, RememberedTextsStandOnce) {
    for (int i = 0; i < 30; ++i) remember(settings, HistoryList::Folders, std::to_string(i));
    remember(settings, HistoryList::Folders, "25");
    const Lines found = settings.history(HistoryList::Folders);
    ASSERT_EQ(found.size(), 20U);
    EXPECT_EQ(found[0], "25");
    EXPECT_EQ(found[1], "29");
    EXPECT_EQ(found.back(), "10");
    EXPECT_EQ(std::ranges::count(found, "25"), 1);
}

}  // namespace
}  // namespace tavlo::test
