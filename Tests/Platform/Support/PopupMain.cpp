// Windows of ours that no window manager cares for, for the tests of the window system:
// tavik-test-popup
//
// Obeys the lines of its standard input and answers each with a line, which begins with the number
// of the command, from 1 on. Windows are numbered from 0 on.
//   show X Y WIDTH HEIGHT    shows a new window, without the keyboard: its number for the server
//   take WINDOW              gives it the keyboard
//   hide WINDOW              gives the keyboard back and hides it
//   limit WINDOW X Y W H     lets clicks outside go through
//   screens                  for each "x,y,w,h x,y,w,h scale;", the whole and what is visible
//   pointer                  "x,y"
//   compositor               0 or 1
// Prints "key TEXT" and "click X,Y" for what its windows get.

#include "Platform/Linux/X11/X11WindowSystem.h"
#include "Platform/Qt/QtWindowSystem.h"

#include <unistd.h>

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QSocketNotifier>
#include <QWidget>
#include <array>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace tavik::test {
namespace {

class Popup final : public QWidget {
public:
    explicit Popup(const QRect& place)
        : QWidget(nullptr, Qt::ToolTip | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint) {
        setAttribute(Qt::WA_ShowWithoutActivating);
        setGeometry(place);
        show();
    }

protected:
    void keyPressEvent(QKeyEvent* event) override {
        std::cout << "key " << event->text().toStdString() << std::endl;
    }

    void mousePressEvent(QMouseEvent* event) override {
        const QPoint where = event->globalPosition().toPoint();
        std::cout << "click " << where.x() << ',' << where.y() << std::endl;
    }
};

std::string text(const ScreenRect& rect) {
    std::ostringstream line;
    line << rect.x << ',' << rect.y << ',' << rect.width << ',' << rect.height;
    return line.str();
}

class Program {
public:
    explicit Program(std::unique_ptr<WindowSystem> windows) : windowSystem(std::move(windows)) {}

    /// What has come of the commands.
    void read() {
        std::array<char, 4096> part{};
        const ssize_t count = ::read(STDIN_FILENO, part.data(), part.size());
        if (count <= 0) return QApplication::quit();
        unread.append(part.data(), static_cast<std::size_t>(count));
        for (auto end = unread.find('\n'); end != std::string::npos; end = unread.find('\n')) {
            std::istringstream line(unread.substr(0, end));
            unread.erase(0, end + 1);
            const std::string answer = obey(line);
            std::cout << ++commandCount << ' ' << answer << std::endl;
        }
    }

private:
    std::string obey(std::istream& line) {
        std::string command;
        line >> command;
        if (command == "show") return show(line);
        if (command == "take") return take(popup(line));
        if (command == "hide") return hide(popup(line));
        if (command == "limit") return limit(line);
        if (command == "screens") return screens();
        if (command == "pointer") return pointer();
        if (command == "compositor") return windowSystem->hasCompositor() ? "1" : "0";
        return "unknown";
    }

    Popup& popup(std::istream& line) const {
        std::size_t number = 0;
        line >> number;
        return *popups.at(number);
    }

    static std::uint32_t numberOf(const Popup& popup) {
        return static_cast<std::uint32_t>(popup.winId());
    }

    std::string show(std::istream& line) {
        int x = 0;
        int y = 0;
        int width = 0;
        int height = 0;
        line >> x >> y >> width >> height;
        popups.push_back(std::make_unique<Popup>(QRect(x, y, width, height)));
        return std::to_string(numberOf(*popups.back()));
    }

    std::string take(Popup& popup) {
        windowSystem->takeKeyboard(numberOf(popup));
        return "done";
    }

    std::string hide(Popup& popup) {
        windowSystem->returnKeyboard(numberOf(popup));
        popup.hide();
        return "done";
    }

    std::string limit(std::istream& line) {
        const Popup& limited = popup(line);
        ScreenRect part;
        line >> part.x >> part.y >> part.width >> part.height;
        windowSystem->limitClicks(numberOf(limited), part);
        return "done";
    }

    std::string screens() {
        std::ostringstream line;
        for (const Screen& screen : windowSystem->screens())
            line << text(screen.frame) << ' ' << text(screen.visibleFrame) << ' ' << screen.scale
                 << ';';
        return line.str();
    }

    std::string pointer() {
        std::ostringstream line;
        const ScreenPoint place = windowSystem->pointer();
        line << place.x << ',' << place.y;
        return line.str();
    }

    std::unique_ptr<WindowSystem> windowSystem;
    std::vector<std::unique_ptr<Popup>> popups;
    std::string unread;
    int commandCount = 0;
};

std::unique_ptr<WindowSystem> windowSystemOf() {
    if (QGuiApplication::platformName() == "xcb") return std::make_unique<X11WindowSystem>();
    return std::make_unique<QtWindowSystem>();
}

} // namespace
} // namespace tavik::test

int main(int count, char** words) {
    const QApplication application(count, words);
    QApplication::setQuitOnLastWindowClosed(false);
    tavik::test::Program program(tavik::test::windowSystemOf());
    const QSocketNotifier commands(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&commands, &QSocketNotifier::activated, &commands,
                     [&program] { program.read(); });
    return QApplication::exec();
}
