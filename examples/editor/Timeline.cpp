#include "Timeline.h"

#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <utility>

namespace editor
{

namespace
{

Timeline::Bar MakeBar(const AbstractLayer &layer)
{
    return {layer.ID(), QString::fromStdU16String(layer.Name()), layer.StartFrame(), layer.EndFrame()};
}

} // namespace

Timeline::Timeline(Document &document, std::function<void(int)> showFrame)
    : document_(document),
      showFrame_(std::move(showFrame)),
      listener_(document.History(), [this](const ChangeNotice &notice) { Changed(notice); })
{
    ReadBars();
}

const Timeline::Bar *Timeline::BarOf(const kytl::KyID &layer) const
{
    const auto bar =
        std::find_if(bars_.begin(), bars_.end(), [&](const Bar &each) { return each.layer == layer; });
    return bar == bars_.end() ? nullptr : &*bar;
}

QPoint Timeline::PointOf(const Bar &bar, int frame) const
{
    return {XOf(frame), RectOf(static_cast<std::size_t>(&bar - bars_.data())).center().y()};
}

void Timeline::Changed(const ChangeNotice &notice)
{
    for (const ObjectChange &change : notice.Changes()) {
        if (change.id == document_.Composition()->ID())
            ReadBars();
        else if (change.kind == ObjectKind::Layer)
            ReadBar(change.id);
    }
}

void Timeline::ReadBars()
{
    bars_.clear();
    for (const auto &layer : document_.Composition()->Layers())
        bars_.push_back(MakeBar(*layer));
    setMinimumHeight(static_cast<int>(bars_.size() + 1) * kRowHeight);
    update();
}

void Timeline::ReadBar(const kytl::KyID &id)
{
    const auto layer = document_.Layer(id);
    for (Bar &bar : bars_)
        if (layer && bar.layer == id)
            bar = MakeBar(*layer);
    update();
}

int Timeline::FrameCount() const
{
    return std::max(1, document_.Composition()->Settings().FrameCount());
}

int Timeline::FrameAt(int x) const
{
    return x * FrameCount() / std::max(1, width());
}

// The first pixel of a frame.
int Timeline::XOf(int frame) const
{
    return (frame * width() + FrameCount() - 1) / FrameCount();
}

QRect Timeline::RectOf(std::size_t row) const
{
    const Bar &bar = bars_[row];
    const int top = static_cast<int>(row) * kRowHeight;
    return {QPoint(XOf(bar.first), top + 2), QPoint(XOf(bar.end) - 1, top + kRowHeight - 2)};
}

void Timeline::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), palette().base());
    for (std::size_t row = 0; row < bars_.size(); ++row) {
        painter.fillRect(RectOf(row), palette().highlight());
        painter.setPen(palette().highlightedText().color());
        painter.drawText(RectOf(row).adjusted(6, 0, 0, 0), Qt::AlignVCenter, bars_[row].name);
    }
    painter.setPen(Qt::red);
    painter.drawLine(XOf(shownFrame_), 0, XOf(shownFrame_), height());
}

void Timeline::mousePressEvent(QMouseEvent *event)
{
    const QPoint point = event->position().toPoint();
    for (std::size_t row = 0; row < bars_.size(); ++row)
        if (RectOf(row).contains(point)) {
            drag_ = Drag{bars_[row].layer, FrameAt(point.x()) - bars_[row].first};
            return;
        }
    shownFrame_ = std::clamp(FrameAt(point.x()), 0, FrameCount() - 1);
    showFrame_(shownFrame_);
    update();
}

void Timeline::mouseMoveEvent(QMouseEvent *event)
{
    const auto layer = drag_ ? document_.Layer(drag_->layer) : nullptr;
    if (layer)
        document_.Move(layer, FrameAt(event->position().toPoint().x()) - drag_->framesIn);
}

void Timeline::mouseReleaseEvent(QMouseEvent *)
{
    if (drag_)
        document_.History().EndGesture();
    drag_.reset();
}

} // namespace editor
