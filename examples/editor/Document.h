#pragma once

#include <marlet/history/EditHistory.h>
#include <marlet/layers/AbstractLayer.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/Project.h>

#include <memory>
#include <string>

namespace editor
{

using namespace marlet::project;

/// A project with the history of its edits, and the edits that the editor has. It shows the first
/// composition.
class Document
{
public:
    /// Opens a file. If there is none, it is made of a small project when that is saved.
    /// @throws std::exception, whose text is for the user, if the file cannot be opened or has no composition
    explicit Document(const std::string &path);

    const std::string &Path() const { return path_; }
    EditHistory &History() { return history_; }
    const std::shared_ptr<Project> &Contents() const { return project_; }
    const std::shared_ptr<CompositionAsset> &Composition() const { return composition_; }
    /// Null if the composition has no such layer.
    std::shared_ptr<AbstractLayer> Layer(const kytl::KyID &id) const;

    void SetVisible(const std::shared_ptr<AbstractLayer> &layer, bool visible);
    /// In percent. Those that follow one another until the history's EndGesture are one step; so are moves.
    void SetOpacity(const std::shared_ptr<AbstractLayer> &layer, int opacity);
    void Move(const std::shared_ptr<AbstractLayer> &layer, int startFrame);
    void Save();

private:
    std::string path_;
    std::shared_ptr<Project> project_;
    std::shared_ptr<CompositionAsset> composition_;
    EditHistory history_; ///< lets go of the project before that goes
};

} // namespace editor
