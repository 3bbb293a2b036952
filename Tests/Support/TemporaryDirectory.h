#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace tavik::test {

/// A directory of its own for one test, readable by every user, removed with the object.
class TemporaryDirectory {
public:
    TemporaryDirectory();
    ~TemporaryDirectory();
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    const std::filesystem::path& path() const { return directory; }

    std::string file(std::string_view name) const { return (directory / name).string(); }

private:
    std::filesystem::path directory;
};

std::string readFile(const std::filesystem::path& path);
void writeFile(const std::filesystem::path& path, std::string_view contents);

} // namespace tavik::test
