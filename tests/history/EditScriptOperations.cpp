// What scripts do by operations, which may refuse.

#include "EditScript.h"

#include <marlet/operations/OperationException.h>
#include <marlet/operations/assets/FolderOperations.h>
#include <marlet/operations/assets/ProjectOperations.h>
#include <marlet/operations/curves/KeyFrameOperations.h>
#include <marlet/operations/layers/LayerClipboard.h>
#include <marlet/operations/layers/LayerOperations.h>
#include <marlet/operations/layers/LayerTiming.h>
#include <marlet/operations/layers/MaskOperations.h>
#include <marlet/operations/layers/TextOperations.h>
#include <marlet/operations/sequence/SequenceObjects.h>
#include <marlet/operations/sequence/SequencePlacing.h>
#include <marlet/operations/sequence/SequenceRemoval.h>
#include <marlet/operations/sequence/SequenceTransitions.h>
#include <marlet/operations/sequence/SequenceTrimming.h>

#include <stdexcept>

namespace marlet::test
{

namespace
{

/// Scripts leave projects in which much is wrong, so that operations refuse, or meet what cannot be answered.
template <class Operation> void Try(const Operation &operation)
{
    try {
        operation();
    } catch (const OperationException &) {
    } catch (const std::logic_error &) {
    } catch (const std::runtime_error &) {
    }
}

} // namespace

void EditScript::OperateOnLayers(Edit &)
{
    const auto &project = document_.project;
    if (document_.composition->Layers().empty())
        return;
    const auto layer = AnyLayer();
    const int frame = Frame();
    Try([&] {
        switch (Below(10)) {
        case 0:
            AddAssetLayer(project, document_.composition, Chance(2) ? document_.inner : deep_, frame);
            break;
        case 1:
            if (document_.composition->Layers().size() > 2)
                RemoveLayers(project, {layer});
            break;
        case 2:
            ReorderLayer(project, layer, Below(4));
            break;
        case 3:
            SetParent(project, layer, AnyLayer(), frame);
            break;
        case 4:
            SplitLayer(project, layer, frame);
            break;
        case 5:
            TrimLayer(project, layer, frame, frame + 20);
            break;
        case 6:
            MoveLayers(project, {layer, AnyLayer()}, frame);
            break;
        case 7:
            PasteLayers(project, Chance(2) ? deep_ : document_.composition, *CopyLayers(project, {layer}));
            break;
        case 8:
            AddEllipseMask(project, layer, Word(), {{}, 10, 20});
            break;
        default:
            SetText(project, document_.text, Word());
        }
    });
}

void EditScript::OperateOnCurves(Edit &)
{
    const auto &project = document_.project;
    if (document_.composition->Layers().empty())
        return;
    const AnimatedProperty property(AnyLayer(), "rotationX");
    const int time = static_cast<int>(Below(600));
    Try([&] {
        switch (Below(6)) {
        case 0:
            InsertKeyFrame(project, property, time);
            break;
        case 1:
            MoveKeyFrames(project, property, KeyFramesIn(property, {time, 1000}), 50);
            break;
        case 2:
            ScaleKeyFrames(project, property, KeyFramesIn(property), time, 1.5);
            break;
        case 3:
            ReverseKeyFrames(project, property);
            break;
        case 4:
            EaseKeyFrames(project, property, KeyFramesIn(property), Easing::EaseInOut);
            break;
        default:
            SimplifyKeyFrames(project, property, 5);
        }
    });
}

void EditScript::OperateOnAssets(Edit &)
{
    const auto &project = document_.project;
    Try([&] {
        const auto folder = Chance(2) && !document_.Root().Folders().empty() ? document_.Root().Folders()[0]
                                                                             : std::shared_ptr<BinFolder>();
        switch (Below(7)) {
        case 0:
            AddFolder(project, Word(), folder);
            break;
        case 1:
            if (folder)
                RemoveFolder(project, folder);
            break;
        case 2:
            MoveToFolder(project, Chance(2) ? document_.solid : std::shared_ptr<AbstractAsset>(image_),
                         folder);
            break;
        case 3:
            ReplaceAsset(project, document_.solid, image_);
            break;
        case 4:
            DuplicateComposition(project, deep_, Word());
            break;
        case 5:
            NestLayers(project, {AnyLayer()}, Word());
            break;
        default:
            RemoveAsset(project, AnyOf(project->Assets().All()), UsesOfRemoved::Refuse);
        }
    });
}

void EditScript::OperateOnSequence(Edit &)
{
    const auto &project = document_.project;
    const auto track = AnyVideoTrack();
    const auto object = AnyObject(*track);
    const int frame = Frame();
    const TrackChoice ripple = Chance(2) ? TrackChoice::All() : TrackChoice::None();
    if (!object)
        return;
    Try([&] {
        switch (Below(9)) {
        case 0:
            PlaceAsset(project, {document_.inner, track, {}, frame, 0, 5},
                       Chance(2) ? PlaceMode::Overwrite : PlaceMode::Insert, TrackChoice::All());
            break;
        case 1:
            TrimObject(project, object, object->StartFrame(), frame, Partner::GoesAlong, ripple);
            break;
        case 2:
            SplitObject(project, object, frame, Partner::GoesAlong);
            break;
        case 3:
            marlet::project::RemoveObject(project, object, Partner::GoesAlong, ripple);
            break;
        case 4:
            JoinObjects(project, object, Partner::GoesAlong);
            break;
        case 5:
            SlipObject(project, object, frame, Partner::Stays);
            break;
        case 6:
            CloseGaps(project, ripple);
            break;
        case 7:
            SetObjectSpeed(project, object, 2, Partner::GoesAlong, ripple);
            break;
        default:
            SetTransition(project, object, ObjectEnd::Tail, document_.plugins->plugins[0], {},
                          Sharing::WithNeighbour);
        }
    });
}

} // namespace marlet::test
