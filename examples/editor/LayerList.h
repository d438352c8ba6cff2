#pragma once

#include "Document.h"
#include "Listener.h"

#include <QListWidget>

#include <vector>

namespace editor
{

/// The layers of the composition, the one on top first, with a box for whether they are visible.
class LayerList : public QListWidget
{
public:
    explicit LayerList(Document &document);

    /// The null ID if there is no layer.
    kytl::KyID Selected() const;

private:
    void Changed(const ChangeNotice &notice);
    void FillRows();
    void FillRow(const kytl::KyID &id);

    Document &document_;
    std::vector<kytl::KyID> layers_; ///< of the rows
    Listener listener_;
};

} // namespace editor
