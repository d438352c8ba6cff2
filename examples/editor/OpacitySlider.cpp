#include "OpacitySlider.h"

#include <marlet/animation/PropertyManager.h>

#include <QSignalBlocker>

#include <boost/variant/get.hpp>

#include <cmath>

namespace editor
{

OpacitySlider::OpacitySlider(Document &document)
    : QSlider(Qt::Horizontal),
      document_(document),
      listener_(document.History(), [this](const ChangeNotice &notice) { Changed(notice); })
{
    setRange(0, 100);
    setPageStep(20);
    connect(this, &QSlider::valueChanged, this, [this](int opacity) { Take(opacity); });
    connect(this, &QSlider::sliderReleased, this, [this] { document_.History().EndGesture(); });
}

void OpacitySlider::SetLayer(const kytl::KyID &id)
{
    layer_ = id;
    Show();
}

// A control that follows a notice must not take that for the user's hand: an observer must not edit.
void OpacitySlider::Show()
{
    const QSignalBlocker blocker(this);
    const auto layer = document_.Layer(layer_);
    const bool isThere = layer && layer->Animation().HasProperty("opacity");
    setEnabled(isThere && layer->Animation().IsStatic("opacity"));
    const float opacity = isThere ? boost::get<float>(layer->Animation().ValueAtTime("opacity", 0)) : 0.f;
    setValue(static_cast<int>(std::lround(opacity)));
}

void OpacitySlider::Changed(const ChangeNotice &notice)
{
    for (const ObjectChange &change : notice.Changes())
        if (change.id == layer_ && change.aspects.Has(Aspect::Properties))
            Show();
}

// A drag is one step until the button comes up; a key or the wheel is a step by itself.
void OpacitySlider::Take(int opacity)
{
    if (const auto layer = document_.Layer(layer_))
        document_.SetOpacity(layer, opacity);
    if (!isSliderDown())
        document_.History().EndGesture();
}

} // namespace editor
