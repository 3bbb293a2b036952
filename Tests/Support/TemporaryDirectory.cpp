#include "Support/TemporaryDirectory.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace tavik::test {
namespace fs = std::filesystem;

TemporaryDirectory::TemporaryDirectory() {
    std::string name = (fs::temp_directory_path() / "tavik-test-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("mkdtemp failed");
    directory = name;
    fs::permissions(directory,
                    fs::perms::owner_all | fs::perms::others_read | fs::perms::others_exec);
}

TemporaryDirectory::~TemporaryDirectory() {
    std::error_code ignored;
    fs::remove_all(directory, ignored);
}

std::string readFile(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void writeFile(const fs::path& path, std::string_view contents) {
    std::ofstream file(path, std::ios::binary);
    file << contents;
    if (!file.flush()) throw std::runtime_error("cannot write " + path.string());
}

} // namespace tavik::test
