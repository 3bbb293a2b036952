#pragma once

#include "Ports/LoginItem.h"

namespace tavik {

/// A desktop that starts nothing by itself.
class NullLoginItem final : public LoginItem {
public:
    bool isEnabled() const override { return false; }

    void setEnabled(bool isEnabled) override {
        if (isEnabled) throw LoginItemError("这里不能设置登录时启动");
    }
};

} // namespace tavik
