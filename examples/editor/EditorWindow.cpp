#include "EditorWindow.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QMessageBox>

#include <exception>
#include <filesystem>

namespace editor
{

namespace
{

QString WithLabel(const QString &action, const WideString &label)
{
    return label.empty() ? action : action + " " + QString::fromStdU16String(label);
}

} // namespace

EditorWindow::EditorWindow(Document &document)
    : document_(document),
      layers_(document),
      opacity_(document),
      preview_(document),
      timeline_(document, [this](int frame) { preview_.SetFrame(frame); }),
      save_("Save"),
      listener_(document.History(), [this](const ChangeNotice &) { ShowHistory(); })
{
    const std::filesystem::path file = document.Path();
    setWindowTitle(QString::fromStdString(file.filename().string()) + "[*]");
    LayOut();
    Connect();
    opacity_.SetLayer(layers_.Selected());
    ShowHistory();
}

void EditorWindow::Connect()
{
    connect(&layers_, &QListWidget::currentRowChanged, this,
            [this] { opacity_.SetLayer(layers_.Selected()); });
    connect(&undo_, &QPushButton::clicked, this, [this] { document_.History().Undo(); });
    connect(&redo_, &QPushButton::clicked, this, [this] { document_.History().Redo(); });
    connect(&save_, &QPushButton::clicked, this, [this] {
        try {
            document_.Save();
        } catch (const std::exception &error) {
            QMessageBox::warning(this, "Not saved", error.what());
        }
        // Saving changes nothing in the document, so no notice tells of it.
        ShowHistory();
    });
}

void EditorWindow::LayOut()
{
    auto *const buttons = new QHBoxLayout;
    for (QPushButton *const button : {&undo_, &redo_, &save_})
        buttons->addWidget(button);
    buttons->addStretch();

    auto *const grid = new QGridLayout(this);
    grid->addLayout(buttons, 0, 0, 1, 2);
    grid->addWidget(&layers_, 1, 0);
    grid->addWidget(&opacity_, 2, 0);
    grid->addWidget(&preview_, 1, 1, 2, 1);
    grid->addWidget(&timeline_, 3, 0, 1, 2);
    grid->setColumnStretch(1, 3);
    grid->setColumnStretch(0, 1);
    grid->setRowStretch(1, 1);
}

void EditorWindow::ShowHistory()
{
    const EditHistory &history = document_.History();
    undo_.setText(WithLabel("Undo", history.UndoLabel()));
    undo_.setEnabled(history.CanUndo());
    redo_.setText(WithLabel("Redo", history.RedoLabel()));
    redo_.setEnabled(history.CanRedo());
    setWindowModified(!history.IsSaved());
}

} // namespace editor
