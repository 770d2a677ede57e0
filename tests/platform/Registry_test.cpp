#include "platform/Registry.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <thread>

#include "platform/RegistryText.h"
#include "support/TestRegistry.h"

namespace tavlo {
namespace {

using test::TestRegistry;

const std::vector<RegistryValue> values{std::string(),
                                        std::string("plain"),
                                        std::string("C:\\a"),
                                        std::string("two\nlines\r\t\x01 \"quoted\" [x]=1"),
                                        std::string("Привет, 日本 \U0001D11E"),
                                        std::uint32_t{0},
                                        std::uint32_t{0xFFFFFFFF},
                                        std::uint32_t{0x80000000},
                                        std::uint32_t{240}};

TEST(Registry, KeepsValuesForTheNextStart) {
    TestRegistry test;
    for (std::size_t i = 0; i < values.size(); ++i)
        ASSERT_TRUE(test.registry().write(test.key("A"), "v" + std::to_string(i), values[i])) << i;
    const Registry again(test.file());
    for (std::size_t i = 0; i < values.size(); ++i)
        EXPECT_EQ(again.read(test.key("A"), "v" + std::to_string(i)), values[i]) << i;
}

TEST(Registry, NamesIgnoreCaseAndTypesMayChange) {
    TestRegistry test;
    ASSERT_TRUE(test.registry().write(test.key("Mixed"), "Name", std::uint32_t{1}));
    ASSERT_TRUE(test.registry().write(test.key("mIXED"), "nAME", std::string("two")));
    EXPECT_EQ(test.registry().read(test.key("MIXED"), "NAME"), RegistryValue("two"));
    EXPECT_EQ(test.registry().valueNames(test.key("Mixed")).size(), 1U);
}

TEST(Registry, DeletesValuesAndKeysWithAllBelow) {
    TestRegistry test;
    Registry& registry = test.registry();
    for (const char* key : {"A", "A\\B", "A\\B\\C", "AB"})
        ASSERT_TRUE(registry.write(test.key(key), "x", std::uint32_t{1}));
    EXPECT_TRUE(registry.deleteValue(test.key("AB"), "X"));
    EXPECT_FALSE(registry.deleteValue(test.key("AB"), "x"));
    ASSERT_TRUE(registry.write(test.key("AB"), "y", std::uint32_t{2}));
    EXPECT_EQ(registry.subkeys(test.key("A")), std::vector<std::string>{"B"});
    EXPECT_TRUE(registry.deleteKey(test.key("A")));
    EXPECT_FALSE(registry.deleteKey(test.key("A")));
    EXPECT_EQ(registry.subkeys(test.root()), std::vector<std::string>{"AB"});
    EXPECT_EQ(registry.valueNames(test.key("AB")), std::vector<std::string>{"y"});
    EXPECT_FALSE(Registry(test.file()).read(test.key("A\\B\\C"), "x").has_value());
}

TEST(Registry, NeverDeletesAHive) {
    TestRegistry test;
    ASSERT_TRUE(test.registry().write(test.key("A"), "x", std::uint32_t{1}));
    EXPECT_FALSE(test.registry().deleteKey({0x80000001, ""}));
    EXPECT_TRUE(test.registry().read(test.key("A"), "x").has_value());
}

// Each instance has read the store before the other wrote to it.
TEST(Registry, TwoInstancesLoseNothing) {
    TestRegistry test;
    constexpr int each = 30;
    const auto writeMany = [&](const std::string& prefix) {
        Registry own(test.file());
        for (std::uint32_t i = 0; i < each; ++i)
            EXPECT_TRUE(own.write(test.key("Both"), prefix + std::to_string(i), i));
    };
    std::thread first(writeMany, "a");
    std::thread second(writeMany, "b");
    first.join();
    second.join();
    EXPECT_EQ(Registry(test.file()).valueNames(test.key("Both")).size(), 2U * each);
}

TEST(Registry, ABatchIsStoredAtItsEnd) {
    TestRegistry test;
    Registry other(test.file());
    {
        Registry::Batch batch(test.registry());
        ASSERT_TRUE(test.registry().write(test.key("A"), "x", std::uint32_t{1}));
        ASSERT_TRUE(test.registry().write(test.key("A"), "y", std::uint32_t{2}));
        EXPECT_EQ(test.registry().read(test.key("A"), "y"), RegistryValue(2U));
        EXPECT_EQ(Registry(test.file()).read(test.key("A"), "x").has_value(),
                  !TestRegistry::usesFile());
        EXPECT_TRUE(batch.commit());
    }
    EXPECT_EQ(Registry(test.file()).valueNames(test.key("A")).size(), 2U);
}

TEST(Registry, AKilledWritersTemporaryDoesNoHarm) {
    TestRegistry test;
    if (!TestRegistry::usesFile()) GTEST_SKIP() << "the store is no file here";
    ASSERT_TRUE(test.registry().write(test.key("A"), "x", std::uint32_t{1}));
    test.folder.write("settings.txt.tmp", "[HKEY_CURRENT_USER\\Softw");
    Registry again(test.file());
    EXPECT_EQ(again.read(test.key("A"), "x"), RegistryValue(1U));
    EXPECT_TRUE(again.write(test.key("A"), "y", std::uint32_t{2}));
    EXPECT_EQ(Registry(test.file()).valueNames(test.key("A")).size(), 2U);
    EXPECT_FALSE(std::filesystem::exists(test.file() + ".tmp"));
}

TEST(Registry, AnUnreadableFileIsNotReplaced) {
    TestRegistry test;
    if (!TestRegistry::usesFile()) GTEST_SKIP() << "the store is no file here";
    std::filesystem::create_directory(test.file());
    Registry again(test.file());
    EXPECT_FALSE(again.write(test.key("A"), "x", std::uint32_t{1}));
    EXPECT_TRUE(std::filesystem::is_directory(test.file()));
}

TEST(Registry, ALinkToTheFileStaysALink) {
    TestRegistry test;
    if (!TestRegistry::usesFile()) GTEST_SKIP() << "the store is no file here";
    test.folder.write("real.txt", "");
    std::filesystem::create_symlink(test.folder.path("real.txt"), test.folder.path("link.txt"));
    Registry linked(test.folder.path("link.txt"));
    ASSERT_TRUE(linked.write(test.key("A"), "x", std::uint32_t{1}));
    EXPECT_TRUE(std::filesystem::is_symlink(test.folder.path("link.txt")));
    EXPECT_EQ(Registry(test.folder.path("real.txt")).read(test.key("A"), "x"), RegistryValue(1U));
}

const RegistryKey key{0x80000001, "K"};

TEST(RegistryText, BrokenLinesStayWhereTheyAre) {
    const std::string before =
        "; written by hand\n[HKEY_CURRENT_USER\\K]\n\"a\"=1\n\"open=2\n\"b\"=\"x\\q\"\nrubbish\n"
        "\"c\"=99999999999\n\"d\"=\"tail\" x\n\n[HKEY_CURRENT_USER\\K\n\"lost\"=4\n";
    RegistryText text(before);
    EXPECT_EQ(text.text(), before);
    EXPECT_EQ(text.valueNames(key), std::vector<std::string>{"a"});
    text.write(key, "a", std::uint32_t{7});
    text.write(key, "new", std::string("n"));
    std::string after = before;
    after.replace(after.find("\"a\"=1"), 5, "\"a\"=7");
    after.insert(after.find("\n\n[") + 1, "\"new\"=\"n\"\n");
    EXPECT_EQ(text.text(), after);
}

TEST(RegistryText, ReadsForeignLineEndsAndAMissingLastOne) {
    const RegistryText text("[HKEY_CURRENT_USER\\K]\r\n\"a\"=-1\r\n\"b\"=\"x\"");
    EXPECT_EQ(text.read(key, "a"), RegistryValue(0xFFFFFFFFU));
    EXPECT_EQ(text.read(key, "b"), RegistryValue("x"));
}

TEST(RegistryText, HivesAreApart) {
    RegistryText text;
    const RegistryKey machine{0x80000002, "K"};
    text.write(key, "a", std::uint32_t{1});
    text.write(machine, "a", std::uint32_t{2});
    const RegistryText again(text.text());
    EXPECT_EQ(again.read(key, "a"), RegistryValue(1U));
    EXPECT_EQ(again.read(machine, "a"), RegistryValue(2U));
}

}  // namespace
}  // namespace tavlo
