#pragma once

#include "Document.h"
#include "Listener.h"

#include <QWidget>

#include <functional>
#include <optional>
#include <vector>

namespace editor
{

/// A bar for each layer over the frames of the composition, to be dragged in time. A click beside the bars
/// chooses the frame that is shown.
class Timeline : public QWidget
{
public:
    struct Bar {
        kytl::KyID layer;
        QString name;
        int first = 0;
        int end = 0; ///< exclusive
    };

    Timeline(Document &document, std::function<void(int)> showFrame);

    const std::vector<Bar> &Bars() const { return bars_; }
    /// Null if the layer has none.
    const Bar *BarOf(const kytl::KyID &layer) const;
    /// Where a frame of a bar begins.
    QPoint PointOf(const Bar &bar, int frame) const;

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;

private:
    static constexpr int kRowHeight = 24;

    struct Drag {
        kytl::KyID layer;
        int framesIn = 0; ///< from the start of the bar to where it was taken
    };

    void Changed(const ChangeNotice &notice);
    void ReadBars();
    void ReadBar(const kytl::KyID &layer);
    int FrameCount() const;
    int FrameAt(int x) const;
    int XOf(int frame) const;
    QRect RectOf(std::size_t row) const;

    Document &document_;
    std::function<void(int)> showFrame_;
    std::vector<Bar> bars_;
    std::optional<Drag> drag_;
    int shownFrame_ = 0;
    Listener listener_;
};

} // namespace editor
