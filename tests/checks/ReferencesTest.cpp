// What names something that is not there, or that is kept without being known.

#include <marlet/checks/Validate.h>
#include <marlet/foundation/LoadReport.h>

#include <tests/checks/CheckedProject.h>

#include <gtest/gtest.h>

namespace marlet::test
{

namespace
{

struct References : testing::Test {
    CheckedProject checked;

    std::string Text() const
    {
        checked.solid->Instances().Clear(); // which a load does not bring back
        return ToUtf8(checked.project->Serialize());
    }

    static std::string After(const LoadReport &report)
    {
        std::string lines;
        for (const LoadEntry &entry : report.Entries())
            lines +=
                std::string(SeverityName(entry.severity)) + ": " + entry.what + " at " + entry.path + "\n";
        return lines;
    }
};

} // namespace

TEST_F(References, OfEachKindAreToldOfWhereTheyLeadNowhere)
{
    const struct {
        const char *owner; ///< the first of them
        const char *field; ///< the first behind that, up to the ID
        const char *what;
    } cases[] = {
        {"<SolidAsset", "<ParentFolderID>", "the folder of the asset"},
        {"<CompositionAsset", "<ParentFolderID>", "the folder of the asset"},
        {"<BinFolder", "<ParentFolderID>", "the folder around the folder"},
        {"<PointLayer", "<CompID>", "the composition of the layer"},
        {"<PointLayer", "<ParentLayerID>", "the parent of the layer"},
        {"<AssetLayer", "<AssetID>", "the asset of the layer"},
        {"<Mask ", "<LayerID>", "the layer of the mask"},
        {"<MotionPath", "<ParentID>", "the mask of the outline"},
        {"<Point ", "<ParentPathID>", "the outline of the point"},
        {"<Tracker ", "<ParentLayerID>", "the layer of the tracker"},
        {"<Tracker ", "<DestinationLayerID>", "the destination of the tracker"},
        {"<Primary", "<ParentTrackerID>", "the tracker of the point"},
        {"<Secondary", "<ParentTrackerID>", "the tracker of the point"},
        {"<Instance Version", "<ParentID>", "what has the effect"},
        {"<Instance Version", "<ParentTimelineID>", "the timeline of the effect"},
        {"<layer Type", "<Static>\n           <KyID>", "the layer that the property names"},
        {"<VisualObject", "<SequenceID>", "the sequence of the object"},
        {"<VisualObject", "<AssetID>", "the asset of the object"},
        {"<VisualObject", "<ParentTrackID>", "the track of the object"},
        {"<VisualObject", "<LinkedObjectID>", "the object that is linked"},
        {"<AudioObject", "<AssetID>", "the asset of the object"},
        {"<AudioObject", "<ParentTrackID>", "the track of the object"},
        {"<Transition", "<FromObjectID>", "the object in front of the transition"},
        {"<Transition", "<ToObjectID>", "the object behind the transition"},
        {"<InTrans", "transID=\"", "the transition that is referred to"},
    };
    const std::string whole = Text();
    for (const auto &one : cases) {
        SCOPED_TRACE(std::string(one.owner) + " " + one.field);
        std::string text = whole;
        const std::size_t owner = text.find(one.owner);
        ASSERT_NE(owner, text.npos);
        const std::size_t field = text.find(one.field, owner);
        ASSERT_NE(field, text.npos);
        const std::size_t id = field + std::string(one.field).size();
        text.replace(id, 36, kNowhere.ToNarrowString());
        LoadReport report;
        checked.Reload(FromUtf8(text), {.report = &report});
        const std::string what = std::string(one.what) + " is not there";
        const auto found = std::ranges::find_if(report.Entries(), [&](const LoadEntry &entry) {
            return entry.what.starts_with(what) && !entry.ids.empty() && entry.ids[0] == kNowhere;
        });
        ASSERT_NE(found, report.Entries().end()) << After(report);
        EXPECT_LE(found->offset, id);
        EXPECT_GE(found->offset, text.rfind('<', text.rfind('<', id) - 1));
        checked.Reload(FromUtf8(whole), {.report = &report});
        EXPECT_EQ(report.Count(LoadEntry::Severity::Warning), 0u) << After(report);
    }
}

TEST_F(References, OfPanelsToTheirViewsAreToldOf)
{
    std::string text = Text();
    const std::string layout = "<Layout1/>";
    const std::size_t at = text.find(layout);
    ASSERT_NE(at, text.npos);
    text.replace(at, layout.size(), "<Layout1 Pos0=\"" + kNowhere.ToNarrowString() + "\"/>");
    LoadReport report;
    checked.Reload(FromUtf8(text), {.report = &report});
    EXPECT_NE(After(report).find("warning: the view at Pos0 is not there at "), std::string::npos);
}

TEST_F(References, ToWhatIsKeptDoNotDangle)
{
    const struct {
        const char *tag; ///< becomes one that nobody knows
        kytl::KyID id;   ///< of the first of them that does
    } cases[] = {
        {"SolidAsset", checked.solid->ID()},   {"PointLayer", checked.point->ID()},
        {"TextLayer", checked.text->ID()},     {"CompositionAsset", checked.inner->ID()},
        {"VisualObject", checked.first->ID()}, {"AudioObject", checked.sound->ID()},
    };
    const std::string whole = Text();
    for (const auto &[tag, id] : cases) {
        SCOPED_TRACE(tag);
        std::string text = whole;
        const std::string start = "<" + std::string(tag);
        const std::string end = "</" + std::string(tag) + ">";
        const std::size_t at = text.rfind(start, text.find("<ID>" + id.ToNarrowString()));
        const std::size_t close = text.find(end, at);
        text.replace(close, end.size(), "</Odd>");
        text.replace(at, start.size(), "<Odd");
        LoadReport report;
        const auto project = checked.Reload(FromUtf8(text), {.report = &report, .keepUnknown = true});
        EXPECT_TRUE(project->KeptIDs().contains(id));
        for (const LoadEntry &entry : report.Entries()) {
            EXPECT_EQ(entry.what.find("not there"), std::string::npos) << entry.what << " at " << entry.path;
        }
        for (const Finding &finding : Repair(*project, RepairMode::Apply))
            EXPECT_NE(finding.kind, FindingKind::DanglingID) << finding.place << ": " << finding.what;
        EXPECT_EQ(ToUtf8(project->Serialize()), text);
        // Without it they dangle.
        checked.Reload(FromUtf8(text), {.report = &report});
        EXPECT_NE(After(report).find("not there"), std::string::npos);
    }
}

} // namespace marlet::test
