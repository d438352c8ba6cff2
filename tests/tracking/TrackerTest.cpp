#include <tests/support/LayerStage.h>
#include <tests/support/LayerTexts.h>
#include <tests/support/NewProperties.h>
#include <tests/support/Setters.h>

#include <marlet/layers/AssetLayer.h>
#include <marlet/project/SolidAsset.h>
#include <marlet/tracking/Tracker.h>
#include <marlet/tracking/TrackingPoint.h>

#include <gtest/gtest.h>

namespace marlet::test
{
namespace
{

using Point2 = kytl::matl::KyPoint<2, float>;

std::shared_ptr<AssetLayer> LayerWith(const std::shared_ptr<Tracker> &tracker)
{
    const auto layer = AssetLayer::Create(SolidAsset::Create(u"", {}, 10, 10, PAR{}));
    layer->Trackers().Add(tracker);
    return layer;
}

std::shared_ptr<Tracker> NewTracker()
{
    return Tracker::Create(u"Nose", {1, 2}, {3, 4}, 20, 60);
}

std::shared_ptr<Tracker> ReadTracker(const std::string &layerText)
{
    return std::dynamic_pointer_cast<AssetLayer>(ReadLayer(layerText))->Trackers().front();
}

} // namespace

TEST(Tracker, ReadsAnyValueOfTheHostAndNamesThePropertyThatIsMissing)
{
    const std::string text = TextOf(*LayerWith(NewTracker()));
    const std::string odd =
        Replaced(Replaced(text, "<Purpose>1", "<Purpose>-12"), "Options>3", "Options>4294967295");
    EXPECT_EQ(TextOf(*ReadLayer(odd)), odd);
    EXPECT_EQ(ReadTracker(odd)->TransformationOptions(), 4294967295u);

    const std::string lone = Without(text, "Secondary");
    EXPECT_EQ(Tracker::Copy(ReadTracker(lone))->SecondaryTrackingPoint(), nullptr);

    const std::string inTracker = text.substr(text.find("<Tracker "));
    for (const char *name :
         {"featurePosition", "featureDimensions", "featureOffset", "searchPosition", "searchDimensions"})
        EXPECT_EQ(FailureOf(Replaced(text, inTracker, Without(inTracker, name))), std::string("9 ") + name);
    EXPECT_EQ(FailureOf(Replaced(text, inTracker, Without(inTracker, "PropertyManager"))),
              "9 featurePosition");
}

TEST(Tracker, StartsWithTwoPointsOfWhichOneIsSeen)
{
    const auto tracker = NewTracker();
    EXPECT_EQ(tracker->Name(), u"Nose");
    EXPECT_EQ(static_cast<int>(tracker->Type()), 0);
    EXPECT_EQ(static_cast<int>(tracker->Method()), 0);
    EXPECT_EQ(static_cast<int>(tracker->Purpose()), 1);
    EXPECT_EQ(tracker->TransformationOptions(), 3u);
    EXPECT_TRUE(tracker->ParentLayerID().IsNull() && tracker->DestinationLayerID().IsNull());
    const std::pair<std::shared_ptr<TrackingPoint>, Point2> kPoints[] = {
        {tracker->PrimaryTrackingPoint(), {1, 2}}, {tracker->SecondaryTrackingPoint(), {3, 4}}};
    for (const auto &[point, position] : kPoints) {
        const bool isPrimary = position.X == 1;
        EXPECT_EQ(static_cast<int>(point->Type()), isPrimary ? 0 : 1);
        EXPECT_EQ(point->IsVisible(), isPrimary);
        EXPECT_EQ(point->ParentTrackerID(), tracker->ID());
        const std::vector<NewProperty> expected = {{"featurePosition", position},
                                                   {"featureDimensions", Point2{20, 20}, kFixed},
                                                   {"featureOffset", Point2{0, 0}},
                                                   {"searchPosition", Point2{0, 0}, kFixed},
                                                   {"searchDimensions", Point2{60, 60}, kFixed}};
        EXPECT_EQ(PropertiesOf(point->Animation()), expected);
    }
}

TEST(Tracker, KeepsWhatIsSet)
{
    const auto tracker = NewTracker();
    const KyID id = KyID::Generate();
    ExpectStored("name", *tracker, &Tracker::Name, &Tracker::SetName, WideString(u"Eye"));
    ExpectStored("type", *tracker, &Tracker::Type, &Tracker::SetType, Tracker::TrackerType::TwoPoints);
    ExpectStored("method", *tracker, &Tracker::Method, &Tracker::SetMethod,
                 Tracker::TrackerMethod::TemplateMatching);
    ExpectStored("purpose", *tracker, &Tracker::Purpose, &Tracker::SetPurpose, Tracker::TrackerPurpose{4});
    ExpectStored("options", *tracker, &Tracker::TransformationOptions, &Tracker::SetTransformationOptions,
                 5u);
    ExpectStored("layer", *tracker, &Tracker::ParentLayerID, &Tracker::SetParentLayerID, id);
    ExpectStored("destination", *tracker, &Tracker::DestinationLayerID, &Tracker::SetDestinationLayerID, id);
    ExpectStored("visible", *tracker->PrimaryTrackingPoint(), &TrackingPoint::IsVisible,
                 &TrackingPoint::SetVisible, false);
    tracker->ClearParentLayerID();
    tracker->ClearDestinationLayerID();
    EXPECT_TRUE(tracker->ParentLayerID().IsNull() && tracker->DestinationLayerID().IsNull());
}

TEST(Tracker, CopiesWithNewIDsAndItsOwnPoints)
{
    const auto tracker = NewTracker();
    const auto copy = Tracker::Copy(tracker);
    const auto &point = copy->SecondaryTrackingPoint();
    EXPECT_NE(copy->ID(), tracker->ID());
    EXPECT_NE(point->ID(), tracker->SecondaryTrackingPoint()->ID());
    EXPECT_EQ(point->ParentTrackerID(), copy->ID());
    EXPECT_EQ(copy->PrimaryTrackingPoint()->ParentTrackerID(), copy->ID());
    EXPECT_FALSE(point->IsVisible());
    point->Animation().StaticValue("featurePosition") = 1.f;
    EXPECT_TRUE(tracker->SecondaryTrackingPoint()->Animation().IsDefault("featurePosition"));
}

} // namespace marlet::test
