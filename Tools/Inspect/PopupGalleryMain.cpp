#include "Base/ResourceFile.h"
#include "Dictionary/OfflineDictionary.h"
#include "UI/Popup/PopupPanel.h"
#include "Vocabulary/VocabularyStore.h"

#include <QApplication>
#include <QColor>
#include <QImage>
#include <QPainter>
#include <QTemporaryDir>
#include <functional>
#include <iostream>
#include <span>

namespace tavik {
namespace {

/// One picture: what is looked up, and what is known of it by then.
struct Sample {
    const char* name;
    const char* selection;
    bool hasModel = false;
    std::function<void(PopupModel&)> prepare = [](PopupModel&) {};
};

ContextExplanation explanation() {
    return {"这里指太阳能电池的效率「达到」历史最高，强调首次实现。",
            "研究人员表示，新型太阳能电池的效率创下了新纪录，但要走出实验室还需要好几年。",
            {{"The team achieved what many had thought impossible.",
              "这个团队做到了许多人以为不可能的事。"},
             {"She achieved her goal after ten years of hard work.",
              "经过十年的努力，她实现了自己的目标。"}}};
}

std::vector<Sample> samples() {
    return {
        {"short", "ubiquitous"},
        {"long", "set"},
        {"inflected", "running"},
        {"phrase", "gave up"},
        {"no-word", "colorless green ideas sleep furiously tonight"},
        {"no-word-model", "zzyzx", true},
        {"sentence-done",
         "Researchers said the new cells achieved a record efficiency, but leaving the laboratory "
         "would take years, as anybody who has followed the field for long enough will know.",
         true, [](PopupModel& model) { model.setExplain(explanation()); }},
        {"loading", "achieved", true,
         [](PopupModel& model) { model.setExplain(PopupModel::Loading()); }},
        {"done", "achieved", true, [](PopupModel& model) { model.setExplain(explanation()); }},
        {"failed", "achieved", true,
         [](PopupModel& model) {
             model.setExplain(PopupModel::Failed{
                 "语境释义失败：连不上服务器 api.example.com，请检查网络和代理设置。"});
         }},
        {"saved", "achieved", false, [](PopupModel& model) { model.setSaved(); }},
        {"save-error", "light", false,
         [](PopupModel& model) {
             model.setSaveError("没有空间写生词本了，请腾出一些磁盘空间再试。");
         }},
    };
}

QImage onDesktop(const QPixmap& popup, bool isDark) {
    QImage image(popup.size(), QImage::Format_RGB32);
    image.fill(QColor(isDark ? "#15181d" : "#c9d2de"));
    QPainter painter(&image);
    painter.drawPixmap(QRect(QPoint(), popup.size()), popup);
    return image;
}

QPixmap picture(const std::shared_ptr<PopupModel>& model, bool hasModel, bool isTranslucent,
                bool isDark) {
    auto view = std::make_unique<PopupView>(model, hasModel, PopupActions(), theme(isDark));
    PopupPanel panel(std::move(view), isTranslucent, theme(isDark));
    const PopupSize size = panel.view().fit(480);
    const double scale = qApp->devicePixelRatio();
    Screen screen;
    screen.scale = scale;
    panel.place({40 * scale, 40 * scale, size.width * scale, size.height * scale}, screen);
    panel.show();
    QApplication::processEvents();
    return panel.grab();
}

int paintGallery(const std::string& folder) {
    const QTemporaryDir book;
    VocabularyStore store(book.filePath(QStringLiteral("book.sqlite")).toStdString());
    const OfflineDictionary dictionary(resourceFile("dict.sqlite").string());
    const LookupService lookup(&dictionary, store);
    for (const Sample& sample : samples())
        for (const bool isDark : {false, true}) {
            const auto model = std::make_shared<PopupModel>(
                lookup.lookup(sample.selection, std::nullopt, {}), "ax-text");
            sample.prepare(*model);
            const std::string path =
                folder + '/' + sample.name + (isDark ? "-dark.png" : "-light.png");
            const bool isPlain = std::string_view(sample.name) == "saved";
            if (!onDesktop(picture(model, sample.hasModel, !isPlain, isDark), isDark)
                     .save(QString::fromStdString(path))) {
                std::cerr << "写不了 " << path << '\n';
                return EXIT_FAILURE;
            }
        }
    return EXIT_SUCCESS;
}

} // namespace
} // namespace tavik

/// Paints the popup in all its states into the folder that is named, at QT_SCALE_FACTOR.
int main(int argumentCount, char** arguments) {
    const QApplication application(argumentCount, arguments);
    const std::span all(arguments, static_cast<std::size_t>(argumentCount));
    if (all.size() != 2) {
        std::cerr << "用法：tavik-popup-gallery 目录\n";
        return EXIT_FAILURE;
    }
    return tavik::paintGallery(all[1]);
}
