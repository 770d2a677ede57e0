#include "collection/RenamePlan.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <set>

#include "core/TextCase.h"

namespace tavlo::test {
namespace {

using Names = std::vector<std::string>;

std::string pathOf(std::string name, PathStyle style) {
    std::replace(name.begin(), name.end(), '/', separatorOf(style));
    return joinPath(style == PathStyle::Windows ? "C:\\m" : "/m", name, style);
}

/// The names of imagined files, in folders with "/"; each file is told by the name it began with.
struct Disk {
    PathStyle style;
    std::map<std::string, std::string> files;  // by path in lower case

    Disk(PathStyle pathStyle, const Names& names) : style(pathStyle) {
        for (const std::string& name : names) add(name);
    }
    void add(const std::string& name) { files[key(pathOf(name, style))] = pathOf(name, style); }
    static std::string key(const std::string& path) { return lowerCase(path); }

    void settle(RenamePlan& plan) const {
        TakenNames taken(style, [this](const std::string& folder) {
            Names names;
            for (const auto& [place, path] : files) {
                if (equalsNoCase(folderOf(path, style), folder)) {
                    names.emplace_back(fileNameOf(path, style));
                }
            }
            return names;
        });
        settleNames(plan, taken, style);
    }
    /// False, and no change, where the name is taken or nothing bears the old one.
    bool move(const std::string& from, const std::string& to) {
        if (files.contains(key(to)) || !files.contains(key(from))) return false;
        files[key(to)] = files.at(key(from));
        return files.erase(key(from)) == 1;
    }
};

struct Row {
    std::string from, wanted, settled;
};

struct Case {
    std::string name;
    Names disk;  // further files
    std::vector<Row> rows;
    std::string order;  // old names; "~" for a step aside
};

const std::vector<Case> cases = {
    {"free", {}, {{"a.mp3", "b.mp3", "b.mp3"}}, "a.mp3"},
    {"taken", {"b.mp3"}, {{"a.mp3", "b.mp3", "b (1).mp3"}}, "a.mp3"},
    {"taken in other letters", {"Ё.MP3"}, {{"a.mp3", "ё.mp3", "ё (1).mp3"}}, "a.mp3"},
    {"counters taken",
     {"b.mp3", "b (1).mp3", "B (2).mp3"},
     {{"a.mp3", "b.mp3", "b (3).mp3"}},
     "a.mp3"},
    {"no extension", {"F.x/b"}, {{"a", "F.x/b", "F.x/b (1)"}}, "a"},
    {"another folder's name", {"b.mp3"}, {{"F/a.mp3", "F/b.mp3", "F/b.mp3"}}, "F/a.mp3"},
    {"no move", {"b.mp3"}, {{"a.mp3", "a.mp3", "a.mp3"}}, ""},
    {"its bearer stays",
     {},
     {{"a.mp3", "b.mp3", "b (1).mp3"}, {"b.mp3", "b.mp3", "b.mp3"}},
     "a.mp3"},
    {"its bearer goes",
     {},
     {{"a.mp3", "b.mp3", "b.mp3"}, {"b.mp3", "c.mp3", "c.mp3"}},
     "b.mp3 a.mp3"},
    {"two want one",
     {},
     {{"a.mp3", "c.mp3", "c.mp3"}, {"b.mp3", "C.mp3", "C (1).mp3"}},
     "a.mp3 b.mp3"},
    {"its own name is the next free one", {"x.mp3"}, {{"x (1).mp3", "x.mp3", "x (1).mp3"}}, ""},
    {"an earlier file got its own name",
     {"x.mp3"},
     {{"a.mp3", "x.mp3", "x (1).mp3"}, {"x (1).mp3", "x.mp3", "x (2).mp3"}},
     "x (1).mp3 a.mp3"},
    {"its own name in other letters is the next free one",
     {"x.mp3"},
     {{"X (1).mp3", "x.mp3", "X (1).mp3"}},
     ""},
    {"chain", {}, {{"a", "b", "b"}, {"b", "c", "c"}, {"c", "F/d", "F/d"}}, "c b a"},
    {"swap", {}, {{"a", "b", "b"}, {"b", "a", "a"}}, "~a b a"},
    {"swap in other letters", {}, {{"a", "B", "B"}, {"b", "A", "A"}}, "~a b a"},
    {"two that differ in letters",
     {},
     {{"1", "b", "b"}, {"B", "1", "1"}, {"b", "q", "q"}},
     "b 1 B"},
    {"circle of three", {}, {{"a", "b", "b"}, {"b", "c", "c"}, {"c", "a", "a"}}, "~a c b a"},
    {"circle and one who comes late",
     {},
     {{"a", "b", "b"}, {"b", "a", "a"}, {"d", "a", "a (1)"}},
     "~a b a d"},
    {"file before its circle's turn",
     {},
     {{"d", "b", "b"}, {"a", "b", "b (1)"}, {"b", "a", "a"}},
     "a b d"},
};

RenamePlan planOf(const std::vector<Row>& rows, PathStyle style) {
    RenamePlan plan;
    for (const Row& row : rows)
        plan.push_back({pathOf(row.from, style), pathOf(row.wanted, style)});
    return plan;
}

std::string orderOf(const RenamePlan& plan, const std::vector<Row>& rows) {
    std::string text;
    for (const MoveStep& move : moveOrder(plan)) {
        text +=
            (text.empty() ? "" : " ") + std::string(move.aside ? "~" : "") + rows[move.row].from;
    }
    return text;
}

TEST(RenamePlan, NamesAndOrderAreSettled) {
    for (const PathStyle style : {PathStyle::Posix, PathStyle::Windows}) {
        for (const Case& c : cases) {
            SCOPED_TRACE(c.name);
            Disk disk(style, c.disk);
            for (const Row& row : c.rows) disk.add(row.from);
            RenamePlan plan = planOf(c.rows, style);
            disk.settle(plan);
            for (std::size_t i = 0; i < plan.size(); ++i) {
                EXPECT_EQ(plan[i].to, pathOf(c.rows[i].settled, style));
                EXPECT_EQ(plan[i].result, RenameResult::Done);
                EXPECT_EQ(plan[i].isNumbered, c.rows[i].settled != c.rows[i].wanted);
            }
            EXPECT_EQ(orderOf(plan, c.rows), c.order);
        }
    }
}

TEST(RenamePlan, FileWithoutAFreeNameStaysAndKeepsIts) {
    RenamePlan plan{{"/m/a.mp3", "/m/b.mp3"}, {"/m/c.mp3", "/m/a.mp3"}};
    TakenNames taken(PathStyle::Posix, [](const std::string&) {
        Names names{"a.mp3", "b.mp3", "c.mp3"};
        for (int i = 1; i <= 1'000'000; ++i) names.push_back("b (" + std::to_string(i) + ").mp3");
        return names;
    });
    settleNames(plan, taken, PathStyle::Posix);
    EXPECT_EQ(plan[0].result, RenameResult::NotCreated);
    EXPECT_EQ(plan[0].to, "/m/b.mp3");
    EXPECT_EQ(plan[1].to, "/m/a (1).mp3");
}

// --- Random plans --------------------------------------------------------------------------------

class RandomPlan {
 public:
    RandomPlan(unsigned seed, PathStyle style) : random_(seed), disk(style, {}) {
        for (int i = 0; i < 14; ++i) disk.add(name());
        for (const auto& [place, path] : disk.files) {
            if (random_() % 5 == 0) continue;
            const std::string wanted = pathOf(name(), style);
            plan.push_back({path, equalsNoCase(wanted, path) ? path : wanted});
            if (random_() % 9 == 0) plan.back().result = RenameResult::Skipped;
        }
        std::shuffle(plan.begin(), plan.end(), random_);
        disk.settle(plan);
    }

 private:
    std::string name() {
        static const Names folders{"", "F/"}, ends{".mp3", ".MP3", " (1).mp3", " (2).mp3", ""};
        return pick(folders) + pick(Names{"a", "B", "ё", "c"}) + pick(ends);
    }
    std::string pick(const Names& from) { return from[random_() % from.size()]; }

    std::mt19937 random_;

 public:
    Disk disk;
    RenamePlan plan;
};

// Where each row's file lies.
Names carryOut(RandomPlan& random) {
    Names places;
    std::set<std::size_t> aside;
    for (const RenameStep& step : random.plan) places.push_back(step.from);
    for (const MoveStep& move : moveOrder(random.plan)) {
        std::string& place = places[move.row];
        const std::string to = move.aside ? place + ".tmp" : random.plan[move.row].to;
        EXPECT_TRUE(random.disk.move(place, to)) << place << " -> " << to;
        place = to;
        if (move.aside) {
            EXPECT_TRUE(aside.empty()) << "a circle begins inside another";
            aside.insert(move.row);
        } else {
            aside.erase(move.row);
        }
    }
    return places;
}

TEST(RenamePlan, EveryFileEndsUnderItsNameAndNoneIsOverwritten) {
    for (unsigned seed = 0; seed < 4000; ++seed) {
        SCOPED_TRACE(seed);
        RandomPlan random(seed, seed % 2 == 0 ? PathStyle::Posix : PathStyle::Windows);
        auto expected = random.disk.files;
        for (const RenameStep& step : random.plan) {
            if (step.moves()) expected.erase(Disk::key(step.from));
        }
        Names ends;
        for (const RenameStep& step : random.plan) {
            ends.push_back(step.moves() ? step.to : step.from);
            expected[Disk::key(ends.back())] = step.from;
        }
        EXPECT_EQ(carryOut(random), ends);
        EXPECT_EQ(random.disk.files, expected);
        if (HasFailure()) return;
    }
}

}  // namespace
}  // namespace tavlo::test
