#include "LayerDrawing.h"

#include <marlet/checks/Validate.h>
#include <marlet/layers/Effect3DLayer.h>
#include <marlet/operations/OperationException.h>

#include <gmock/gmock.h>

namespace marlet::test
{

namespace
{

std::string NameOf(const CompositionAsset &composition, const KyID &id)
{
    const auto layer = composition.FindLayerByID(id);
    return layer ? ToUtf8(layer->Name()) : "?";
}

std::string Drawn(const AssetLayer &layer, const CompositionAsset &composition, const AssetList &assets)
{
    const auto asset = layer.Asset(assets);
    std::string text =
        " " + (asset ? ToUtf8(asset->Name()) : "?") + "+" + std::to_string(layer.AssetInstanceStart());
    for (const auto &effect : layer.Effects()) {
        const bool isOwned =
            effect->ParentID() == layer.ID() && effect->ParentTimelineID() == composition.ID();
        text += isOwned ? " effect" : " effect!";
        const auto id = boost::get<KyID>(std::as_const(*effect).Properties().StaticValue("layer"));
        if (!id.IsNull())
            text += ">" + NameOf(composition, id);
    }
    for (const auto &tracker : layer.Trackers()) {
        text += tracker->ParentLayerID() == layer.ID() ? " tracker" : " tracker!";
        if (!tracker->DestinationLayerID().IsNull())
            text += ">" + NameOf(composition, tracker->DestinationLayerID());
    }
    for (const auto &mask : layer.Masks())
        text += mask->ParentLayerID() == layer.ID() ? "" : " mask!";
    return text;
}

std::vector<std::string> FindingsIn(const Project &project)
{
    std::vector<std::string> found;
    for (const Finding &finding : Validate(project))
        if (finding.severity != Finding::Severity::Note)
            found.push_back(finding.place + ": " + finding.what);
    return found;
}

void Draw(const BinFolder &folder, const std::string &path, std::string &text)
{
    text += path;
    for (const auto &reference : folder.Assets()) {
        const auto asset = reference.lock();
        text += " " + (asset ? ToUtf8(asset->Name()) : "?") + ":" +
                std::to_string(asset ? asset->Instances().Count() : 0);
        if (asset && asset->ParentFolderID() != folder.ID())
            text += "!";
    }
    text += "\n";
    for (const auto &inner : folder.Folders())
        Draw(*inner, path + ToUtf8(inner->Name()) + "/", text);
}

} // namespace

std::string DrawnLayers(const CheckedProject &document, const CompositionAsset &composition)
{
    const AssetList &assets = std::as_const(*document.project).Assets();
    std::string text;
    for (const auto &layer : composition.Layers()) {
        text += ToUtf8(layer->Name()) + " [" + std::to_string(layer->StartFrame()) + ".." +
                std::to_string(layer->EndFrame()) + ")";
        if (layer->ParentCompositionID() != composition.ID())
            text += "!";
        if (const auto *shown = dynamic_cast<const AssetLayer *>(layer.get()))
            text += Drawn(*shown, composition, assets);
        if (layer->HasParentLayer())
            text += " parent=" + NameOf(composition, layer->ParentLayerID());
        text += "\n";
    }
    return text;
}

std::string DrawnFolders(const Project &project)
{
    std::string text;
    Draw(project.Assets().Bin(), "/", text);
    return text;
}

void Perform(const std::shared_ptr<Project> &project, const std::function<void()> &operation)
{
    EditHistory history(project);
    history.SetChecksAnnouncements(true);
    const std::vector<std::string> findings = FindingsIn(*project);
    const WideString before = project->Serialize();
    operation();
    const WideString after = project->Serialize();
    EXPECT_EQ(FindingsIn(*project), findings);
    EXPECT_NE(after, before);
    EXPECT_EQ(history.UndoCount(), 1U);
    history.Undo();
    EXPECT_EQ(ToUtf8(project->Serialize()), ToUtf8(before));
    history.Redo();
    EXPECT_EQ(ToUtf8(project->Serialize()), ToUtf8(after));
}

void Refuse(const std::shared_ptr<Project> &project, const std::function<void()> &operation,
            const std::string &words)
{
    const WideString before = project->Serialize();
    try {
        operation();
        ADD_FAILURE() << "is not refused";
    } catch (const OperationException &refusal) {
        EXPECT_EQ(refusal.what(), words);
    }
    EXPECT_EQ(ToUtf8(project->Serialize()), ToUtf8(before));
}

} // namespace marlet::test
