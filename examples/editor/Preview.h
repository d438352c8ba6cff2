#pragma once

#include "Document.h"
#include "Listener.h"

#include <QTransform>
#include <QWidget>

class QPainter;

namespace editor
{

/// One frame of the composition, seen from the front: solids in their colour, all else as frames with names.
class Preview : public QWidget
{
public:
    explicit Preview(Document &document);

    void SetFrame(int frame);
    /// From pixels of the composition, counted from its middle with Y up, to those of the widget.
    QTransform FromComposition() const;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void Changed(const ChangeNotice &notice);
    void Paint(QPainter &painter, const std::shared_ptr<AbstractLayer> &layer) const;

    Document &document_;
    int frame_ = 0;
    Listener listener_;
};

} // namespace editor
