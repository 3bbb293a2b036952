#include "Support/TemporaryDirectory.h"

#include <iostream>

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size);

/// Feeds each file of a directory to a fuzz target, which ends the program when it finds a fault.
int main(int, char** arguments) {
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(arguments[1])) {
        std::cout << entry.path().filename() << std::endl;
        const std::string input = tavik::test::readFile(entry.path());
        LLVMFuzzerTestOneInput(reinterpret_cast<const unsigned char*>(input.data()), input.size());
        ++count;
    }
    return count > 0 ? 0 : 1;
}
