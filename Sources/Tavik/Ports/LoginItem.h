#pragma once

#include <stdexcept>

namespace tavik {

/// What the desktop answers when the login item cannot be changed; `what()` is a Chinese sentence.
class LoginItemError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Whether the program starts when the user logs in. The desktop's own record is the only one.
class LoginItem {
public:
    virtual ~LoginItem() = default;

    virtual bool isEnabled() const = 0;

    /// Throws `LoginItemError`; `isEnabled` then still tells the truth.
    virtual void setEnabled(bool isEnabled) = 0;
};

} // namespace tavik
