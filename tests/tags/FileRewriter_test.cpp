#include "tags/FileRewriter.h"

#include <gtest/gtest.h>

#include <list>

#include "support/MemoryCalls.h"

namespace tavlo::test {
namespace {

using namespace std::string_literals;

const std::string rescues = "state";

std::string numbers(std::size_t size, char mark) {
    std::string bytes;
    for (int i = 0; bytes.size() < size; ++i) bytes += mark + std::to_string(i);
    bytes.resize(size);
    return bytes;
}

struct Case {
    const char* name;
    NewEnds ends;
    Way way;
    std::size_t written;  ///< bytes of the song itself, where it is changed in place
};

class Files {
 public:
    explicit Files(DiskKind disk = DiskKind::Overwriting) { calls.disk = disk; }
    File& open(const std::string& path, const std::string& bytes) {
        calls.put(path, bytes);
        File& file = open_.emplace_back(calls);
        EXPECT_TRUE(file.open(path, Access::ReadWrite));
        return file;
    }
    File& opened(std::size_t number) {
        return *std::next(open_.begin(), static_cast<std::ptrdiff_t>(number));
    }
    MemoryCalls calls;

 private:
    std::list<File> open_;
};

const std::string song = numbers(300'000, 's');
constexpr std::size_t page = NewContent::pageSize;

// The song with some bytes at a place put in.
std::string with(std::string bytes, std::size_t at, std::string_view put) {
    return bytes.replace(at, put.size(), put);
}

Pieces both(Pieces first, Pieces second) {
    first.add(std::move(second));
    return first;
}

Pieces oldBytes(std::uint64_t begin, std::uint64_t end) {
    Pieces pieces;
    pieces.addOld(begin, end);
    return pieces;
}

std::string madeOf(const NewEnds& ends) {
    std::string bytes;
    const auto add = [&](const Pieces& pieces) {
        for (const Piece& piece : pieces.all()) {
            bytes += piece.bytes.empty() ? song.substr(piece.begin, piece.size()) : piece.bytes;
        }
    };
    add(ends.head);
    bytes += song.substr(ends.headEnd, ends.tailBegin - ends.headEnd);
    add(ends.tail);
    return bytes;
}

TEST(FileRewriter, OnlyWhatLiesInOnePageIsWrittenInPlaceAtOnce) {
    const std::size_t size = song.size(), headEnd = 5 * page;
    const std::string head = song.substr(0, headEnd);
    const std::string tail = song.substr(size - 200);
    const auto headed = [&](Pieces pieces) {
        return NewEnds{headEnd, std::move(pieces), size - 200, tail};
    };
    const std::vector<Case> cases{
        {"the same", headed(head), Way::None, 0},
        {"old pieces in their places", headed(oldBytes(0, headEnd)), Way::None, 0},
        {"a page's last byte", headed(with(head, page - 1, "!")), Way::InPlace, 1},
        {"both sides of a border", headed(with(head, page - 1, "!!")), Way::InPlace, 2},
        {"far pages", headed(with(with(head, 9, "!"), 4 * page, "!!")), Way::InPlace, 3},
        {"both ends",
         {headEnd, with(head, 9, "!"), size - 200, with(tail, 0, "!")},
         Way::InPlace,
         2},
        {"pieces change places", headed(both(oldBytes(page, headEnd), oldBytes(0, page))),
         Way::InPlace, headEnd},
        {"the end is cut off", {headEnd, head, size - 200, tail.substr(0, 72)}, Way::InPlace, 0},
        {"cut and changed", {headEnd, head, size - 200, "short"s}, Way::NewFile, 0},
        {"grows", {headEnd, head, size - 200, tail + "more"}, Way::InPlace, 4},
        {"the sound moves", {headEnd, head + "!", size - 200, tail}, Way::NewFile, 0},
        {"nearly everything", {size, numbers(size, 'x'), size, {}}, Way::NewFile, 0},
    };
    for (const Case& row : cases) {
        for (const DiskKind disk : {DiskKind::Overwriting, DiskKind::CopyOnWrite}) {
            SCOPED_TRACE(row.name);
            Files files(disk);
            File& file = files.open("song", song);
            const bool isCut = madeOf(row.ends).size() < song.size() && row.way == Way::InPlace;
            const bool isNew = disk == DiskKind::CopyOnWrite && row.way == Way::InPlace && !isCut;
            const Way way = isNew ? Way::NewFile : row.way;
            EXPECT_EQ(wayOf(file, row.ends, {rescues, 0}), way);
            const auto id = files.calls.status("song")->id;
            const Rewrite done = rewriteEnds(file, "song", row.ends, false, {rescues, 0});
            EXPECT_EQ(done, way == Way::None ? Rewrite::Unchanged : Rewrite::Done);
            EXPECT_EQ(files.calls.at("song").bytes, madeOf(row.ends));
            EXPECT_EQ(files.calls.status("song")->id == id, way != Way::NewFile);
            if (way == Way::InPlace) {
                EXPECT_EQ(files.calls.writtenOver(), row.written);
            }
            EXPECT_EQ(files.calls.count(), 1U);
        }
    }
}

TEST(FileRewriter, WhatIsNotWorthARescueFileGoesThroughANewOne) {
    const NewEnds ends{
        2 * page, with(with(song.substr(0, 2 * page), 9, "!"), page, "!"), song.size(), {}};
    struct Row {
        RewriteWays ways;
        Way way;
    };
    for (const auto& [ways, way] :
         {Row{{"", 0}, Way::NewFile}, Row{{rescues, song.size()}, Way::NewFile},
          Row{{rescues, song.size() - 1}, Way::InPlace}}) {
        Files files;
        EXPECT_EQ(wayOf(files.open("song", song), ends, ways), way) << ways.smallFile;
    }
}

// Another program's file, or its bytes in ours, must not be lost; it gets in before any call.
TEST(FileRewriter, WhatAnotherProgramPutThereStays) {
    const std::string head = song.substr(0, 2 * page);
    const std::string theirs = with(song, 250'000, "theirs");
    const std::vector<NewEnds> ends{
        {page, with(head.substr(0, page), 9, "!"), song.size(), {}},
        {2 * page, with(with(head, 9, "!"), page, "!"), song.size(), {}},
        {page, "new head"s, song.size(), {}},
    };
    for (const NewEnds& each : ends) {
        for (const bool sameFile : {false, true}) {
            Files files;
            File& file = files.open("song", song);
            sameFile ? files.calls.touch("song", theirs)
                     : static_cast<void>(files.calls.put("song", theirs));
            EXPECT_EQ(rewriteEnds(file, "song", each, false, {rescues, 0}), Rewrite::Replaced);
            EXPECT_EQ(files.calls.at("song").bytes, theirs);
            EXPECT_EQ(files.calls.count(), 1U);
        }
    }
}

class Group {
 public:
    explicit Group(std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) names.push_back("song" + std::to_string(i));
    }
    NewEnds ends() const {
        return {2 * page, with(with(song.substr(0, 2 * page), 9, "!"), page, "!"), song.size(), {}};
    }
    std::vector<Rewrite> run(Files& files) const {
        for (const std::string& name : names) files.open(name, song);
        RewriteGroup group({rescues, 0});
        for (std::size_t i = 0; i < names.size(); ++i) {
            group.add(files.opened(i), names[i], ends(), false);
        }
        return group.commit();
    }
    std::vector<std::string> names;
};

TEST(RewriteGroup, FilesWaitForTheDiskTogether) {
    const Group group(5);
    Files files;
    EXPECT_EQ(group.run(files), std::vector(5, Rewrite::Done));
    EXPECT_EQ(files.calls.flushesOfTemporaryFiles(), 1U);
    EXPECT_EQ(files.calls.count(), 5U);
    for (const std::string& name : group.names) {
        EXPECT_EQ(files.calls.at(name).bytes, madeOf(group.ends()));
    }
}

TEST(RewriteGroup, EachFileIsTheOldOrTheNewOne) {
    const Group group(3);
    const std::string changed = madeOf(group.ends());
    Files undisturbed;
    group.run(undisturbed);
    std::size_t putBack = 0;
    for (std::size_t at = 1; at <= undisturbed.calls.operations(); ++at) {
        for (const Fault fault : {Fault::Fails, Fault::Killed, Fault::FailsOn}) {
            SCOPED_TRACE(std::to_string(at) + ", fault " + std::to_string(static_cast<int>(fault)));
            Files files;
            files.calls.strike(fault, at, 1);
            const auto results = group.run(files);
            for (std::size_t i = 0; i < results.size() && fault != Fault::Killed; ++i) {
                const std::string& bytes = files.calls.at(group.names[i]).bytes;
                EXPECT_TRUE(results[i] == Rewrite::Torn ||
                            bytes == (results[i] == Rewrite::Done ? changed : song));
            }
            files.calls.strike(Fault::None, 0);
            const Recovered recovered = recoverFiles(rescues, files.calls);
            putBack += recovered.putBack;
            EXPECT_TRUE(recovered.setAside.empty());
            for (const std::string& name : group.names) {
                const std::string& bytes = files.calls.at(name).bytes;
                EXPECT_TRUE(bytes == song || bytes == changed) << name;
            }
            EXPECT_TRUE(files.calls.names(rescues).empty());
        }
    }
    EXPECT_GT(putBack, 0U);
}

}  // namespace
}  // namespace tavlo::test
