#pragma once

#include "Ports/Workspace.h"

#include <functional>
#include <memory>

namespace tavik {

class DisplayThread;

/// The desktop of the X server that $DISPLAY names at the first call, and again when the connection
/// to it has broken.
class X11Workspace final : public Workspace {
public:
    /// An application's name in the user's language, by its identifier and the class of its
    /// windows, either of which may be empty. Called on the threads that ask for the application.
    using NameOf = std::function<std::optional<std::string>(const std::string& identifier,
                                                            const std::string& windowClass)>;

    explicit X11Workspace(NameOf nameOf);
    ~X11Workspace() override;
    X11Workspace(const X11Workspace&) = delete;
    X11Workspace& operator=(const X11Workspace&) = delete;

    std::optional<FrontApplication> frontApplication() override;
    std::vector<FrontApplication> applications() override;
    std::vector<ScreenRect> screens() override;

private:
    FrontApplication named(FrontApplication application, const std::string& windowClass) const;

    NameOf nameOf;
    std::unique_ptr<DisplayThread> display;
};

} // namespace tavik
