#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "collection/RenameJournal.h"
#include "core/ByteCursor.h"
#include "fuzz/Promise.h"
#include "platform/FileSystem.h"

using namespace tavlo;

namespace {
struct Folder {
    Folder() { promise(::mkdtemp(path.data()) != nullptr); }
    ~Folder() { std::filesystem::remove_all(path); }

    std::string path = "/tmp/tavlo-fuzz-XXXXXX";
};

bool sameBatch(const JournalBatch& one, const JournalBatch& other) {
    const auto sameList = [](const JournalList& a, const JournalList& b) {
        return a.path == b.path && a.before == b.before;
    };
    return one.rows == other.rows && one.newFolders == other.newFolders &&
           one.roots == other.roots &&
           std::equal(one.lists.begin(), one.lists.end(), other.lists.begin(), other.lists.end(),
                      sameList);
}
}  // namespace

// The input is the file of a batch. What is read of it comes back when it is noted again.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Folder found, noted;
    std::ofstream(found.path + "/000001.txt", std::ios::binary) << textOf({data, size});
    RenameJournal journal(found.path);
    JournalBatch batch = journal.last();
    if (batch.rows.empty()) return 0;
    batch.lists.clear();  // they are noted when the moves are done
    RenameJournal again(noted.path);
    promise(again.begin("now", batch));
    const JournalBatch read = again.last();
    promise(sameBatch(read, batch) && !read.isMoved && !read.isDone);
    promise(again.isBrokenOff() && again.drop());
    return 0;
}
