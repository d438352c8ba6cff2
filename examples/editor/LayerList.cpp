#include "LayerList.h"

#include <QSignalBlocker>

#include <algorithm>

namespace editor
{

LayerList::LayerList(Document &document)
    : document_(document),
      listener_(document.History(), [this](const ChangeNotice &notice) { Changed(notice); })
{
    FillRows();
    setCurrentRow(0);
    connect(this, &QListWidget::itemChanged, this, [this](const QListWidgetItem *item) {
        if (const auto layer = document_.Layer(layers_.at(static_cast<std::size_t>(row(item)))))
            document_.SetVisible(layer, item->checkState() == Qt::Checked);
    });
}

kytl::KyID LayerList::Selected() const
{
    const int row = currentRow();
    return row < 0 ? kytl::KyID() : layers_[static_cast<std::size_t>(row)];
}

// Rows are made anew only where layers came, went or changed places.
void LayerList::Changed(const ChangeNotice &notice)
{
    for (const ObjectChange &change : notice.Changes()) {
        if (change.id == document_.Composition()->ID() && change.aspects.Has(Aspect::Members))
            FillRows();
        if (change.kind == ObjectKind::Layer)
            FillRow(change.id);
    }
}

void LayerList::FillRows()
{
    const kytl::KyID selected = Selected();
    {
        const QSignalBlocker blocker(this);
        clear();
        layers_.clear();
        for (const auto &layer : document_.Composition()->Layers()) {
            layers_.push_back(layer->ID());
            addItem(QString());
            FillRow(layer->ID());
        }
    }
    const auto place = std::find(layers_.begin(), layers_.end(), selected);
    setCurrentRow(place == layers_.end() ? 0 : static_cast<int>(place - layers_.begin()));
}

// An item that follows a notice must not be taken for one that the user has checked.
void LayerList::FillRow(const kytl::KyID &id)
{
    const auto place = std::find(layers_.begin(), layers_.end(), id);
    const auto layer = document_.Layer(id);
    if (place == layers_.end() || !layer)
        return;
    const QSignalBlocker blocker(this);
    QListWidgetItem *const row = item(static_cast<int>(place - layers_.begin()));
    row->setText(QString::fromStdU16String(layer->Name()));
    row->setCheckState(layer->IsVisible() ? Qt::Checked : Qt::Unchecked);
}

} // namespace editor
