#include "Platform/Linux/Xdg/AutostartLoginItem.h"
#include "Support/ChildProcess.h"
#include "Support/TemporaryDirectory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

namespace tavik {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

constexpr const char* generator =
    "/usr/lib/systemd/user-generators/systemd-xdg-autostart-generator";

class LoginItemTests : public testing::Test {
protected:
    void write(const std::string& text) const {
        fs::create_directories(folder);
        std::ofstream(entry) << text;
    }

    test::TemporaryDirectory directory;
    fs::path folder = directory.file("config/autostart");
    fs::path entry = folder / "com.tavik.app.desktop";
    AutostartLoginItem item{folder, "/usr/bin/true"};
};

TEST_F(LoginItemTests, theSwitchShowsWhatTheDesktopWillDo) {
    EXPECT_FALSE(item.isEnabled());
    item.setEnabled(false);
    item.setEnabled(true);
    EXPECT_TRUE(item.isEnabled());
    item.setEnabled(false);
    EXPECT_FALSE(fs::exists(entry));
    write("[Desktop Entry]\nType=Application\nExec=tavik\nHidden = true\n");
    EXPECT_FALSE(item.isEnabled());
    write("[Other]\nHidden=true\n[Desktop Entry]\nExec=tavik\n[Another]\nHidden=true\n");
    EXPECT_TRUE(item.isEnabled());
    write("[Desktop Entry]\nExec=tavik\nX-GNOME-Autostart-enabled=false\n");
    EXPECT_FALSE(item.isEnabled());
    item.setEnabled(true);
    EXPECT_TRUE(item.isEnabled());
}

TEST_F(LoginItemTests, aFolderThatCannotBeWrittenIsAnErrorAndTheTruthStays) {
    fs::create_directories(folder.parent_path());
    std::ofstream(folder.string()) << "no folder";
    EXPECT_THROW(item.setEnabled(true), LoginItemError);
    EXPECT_FALSE(item.isEnabled());
    EXPECT_THROW(AutostartLoginItem(directory.file("other"), "/bin/a\nb").setEnabled(true),
                 LoginItemError);
}

TEST_F(LoginItemTests, whoeverStartsTheEntryRunsTheProgramWhateverItsPathHolds) {
    if (!fs::exists(generator)) GTEST_SKIP() << "systemd is not installed";
    const fs::path program = directory.file(R"(a "b" $c `d`)");
    fs::create_symlink("/usr/bin/true", program);
    AutostartLoginItem(folder, program).setEnabled(true);
    const std::string units = directory.file("units");
    fs::create_directories(units);
    const auto made =
        test::runProcess({"/usr/bin/env", "XDG_CONFIG_HOME=" + folder.parent_path().string(),
                          "XDG_CONFIG_DIRS=/nowhere", generator, units, units, units});
    EXPECT_EQ(made.exitCode, 0) << made.errors;
    std::ostringstream unit;
    unit << std::ifstream(units + "/app-com.tavik.app@autostart.service").rdbuf();
    EXPECT_THAT(unit.str(), HasSubstr(R"(a \"b\" \$c \`d\`")"));
}

} // namespace
} // namespace tavik
