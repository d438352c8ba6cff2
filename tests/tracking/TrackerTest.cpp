#include <tests/support/LayerStage.h>
#include <tests/support/LayerTexts.h>

#include <marlet/layers/AssetLayer.h>
#include <marlet/project/SolidAsset.h>
#include <marlet/tracking/Tracker.h>
#include <marlet/tracking/TrackingPoint.h>

#include <gtest/gtest.h>

namespace marlet::test
{
namespace
{

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
