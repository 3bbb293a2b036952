#pragma once

#include <functional>
#include <string>

namespace tavik {

/// What a window about saved words asks of the program.
struct WordActions {
    /// Opens clips with the word.
    std::function<void(const std::string& word)> onVideo;
    /// Opens the page at an address.
    std::function<void(const std::string& url)> openPage;
    std::function<void()> onClose;
};

} // namespace tavik
