#include <marlet/checks/Finding.h>

namespace marlet::project
{

const char *FindingKindName(FindingKind kind)
{
    switch (kind) {
    case FindingKind::DanglingID:
        return "dangling ID";
    case FindingKind::RepeatedID:
        return "repeated ID";
    case FindingKind::NullID:
        return "null ID";
    case FindingKind::Twice:
        return "twice";
    case FindingKind::ParentCircle:
        return "parent circle";
    case FindingKind::Nesting:
        return "nesting";
    case FindingKind::MissingFile:
        return "missing file";
    case FindingKind::OfflineUse:
        return "offline";
    case FindingKind::MissingPlugin:
        return "missing plug-in";
    case FindingKind::MissingPoint:
        return "missing point";
    case FindingKind::UnexpectedType:
        return "unexpected type";
    case FindingKind::MixedTypes:
        return "mixed types";
    case FindingKind::NoNumber:
        return "no number";
    case FindingKind::NotAnimatable:
        return "not animatable";
    case FindingKind::SameTime:
        return "same time";
    case FindingKind::Handle:
        return "handle";
    case FindingKind::Expression:
        return "expression";
    case FindingKind::Frames:
        return "frames";
    case FindingKind::BeyondAsset:
        return "beyond asset";
    case FindingKind::OneSidedLink:
        return "one-sided link";
    case FindingKind::Transition:
        return "transition";
    case FindingKind::Folder:
        return "folder";
    case FindingKind::Instances:
        return "instances";
    case FindingKind::Outline:
        return "outline";
    case FindingKind::Text:
        return "text";
    case FindingKind::NoDestination:
        return "no destination";
    }
    return "";
}

} // namespace marlet::project
