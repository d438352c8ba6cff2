#include "Loading.h"

#include <marlet/layers/AbstractLayer.h>
#include <marlet/layers/PointLayer.h>
#include <marlet/project/ProjectTextureImageCache.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

using namespace marlet::project;
using kytl::KyID;

namespace
{

using LayerPointer = std::shared_ptr<AbstractLayer>;
using LayerList = CompositionAsset::LayerList;

/// A layer with the ID of another one, as a file may have it.
LayerPointer TwinOf(const AbstractLayer &layer)
{
    return PointLayer::CreateFromXml(layer.Serialize(ProjectTextureImageCache()));
}

LayerPointer SlowSearch(const LayerList &layers, const KyID &id)
{
    for (const LayerPointer &layer : layers)
        if (layer && layer->ID() == id)
            return layer;
    return nullptr;
}

struct LayerIndexTest : testing::Test {
    const std::shared_ptr<CompositionAsset> composition =
        CompositionAsset::Create(u"Stack", AudioVideoSettings::Preset::Hd720At25, 10);
    /// All of them, also those that are in the list no more.
    std::vector<LayerPointer> known;

    LayerIndexTest()
    {
        for (int i = 0; i < 12; ++i)
            known.push_back(i % 4 == 3 ? TwinOf(*known.back()) : PointLayer::Create(u""));
    }

    void ExpectToFindWhatTheListHolds() const
    {
        for (const LayerPointer &layer : known)
            EXPECT_EQ(composition->FindLayerByID(layer->ID()),
                      SlowSearch(std::as_const(*composition).Layers(), layer->ID()));
    }
};

} // namespace

TEST_F(LayerIndexTest, FollowsEveryChangeOfTheList)
{
    std::mt19937 random(3);
    const auto below = [&random](std::size_t count) { return random() % count; };
    for (int round = 0; round < 400; ++round) {
        LayerList &layers = composition->Layers();
        const LayerPointer layer = below(5) == 0 ? nullptr : known[below(known.size())];
        const auto at = std::next(layers.begin(), static_cast<int>(below(layers.size() + 1)));
        if (at == layers.end() || below(3) == 0)
            layers.insert(at, layer);
        else if (below(3) == 0)
            layers.erase(at);
        else if (below(2) == 0)
            *at = layer;
        else
            std::swap(*at, layers.back());
        SCOPED_TRACE(round);
        ExpectToFindWhatTheListHolds();
    }
}

TEST_F(LayerIndexTest, NoticesOtherLengthsAndEndsOfAListThatWasKept)
{
    LayerList &kept = composition->Layers();
    kept.assign(known.begin(), known.end());
    ExpectToFindWhatTheListHolds();
    const std::function<void()> kChanges[] = {
        [&] { kept.pop_back(); },
        [&] { kept.erase(std::next(kept.begin(), 4)); },
        [&] { kept.front() = known.back(); },
        [&] { std::swap(kept.front(), kept.back()); },
        // A layer that was missed is looked for in the list itself.
        [&] { *std::next(kept.begin(), 3) = known.emplace_back(PointLayer::Create(u"")); },
        [&] { kept.insert(std::next(kept.begin()), known[4]); },
        [&] { kept.Clear(); },
    };
    for (const auto &change : kChanges) {
        change();
        EXPECT_EQ(composition->FindLayerByID(known.back()->ID()), SlowSearch(kept, known.back()->ID()));
        ExpectToFindWhatTheListHolds();
    }
}

TEST_F(LayerIndexTest, KeepsNoLayerAndTakesNoneForOneThatWasThereBefore)
{
    composition->Layers().assign(known.begin(), known.begin() + 2);
    const KyID id = known[0]->ID();
    EXPECT_EQ(composition->FindLayerByID(id), known[0]);
    LayerList &kept = composition->Layers();
    ExpectToFindWhatTheListHolds();
    const std::weak_ptr<AbstractLayer> gone = known[0];
    known[0] = PointLayer::Create(u"");
    kept.front() = known[0];
    EXPECT_TRUE(gone.expired());
    EXPECT_EQ(composition->FindLayerByID(id), nullptr);
    EXPECT_EQ(composition->FindLayerByID(known[0]->ID()), known[0]);
    EXPECT_EQ(CompositionAsset::Copy(composition)->FindLayerByID(known[0]->ID()), nullptr);
}

TEST_F(LayerIndexTest, FindsTheNullIDInTheListAndNoParentByIt)
{
    WideString text = known[0]->Serialize(ProjectTextureImageCache());
    const WideString id = known[0]->ID().ToWideString();
    text.replace(text.find(id), id.size(), KyID().ToWideString());
    const auto nameless = PointLayer::CreateFromXml(text);
    const auto project = Project::Create(nullptr);
    project->Assets().All().Add(composition);
    composition->Layers().Add(known[1]);
    composition->Layers().Add(nameless);
    known[1]->SetParentComposition(composition);
    EXPECT_EQ(composition->FindLayerByID(KyID()), nameless);
    EXPECT_EQ(known[1]->ParentLayer(project->Assets()), nullptr);
    EXPECT_FALSE(known[1]->IsLayerReferenced(composition, KyID()));
}
