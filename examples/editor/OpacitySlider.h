#pragma once

#include "Document.h"
#include "Listener.h"

#include <QSlider>

namespace editor
{

/// The opacity of one layer. Off where there is none, or one that moves over time.
class OpacitySlider : public QSlider
{
public:
    explicit OpacitySlider(Document &document);

    void SetLayer(const kytl::KyID &id);

private:
    void Changed(const ChangeNotice &notice);
    void Show();
    void Take(int opacity);

    Document &document_;
    kytl::KyID layer_;
    Listener listener_;
};

} // namespace editor
