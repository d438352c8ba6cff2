// What scripts do to a project, its assets and folders.

#include "EditScript.h"

#include <marlet/project/CompositionRenderSettings.h>
#include <marlet/project/MediaManager.h>
#include <marlet/project/PanelRenderState.h>
#include <marlet/project/ProjectMetadata.h>
#include <marlet/project/ProjectSettings.h>

namespace marlet::test
{

void EditScript::ChangeAsset(Edit &edit)
{
    edit.Touch(std::static_pointer_cast<AbstractAsset>(document_.solid));
    document_.solid->SetWidth(static_cast<int>(Below(500)));
    document_.solid->SetColor({float(Below(2)), 0, 0, 1});
    if (Chance(2))
        document_.solid->Instances().clear();
    edit.Touch(std::static_pointer_cast<AbstractAsset>(document_.composition));
    document_.composition->SetName(Word());
    document_.composition->Settings().SetFrameCount(static_cast<int>(Below(200)));
    document_.composition->RenderSettings().SetFogDensity(float(Below(3)));
    document_.composition->SetInPoint(Frame());
    edit.Touch(std::static_pointer_cast<AbstractAsset>(image_));
    image_->SetFilename(u"/no/such/" + Word());
    image_->SetPixelAspectRatio(PAR{static_cast<int>(Below(5))});
    edit.Touch(std::static_pointer_cast<AbstractAsset>(media_));
    media_->SetTrimmerInPoint(Frame());
    media_->Override().overrideFrameRate = Chance(2);
    media_->Override().frameRate = double(Below(50)) + 1;
    if (Chance(2))
        document_.project->Media().RelinkMediaFile(media_, u"/no/such/" + Word());
}

void EditScript::ChangeFolders(Edit &edit)
{
    edit.TouchAssets();
    edit.TouchRootFolder();
    BinFolder &root = document_.Root();
    const auto added = SolidAsset::Create(Word(), {}, 4, 4, PAR::Square);
    if (Chance(2) || root.Folders().empty()) {
        document_.project->Assets().All().Add(added);
        root.Assets().Add(added);
        added->SetParentFolderID(root.ID());
        root.Folders().Add(BinFolder::Create(Word()));
    } else {
        edit.Touch(root.Folders().back());
        root.Folders().back()->SetName(Word());
        root.Folders().back()->Assets().Add(document_.inner);
        if (Chance(2))
            root.Folders().erase(root.Folders().begin());
    }
}

void EditScript::ChangeProject(Edit &edit)
{
    edit.TouchProject();
    document_.project->SetName(Word());
    document_.project->Settings().SetColorBitDepth(BPC{static_cast<int>(Below(3)) + 1000});
    edit.TouchMetadata();
    document_.project->Metadata().SetIntegerValue(document_.project->ID(), Below(4), int(Below(100)));
}

void EditScript::ChangePanels(Edit &edit)
{
    edit.TouchPanels(document_.composition);
    document_.composition->ViewerPanelState().AddViewState();
    edit.TouchPanels(document_.sequence);
    document_.sequence->ViewerPanelState().SetLayout(
        PanelRenderState::LayoutType{static_cast<int>(Below(4))});
}

} // namespace marlet::test
