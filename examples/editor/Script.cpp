#include "Script.h"

#include <QApplication>
#include <QScreen>
#include <QStyleOptionSlider>
#include <QTest>

#include <algorithm>
#include <exception>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace editor
{

namespace
{

QImage OnScreen(QWidget &window)
{
    // What was asked to be painted comes to the screen with the events that wait.
    if (!QTest::qWaitForWindowExposed(&window))
        throw std::runtime_error("The window does not come to the screen");
    QApplication::processEvents();
    return window.screen()->grabWindow(window.winId()).toImage();
}

// The colour in the middle of the preview, in sixteen levels of each part: blending rounds.
QString ColorOf(EditorWindow &window)
{
    const QPoint middle = window.Picture().FromComposition().map(QPoint(0, 0));
    const QColor color = OnScreen(window).pixelColor(window.Picture().mapTo(&window, middle));
    const auto level = [](int part) { return QString::number((part + 8) / 17, 16); };
    return "#" + level(color.red()) + level(color.green()) + level(color.blue());
}

} // namespace

QString Shown(EditorWindow &window)
{
    const QListWidgetItem *const row = window.Layers().currentItem();
    if (!row)
        return "no layer";
    const Timeline::Bar *const bar = window.Bars().BarOf(window.Layers().Selected());
    const QString box = row->checkState() == Qt::Checked ? "[x] " : "[ ] ";
    const QString frames = bar ? QString("%1 to %2").arg(bar->first).arg(bar->end) : "no bar";
    const auto button = [](const QPushButton &each) { return each.isEnabled() ? each.text() : "-"; };
    return box + row->text() + ", " + QString::number(window.Opacity().value()) + " %, " + frames + ", " +
           ColorOf(window) + "; " + button(window.UndoButton()) + ", " + button(window.RedoButton()) +
           (window.isWindowModified() ? ", changed" : ", saved");
}

namespace
{

void Click(QAbstractButton &button)
{
    QTest::mouseClick(&button, Qt::LeftButton);
}

void Select(LayerList &layers, int row)
{
    QTest::mouseClick(layers.viewport(), Qt::LeftButton, {},
                      layers.visualItemRect(layers.item(row)).center());
}

void Drag(QWidget &widget, const QPoint &from, const QPoint &to)
{
    constexpr int kMoves = 5;
    QTest::mousePress(&widget, Qt::LeftButton, {}, from);
    for (int move = 1; move <= kMoves; ++move)
        QTest::mouseMove(&widget, from + (to - from) * move / kMoves);
    QTest::mouseRelease(&widget, Qt::LeftButton, {}, to);
}

void DragToTheLeft(QSlider &slider)
{
    QStyleOptionSlider option;
    option.initFrom(&slider);
    option.minimum = slider.minimum();
    option.maximum = slider.maximum();
    option.sliderPosition = slider.sliderPosition();
    option.sliderValue = slider.value();
    const QRect handle =
        slider.style()->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, &slider);
    Drag(slider, handle.center(), QPoint(-handle.width(), handle.center().y()));
}

void DragBar(EditorWindow &window, int from, int to)
{
    const Timeline::Bar &bar = *window.Bars().BarOf(window.Layers().Selected());
    Drag(window.Bars(), window.Bars().PointOf(bar, from), window.Bars().PointOf(bar, to));
}

struct Step {
    const char *name;
    std::function<void(EditorWindow &)> take;
    const char *shown;
};

void Undo(EditorWindow &window)
{
    Click(window.UndoButton());
}

void Redo(EditorWindow &window)
{
    Click(window.RedoButton());
}

// The card is red, what lies behind it blue.
const std::vector<Step> steps = {
    {"the title is selected first", [](EditorWindow &) {}, "[x] Title, 100 %, 0 to 100, #f00; -, -, saved"},
    {"select the card", [](EditorWindow &window) { Select(window.Layers(), 1); },
     "[x] Card, 100 %, 0 to 50, #f00; -, -, saved"},
    {"drag the slider", [](EditorWindow &window) { DragToTheLeft(window.Opacity()); },
     "[x] Card, 0 %, 0 to 50, #00f; Undo Opacity, -, changed"},
    {"press a key on it", [](EditorWindow &window) { QTest::keyClick(&window.Opacity(), Qt::Key_PageUp); },
     "[x] Card, 20 %, 0 to 50, #30c; Undo Opacity, -, changed"},
    {"undo the key", Undo, "[x] Card, 0 %, 0 to 50, #00f; Undo Opacity, Redo Opacity, changed"},
    {"undo the drag", Undo, "[x] Card, 100 %, 0 to 50, #f00; -, Redo Opacity, saved"},
    {"redo the drag", Redo, "[x] Card, 0 %, 0 to 50, #00f; Undo Opacity, Redo Opacity, changed"},
    {"redo the key", Redo, "[x] Card, 20 %, 0 to 50, #30c; Undo Opacity, -, changed"},
    {"drag the bar", [](EditorWindow &window) { DragBar(window, 10, 40); },
     "[x] Card, 20 %, 30 to 80, #00f; Undo Move layer, -, changed"},
    {"save", [](EditorWindow &window) { Click(window.SaveButton()); },
     "[x] Card, 20 %, 30 to 80, #00f; Undo Move layer, -, saved"},
    {"undo the drag of the bar", Undo,
     "[x] Card, 20 %, 0 to 50, #30c; Undo Opacity, Redo Move layer, changed"},
    {"hide the card", [](EditorWindow &window) { QTest::keyClick(&window.Layers(), Qt::Key_Space); },
     "[ ] Card, 20 %, 0 to 50, #00f; Undo Hide layer, -, changed"},
    {"show it again", Undo, "[x] Card, 20 %, 0 to 50, #30c; Undo Opacity, Redo Hide layer, changed"},
};

} // namespace

void RunScript(Document &document, EditorWindow &window)
{
    const auto failure = std::make_shared<std::exception_ptr>();
    document.History().SetFailureFunction([failure](std::exception_ptr thrown) { *failure = thrown; });
    for (const Step &step : steps) {
        step.take(window);
        if (*failure)
            std::rethrow_exception(*failure);
        if (const QString shown = Shown(window); shown != step.shown)
            throw std::runtime_error(std::string(step.name) + ": the panels show\n  " + shown.toStdString() +
                                     "\ninstead of\n  " + step.shown);
    }
}

void TakePhoto(EditorWindow &window, const std::string &path)
{
    const QString file = QString::fromStdString(path);
    OnScreen(window).save(file, "PNG");
    const QImage photo = QImage(file).convertToFormat(QImage::Format_RGB32);
    if (photo.size() != window.size())
        throw std::runtime_error("There is no photo of the window in " + path);
    const QRgb corner = photo.pixel(0, 0);
    for (int y = 0; y < photo.height(); ++y) {
        const auto *const line = reinterpret_cast<const QRgb *>(photo.constScanLine(y));
        if (std::any_of(line, line + photo.width(), [&](QRgb pixel) { return pixel != corner; }))
            return;
    }
    throw std::runtime_error("The photo in " + path + " is of one colour");
}

} // namespace editor
