#pragma once

#include "Document.h"
#include "LayerList.h"
#include "Listener.h"
#include "OpacitySlider.h"
#include "Preview.h"
#include "Timeline.h"

#include <QPushButton>
#include <QWidget>

namespace editor
{

/// The panels of a document, with buttons to undo, redo and save. The document must outlive it.
class EditorWindow : public QWidget
{
public:
    explicit EditorWindow(Document &document);

    // For a script.

    LayerList &Layers() { return layers_; }
    OpacitySlider &Opacity() { return opacity_; }
    Preview &Picture() { return preview_; }
    Timeline &Bars() { return timeline_; }
    QPushButton &UndoButton() { return undo_; }
    QPushButton &RedoButton() { return redo_; }
    QPushButton &SaveButton() { return save_; }

private:
    void Connect();
    void LayOut();
    void ShowHistory();

    Document &document_;
    LayerList layers_;
    OpacitySlider opacity_;
    Preview preview_;
    Timeline timeline_;
    QPushButton undo_;
    QPushButton redo_;
    QPushButton save_;
    Listener listener_;
};

} // namespace editor
