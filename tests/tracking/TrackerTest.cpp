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

TEST(Tracker, IsWrittenItemByItem)
{
    const auto tracker = NewTracker();
    tracker->SetParentLayerID({.Data1 = 7});
    tracker->SetDestinationLayerID({.Data1 = 8});
    tracker->ClearDestinationLayerID();
    const std::string id = tracker->ID().ToNarrowString();
    const std::string text = TextOf(*LayerWith(tracker));
    std::size_t at = 0;
    for (const std::string &item :
         {std::string("Tracker Version=\"0\""), "ID>" + id, std::string("Name>Nose<"),
          "ParentLayerID>" + KyID{.Data1 = 7}.ToNarrowString(), std::string("Type>0<"),
          std::string("Method>0<"), std::string("Purpose>1<"), std::string("TransformOptions>3<"),
          "DestinationLayerID>" + KyID().ToNarrowString(), std::string("Primary Version=\"0\""),
          "ID>" + tracker->PrimaryTrackingPoint()->ID().ToNarrowString(), std::string("Type>0<"),
          std::string("Visible>1<"), "ParentTrackerID>" + id, std::string("PropertyManager "),
          std::string("Secondary "), std::string("Type>1<"), std::string("Visible>0<")}) {
        at = text.find("<" + item, at);
        ASSERT_NE(at, std::string::npos) << item << text;
    }
}

TEST(Tracker, ReadsAnyValueOfTheHostAndNamesWhatIsMissing)
{
    const auto layer = LayerWith(NewTracker());
    const std::string text = TextOf(*layer);
    const std::string odd =
        Replaced(Replaced(text, "<Purpose>1", "<Purpose>-12"), "Options>3", "Options>4294967295");
    EXPECT_EQ(TextOf(*ReadLayer(odd)), odd);
    EXPECT_EQ(ReadTracker(odd)->TransformationOptions(), 4294967295u);

    const std::string lone = Without(text, "Secondary");
    EXPECT_EQ(ReadTracker(lone)->SecondaryTrackingPoint(), nullptr);
    EXPECT_EQ(Tracker::Copy(ReadTracker(lone))->SecondaryTrackingPoint(), nullptr);

    const std::string inTracker = text.substr(text.find("<Tracker "));
    const auto failure = [&](const std::string &changed) {
        return FailureOf(Replaced(text, inTracker, changed));
    };
    for (const char *name : {"ID", "Name", "ParentLayerID", "Type", "Method", "Purpose", "TransformOptions",
                             "DestinationLayerID", "Visible", "ParentTrackerID"})
        EXPECT_EQ(failure(Without(inTracker, name)), std::string("Missing element\n") + name);
    for (const char *name :
         {"featurePosition", "featureDimensions", "featureOffset", "searchPosition", "searchDimensions"})
        EXPECT_EQ(failure(Without(inTracker, name)), std::string("9 ") + name);
    EXPECT_EQ(failure(Without(inTracker, "PropertyManager")), "9 featurePosition");
    for (const char *name : {"Tracker", "Primary", "Secondary"})
        EXPECT_EQ(failure(Replaced(inTracker, std::string(name) + " Version=\"0",
                                   std::string(name) + " Version=\"1")),
                  "version");
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
