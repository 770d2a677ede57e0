#include <cstdlib>
#include <fstream>

#include "collection/RenameJournal.h"
#include "core/ByteCursor.h"
#include "fuzz/Promise.h"
#include "platform/FileSystem.h"

using namespace tavlo;

namespace {
std::string newFolder() {
    std::string folder = "/tmp/tavlo-fuzz-XXXXXX";
    promise(::mkdtemp(folder.data()) != nullptr);
    return folder;
}

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
    static const std::string found = newFolder(), noted = newFolder();
    std::ofstream(found + "/000001.txt", std::ios::binary) << textOf({data, size});
    RenameJournal journal(found);
    const auto batch = journal.last();
    promise(batch.has_value());
    if (batch->rows.empty()) return 0;
    RenameJournal again(noted);
    promise(again.begin("now", *batch));
    const auto read = again.last();
    promise(read && sameBatch(*read, *batch) && !read->isMoved && !read->isDone);
    promise(again.isBrokenOff() && again.drop());
    return 0;
}
