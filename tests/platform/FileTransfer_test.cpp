#include "platform/FileTransfer.h"

#include <gtest/gtest.h>

#include "support/MemoryCalls.h"

namespace tavlo::test {
namespace {

struct Operation {
    std::string name;
    std::string source, target;    // bytes at "a:from" and "b:to"; "-" for no file
    std::string source2, target2;  // afterwards
    Transfer (*run)(MemoryCalls&);
    Transfer result = Transfer::Done;
};

const std::string text(700, 't'), other = "other";

bool isDone(Transfer result) {
    return result == Transfer::Done || result == Transfer::Copied;
}

Transfer move(MemoryCalls& calls) {
    return moveFile("a:from", "b:to", calls);
}
Transfer copy(MemoryCalls& calls) {
    return copyFile("a:from", "b:to", calls);
}
Transfer write(MemoryCalls& calls) {
    return writeFile("b:to", text, calls);
}
Transfer replace(MemoryCalls& calls) {
    return replaceFile("b:to", text, calls) ? Transfer::Done : Transfer::Failed;
}

const std::vector<Operation> operations = {
    {"copy", text, "-", text, text, copy},
    {"copy of nothing", "", "-", "", "", copy},
    {"copy onto a file", text, other, text, other, copy, Transfer::Exists},
    {"copy without a source", "-", "-", "-", "-", copy, Transfer::NotRead},
    {"move to another disk", text, "-", "-", text, move, Transfer::Copied},
    {"move onto a file", text, other, text, other, move, Transfer::Exists},
    {"write", "-", "-", "-", text, write},
    {"write onto a file", "-", other, "-", other, write, Transfer::Exists},
    {"replace", "-", other, "-", text, replace},
    {"replace what is not there", "-", "-", "-", text, replace},
};

struct Disks {
    MemoryCalls calls;

    explicit Disks(const Operation& operation, bool isReadOnly) {
        if (operation.source != "-") {
            calls.put("a:from", operation.source).isReadOnly = isReadOnly;
        }
        if (operation.target != "-") calls.put("b:to", operation.target).isReadOnly = isReadOnly;
    }
    [[nodiscard]] std::string bytes(const std::string& path) const {
        return calls.contains(path) ? calls.at(path).bytes : "-";
    }
};

TEST(FileTransfer, EachDoesAllOfItOrNothing) {
    for (const Operation& each : operations) {
        for (const bool isReadOnly : {false, true}) {
            SCOPED_TRACE(each.name);
            Disks disks(each, isReadOnly);
            EXPECT_EQ(each.run(disks.calls), each.result);
            EXPECT_EQ(disks.bytes("a:from"), each.source2);
            EXPECT_EQ(disks.bytes("b:to"), each.target2);
            EXPECT_EQ(disks.calls.temporaryFiles() + disks.calls.openFiles(), 0U);
            const bool isCarried =
                isDone(each.result) && each.target2 != "-" && each.source + each.target != "--";
            EXPECT_EQ(isCarried && disks.calls.at("b:to").isReadOnly, isCarried && isReadOnly);
        }
    }
}

TEST(FileTransfer, NoFaultLosesOrHalvesAFile) {
    for (const Operation& each : operations) {
        for (const Fault fault : {Fault::Fails, Fault::StopsShort, Fault::Killed}) {
            Disks whole(each, false);
            each.run(whole.calls);
            for (std::size_t at = 1; at <= whole.calls.operations(); ++at) {
                SCOPED_TRACE(each.name + " " + std::to_string(static_cast<int>(fault)) + " at " +
                             std::to_string(at));
                Disks disks(each, false);
                disks.calls.strike(fault, at);
                const Transfer result = each.run(disks.calls);
                const std::string source = disks.bytes("a:from"), target = disks.bytes("b:to");
                const bool isOld = source == each.source && target == each.target;
                const bool isNew = source == each.source2 && target == each.target2;
                // Between a copy and the going of its source both are there.
                const bool isBoth = source == each.source && target == each.target2;
                EXPECT_TRUE(isOld || isNew || isBoth);
                if (fault == Fault::Killed) continue;
                EXPECT_TRUE(isOld == isNew || isDone(result) == isNew);
                EXPECT_EQ(disks.calls.openFiles(), 0U);
            }
        }
    }
}

// Somebody else may have put the link there, on any system.
TEST(FileTransfer, NothingIsWrittenInALinksPlace) {
    MemoryCalls calls;
    calls.put("list", other).isLink = true;
    calls.put("source", text);
    auto& planted = calls.put("new.tmp", other);
    planted.isLink = planted.isTemporary = true;
    EXPECT_FALSE(canBeReplaced("list", calls));
    EXPECT_FALSE(replaceFile("list", text, calls));
    EXPECT_FALSE(replaceByCopy("list", "source", calls));
    EXPECT_EQ(writeFile("list", text, calls), Transfer::Exists);
    EXPECT_EQ(calls.at("list").bytes, other);
    EXPECT_TRUE(replaceFile("new", text, calls));
    EXPECT_EQ(calls.at("new.tmp").bytes, other);
    EXPECT_EQ(calls.temporaryFiles(), 1U);
}

}  // namespace
}  // namespace tavlo::test
