#include "Document.h"

#include "../guide/Files.h"
#include "SmallProject.h"

#include <marlet/animation/PropertyManager.h>
#include <marlet/foundation/Exceptions.h>
#include <marlet/project/AssetList.h>

#include <filesystem>
#include <iostream>
#include <stdexcept>

namespace editor
{

namespace
{

std::shared_ptr<Project> OpenOrMake(const std::string &path)
try {
    if (!std::filesystem::exists(path))
        return MakeSmallProject();
    std::vector<std::string> told;
    const auto project = guide::OpenAnyway(path, nullptr, told);
    for (const std::string &line : told)
        std::cerr << path << ": " << line << "\n";
    return project;
} catch (const ProjectException &error) {
    const bool isEffect = error.Code() == ProjectException::kMissingEffect;
    throw std::runtime_error("The project is damaged: " + (isEffect ? "a 3D effect" : error.Detail()) +
                             " is missing");
}

std::shared_ptr<CompositionAsset> FirstComposition(const Project &project)
{
    const auto compositions = project.Assets().GetByType(AssetType::Composition);
    if (compositions.IsEmpty())
        throw std::runtime_error("The project has no composition");
    return std::static_pointer_cast<CompositionAsset>(compositions.front());
}

} // namespace

Document::Document(const std::string &path)
    : path_(path), project_(OpenOrMake(path)), composition_(FirstComposition(*project_)), history_(project_)
{
}

std::shared_ptr<AbstractLayer> Document::Layer(const kytl::KyID &id) const
{
    return composition_->FindLayerByID(id);
}

void Document::SetVisible(const std::shared_ptr<AbstractLayer> &layer, bool visible)
{
    Edit edit(project_, visible ? u"Show layer" : u"Hide layer");
    edit.Touch(layer);
    layer->SetVisible(visible);
    edit.Commit();
}

void Document::SetOpacity(const std::shared_ptr<AbstractLayer> &layer, int opacity)
{
    Edit edit(project_, u"Opacity", u"opacity slider");
    edit.Touch(layer, "opacity");
    layer->Animation().StaticValue("opacity") = static_cast<float>(opacity);
    edit.Commit();
}

void Document::Move(const std::shared_ptr<AbstractLayer> &layer, int startFrame)
{
    Edit edit(project_, u"Move layer", u"bar of the timeline");
    edit.Touch(layer);
    layer->MoveLayer(startFrame);
    edit.Commit();
}

void Document::Save()
{
    guide::Save(*project_, path_);
    history_.MarkSaved();
}

} // namespace editor
