// For each line on standard input: reads what is selected in the application in front, and prints
// it as one line of JSON.

#include "CaptureAnswers.h"

#include <cstdlib>
#include <exception>
#include <iostream>
#include <string>

int main() {
    try {
        tavik::CaptureAnswers answers;
        for (std::string request; std::getline(std::cin, request);)
            std::cout << answers.next() << std::endl;
    } catch (const std::exception& error) {
        std::cerr << "错误：" << error.what() << '\n';
        return EXIT_FAILURE;
    }
}
