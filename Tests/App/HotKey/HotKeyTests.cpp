#include "App/Support/FakeHotKeyRegistrar.h"
#include "HotKey/HotKeyManager.h"
#include "HotKey/KeyNames.h"

#include <gtest/gtest.h>

#include <optional>
#include <set>
#include <string>

namespace tavik {
namespace {

using Combination = test::FakeHotKeyRegistrar::Combination;

constexpr std::uint32_t everyModifier = 0x1b00;

TEST(KeyNamesTest, keysAreNamedAsPrintedAndOthersByTheirNumber) {
    std::set<std::string> names;
    for (std::uint32_t code = 0; code < 256; ++code)
        if (const std::string name = KeyNames::name(code); name != '#' + std::to_string(code))
            names.insert(name);
    std::set<std::string> expected{"Space", "F1", "F2", "F3", "F4", "F5", "F6"};
    for (const char character : std::string("ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789;',./"))
        expected.insert({character});
    EXPECT_EQ(names, expected);
    EXPECT_EQ(KeyNames::name(2), "D");
    EXPECT_EQ(KeyNames::name(23), "5");
    EXPECT_EQ(KeyNames::name(22), "6");
    EXPECT_EQ(KeyNames::name(4'294'967'295), "#4294967295");
}

TEST(KeyNamesTest, aCombinationIsShownWithItsModifiersInTheUsualOrder) {
    EXPECT_EQ(display(HotKeyCombo()), "⌥D");
    EXPECT_EQ(localName(HotKeyCombo()), "Alt+D");
    EXPECT_EQ(display({40, everyModifier}), "⌃⌥⇧⌘K");
    EXPECT_EQ(localName({40, everyModifier}), "Ctrl+Alt+Shift+Super+K");
    EXPECT_EQ(display({98, 0x800}), "⌥#98");
    EXPECT_EQ(localName({49, 0x300}), "Shift+Super+Space");
    EXPECT_EQ(display({2, ~everyModifier}), "D");
}

TEST(HotKeyManagerTest, flagsOfAKeyEventBecomeTheMaskOfACombination) {
    EXPECT_EQ(HotKeyManager::carbonFlags(0x100000), 0x100U);
    EXPECT_EQ(HotKeyManager::carbonFlags(0x80000), 0x800U);
    EXPECT_EQ(HotKeyManager::carbonFlags(0x40000), 0x1000U);
    EXPECT_EQ(HotKeyManager::carbonFlags(0x20000), 0x200U);
    EXPECT_EQ(HotKeyManager::carbonFlags(~0x1e0000U), 0U);
    EXPECT_EQ(HotKeyManager::carbonFlags(~0U), everyModifier);
}

TEST(HotKeyManagerTest, onlyTheLastCombinationActs) {
    test::FakeHotKeyRegistrar desktop;
    HotKeyManager manager(desktop);
    std::string presses;
    EXPECT_TRUE(manager.register_({2, 0x800}, [&] { presses += 'D'; }));
    desktop.press();
    EXPECT_TRUE(manager.register_({40, 0x1000}, [&] { presses += 'K'; }));
    EXPECT_EQ(desktop.held, Combination(40, 0x1000));
    desktop.press();
    EXPECT_EQ(presses, "DK");
}

TEST(HotKeyManagerTest, aRefusedCombinationLeavesNone) {
    test::FakeHotKeyRegistrar desktop;
    desktop.taken = Combination(40, 0x1000);
    HotKeyManager manager(desktop);
    ASSERT_TRUE(manager.register_({2, 0x800}, [] {}));
    EXPECT_FALSE(manager.register_({40, 0x1000}, [] {}));
    EXPECT_FALSE(manager.isRegistered().value());
    EXPECT_EQ(desktop.held, std::nullopt);
}

TEST(HotKeyManagerTest, anActionMayRegisterAnotherOrEndTheManager) {
    test::FakeHotKeyRegistrar desktop;
    std::optional<HotKeyManager> manager(std::in_place, desktop);
    const auto marker = std::make_shared<std::string>("still here");
    std::string seen;
    manager->register_({2, 0x800}, [&, marker] {
        manager->register_({40, 0x800}, [&, marker] {
            manager.reset();
            seen += *marker;
        });
        seen += *marker + ", ";
    });
    desktop.press();
    const auto lateNotice = desktop.press;
    desktop.press();
    EXPECT_EQ(seen, "still here, still here");
    EXPECT_EQ(desktop.held, std::nullopt);
    lateNotice();
    EXPECT_EQ(seen, "still here, still here");
}

} // namespace
} // namespace tavik
