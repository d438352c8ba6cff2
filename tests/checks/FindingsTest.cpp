#include <marlet/checks/FindingPlaces.h>
#include <marlet/checks/Validate.h>

#include <tests/checks/CheckedProject.h>

#include <gmock/gmock.h>

#include <map>

namespace marlet::test
{

namespace
{

using Kind = FindingKind;
using Severity = Finding::Severity;

TEST(Findings, TellsOfIDsThatATextRepeatsOrLacks)
{
    const CheckedProject checked;
    const std::string text = ToUtf8(checked.project->Serialize());
    const auto with = [&](const kytl::KyID &id) {
        std::string changed = text;
        const std::string own = checked.point->ID().ToNarrowString();
        for (std::size_t at = 0; (at = changed.find(own, at)) != changed.npos;)
            changed.replace(at, own.size(), id.ToNarrowString());
        return checked.Reload(FromUtf8(changed));
    };
    const auto repeated = with(checked.layer->ID());
    EXPECT_EQ(KindsOf(Validate(*repeated)), std::vector{Kind::RepeatedID});
    EXPECT_EQ(Repair(*repeated, RepairMode::Apply).size(), 1u);
    EXPECT_EQ(Lines(Validate(*repeated)), "");
    // The first one keeps its ID, and what is on the other goes along with it.
    const auto composition =
        std::static_pointer_cast<CompositionAsset>(repeated->Assets().GetByID(checked.composition->ID()));
    EXPECT_EQ(composition->FindLayerByID(checked.layer->ID())->Name(), u"Point");
    const auto layer = std::dynamic_pointer_cast<AssetLayer>(composition->Layers().back());
    EXPECT_EQ(layer->Name(), u"Picture");
    EXPECT_EQ(layer->Effects().size() + layer->Masks().size() + layer->Trackers().size(), 3u);
    // The tracker's destination is gone as well.
    EXPECT_EQ(KindsOf(Validate(*with({}))), (std::vector{Kind::NullID, Kind::NoDestination}));
}

TEST(Findings, FindsThePlacesInTheText)
{
    CheckedProject checked;
    checked.point->SetParentLayer(kNowhere);
    checked.effect->Properties().StaticValue("layer") = kNowhere;
    checked.mask->Path().Points()[1]->Animation().StaticValue("position") = kNowhere;
    checked.tracker->SecondaryTrackingPoint()->Animation().StaticValue("searchPosition") = kNowhere;
    checked.second->Properties().StaticValue("opacity") = 50;
    std::string text = ToUtf8(checked.project->Serialize());
    const std::string id = checked.text->ID().ToNarrowString();
    text.replace(text.find("<ID>" + id) + 4, id.size(), checked.point->ID().ToNarrowString());

    const auto after = [&text](std::initializer_list<const char *> marks) {
        std::size_t at = 0;
        for (const char *mark : marks)
            at = text.find(mark, at + 1);
        return at;
    };
    const std::map<std::string, std::size_t> expected{
        {"the parent layer", after({"<PointLayer"})},
        {"another one before", after({"<TextLayer"})},
        {"the layer", after({"<Instance ", "<layer "})},
        {"mask", after({"<Mask ", "<Point ", "<Point ", "<position "})},
        {"tracker", after({"<Tracker ", "<Secondary", "<searchPosition "})},
        {"object", after({"<VisualObject ", "<VisualObject ", "<opacity "})},
    };
    const std::vector<Finding> found = Validate(*checked.Reload(FromUtf8(text)));
    const auto places = PlacesInText(found, FromUtf8(text));
    ASSERT_EQ(places.size(), expected.size()) << Lines(found);
    for (std::size_t i = 0; i < found.size(); ++i) {
        SCOPED_TRACE(found[i].place + ": " + found[i].what);
        const auto [mark, offset] = *std::ranges::find_if(expected, [&](const auto &entry) {
            return found[i].what.starts_with(entry.first) ||
                   found[i].place.find(", " + entry.first + " ") != std::string::npos ||
                   found[i].place.starts_with(entry.first);
        });
        ASSERT_TRUE(places[i]);
        EXPECT_EQ(places[i]->offset, offset);
        EXPECT_EQ(places[i]->line, 1 + std::count(text.begin(), text.begin() + std::ptrdiff_t(offset), '\n'));
        EXPECT_EQ(places[i]->column, int(offset - text.rfind('\n', offset)));
    }
    EXPECT_EQ(PlacesInText(found, u"<Project/>"), std::vector<std::optional<TextPlace>>(found.size()));
}

TEST(Findings, SaysWhereWhatAndWhatToDo)
{
    CheckedProject checked;
    checked.effect->Properties().StaticValue("layer") = kNowhere;
    const std::vector<Finding> found = Validate(*checked.project);
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].severity, Severity::Warning);
    EXPECT_EQ(found[0].place, "layer \"Picture\" of composition \"Main\", effect \"Blur\", property layer");
    EXPECT_EQ(found[0].what, "the layer " + kNowhere.ToNarrowString() + " does not exist");
    EXPECT_EQ(found[0].remedy, "clears the property");
    EXPECT_EQ(found[0].named, kNowhere);
    EXPECT_THAT(found[0].ids,
                testing::ElementsAre(checked.effect->ID(), checked.layer->ID(), checked.composition->ID()));
}

TEST(Findings, RepairsWhatIsAccepted)
{
    CheckedProject checked;
    checked.point->SetParentLayer(kNowhere);
    checked.text->SetParentLayer(kNowhere);
    const auto isOfText = [&](const Finding &finding) { return finding.ids[0] == checked.text->ID(); };
    EXPECT_EQ(Repair(*checked.project, RepairMode::Apply, isOfText).size(), 1u);
    EXPECT_TRUE(checked.point->HasParentLayer());
    EXPECT_FALSE(checked.text->HasParentLayer());
}

} // namespace

} // namespace marlet::test
