// A program with much on its clipboard, for the soak of Tools/Bench/capture: tavik-bench-clipboard
//
// Puts thirty formats there, one of them of 20 MB, and prints their digest. Then, for each line on
// standard input, prints the digest of what these formats have on the clipboard by then.

#include <unistd.h>

#include <QClipboard>
#include <QCryptographicHash>
#include <QGuiApplication>
#include <QMimeData>
#include <QSocketNotifier>
#include <iostream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr int formatCount = 30;
constexpr qsizetype imageSize = 20'000'000;

using Content = std::pair<QString, QByteArray>;

std::vector<Content> contents() {
    std::vector<Content> all{{"text/plain", "What lay there. 剪贴板"},
                             {"text/html", "<b>What lay there.</b>"},
                             {"image/x-large", QByteArray("\x89\0\xff\n large", 10).repeated(2)}};
    while (all.back().second.size() < imageSize)
        all.back().second += all.back().second;
    all.back().second.truncate(imageSize);
    while (all.size() < formatCount) {
        const auto number = static_cast<qsizetype>(all.size());
        all.emplace_back(QString("application/x-format-%1").arg(number),
                         QByteArray("\0\1\n form", 8).repeated(number * number * number));
    }
    return all;
}

std::string digest(const std::vector<Content>& expected) {
    const QMimeData* found = QGuiApplication::clipboard()->mimeData();
    QCryptographicHash hash(QCryptographicHash::Sha256);
    for (const auto& [format, data] : expected) {
        const QByteArray bytes = found == nullptr ? QByteArray() : found->data(format);
        hash.addData(format.toUtf8() + QByteArray::number(bytes.size()) + bytes);
    }
    return hash.result().toHex().toStdString();
}

} // namespace

int main(int argc, char** argv) {
    const QGuiApplication application(argc, argv);
    const std::vector<Content> all = contents();
    auto offered = std::make_unique<QMimeData>();
    for (const auto& [format, data] : all)
        offered->setData(format, data);
    QGuiApplication::clipboard()->setMimeData(offered.release());
    std::cout << digest(all) << std::endl;
    const QSocketNotifier requests(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&requests, &QSocketNotifier::activated, &application, [&all] {
        // One line at a time, as the other side waits for each answer.
        std::string request;
        if (std::getline(std::cin, request))
            std::cout << digest(all) << std::endl;
        else
            QGuiApplication::quit();
    });
    return QGuiApplication::exec();
}
