#include <marlet/checks/Validate.h>

#include <tests/checks/CheckedProject.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace marlet::test
{

namespace
{

using Kind = FindingKind;
using Severity = Finding::Severity;

struct Damage {
    const char *name;
    std::vector<Kind> found; ///< of what it does to a project that has nothing to be found
    bool repaired;           ///< whether nothing of it is left after a repair
    std::function<void(CheckedProject &)> apply;
};

void PrintTo(const Damage &damage, std::ostream *out)
{
    *out << damage.name;
}

std::vector<Damage> DamagesOfAssets()
{
    return {
        {"an asset names no folder there is",
         {Kind::DanglingID},
         true,
         [](auto &p) { p.solid->SetParentFolderID(kNowhere); }},
        {"an asset names no folder", {Kind::Folder}, true, [](auto &p) { p.solid->ClearParentBinFolder(); }},
        {"a folder does not hold its asset",
         {Kind::DanglingID},
         true,
         [](auto &p) { p.Root().Assets().pop_back(); }},
        {"an asset is in no folder",
         {Kind::Folder},
         false,
         [](auto &p) {
             p.Root().Assets().pop_back();
             p.solid->ClearParentBinFolder();
         }},
        {"an asset is in two folders",
         {Kind::Folder},
         false,
         [](auto &p) {
             p.Root().Folders().Add(BinFolder::Create(u"Second"));
             p.Root().Folders()[0]->Assets().Add(p.solid);
         }},
        {"a folder holds what the project does not have",
         {Kind::Folder},
         true,
         [](auto &p) { p.Root().Assets().Add(std::shared_ptr<AbstractAsset>()); }},
        {"a folder holds an asset twice",
         {Kind::Twice},
         true,
         [](auto &p) { p.Root().Assets().Add(p.solid); }},
        {"a folder names no folder there is",
         {Kind::DanglingID},
         true,
         [](auto &p) { p.Root().SetParentFolderID(kNowhere); }},
        {"a folder is in a folder twice",
         {Kind::Nesting},
         false,
         [](auto &p) {
             p.Root().Folders().Add(BinFolder::Create(u"Second"));
             p.Root().Folders().Add(p.Root().Folders()[0]);
         }},
        {"an asset is in the project twice",
         {Kind::Twice},
         true,
         [](auto &p) { p.project->Assets().All().Add(p.solid); }},
        {"an image is not there",
         {Kind::MissingFile, Kind::OfflineUse},
         false,
         [](auto &p) { p.Show(p.AddAsset(ImageAsset::Create(u"/nowhere/gone.png"))); }},
        {"an asset lists an instance that nobody holds",
         {Kind::Instances},
         true,
         [](auto &p) { p.solid->Instances().Add(AssetLayer::Create(p.solid)); }},
    };
}

std::vector<Damage> DamagesOfLayers()
{
    return {
        {"a parent is missing", {Kind::DanglingID}, true, [](auto &p) { p.point->SetParentLayer(kNowhere); }},
        {"parents run in a circle that others lead into",
         {Kind::ParentCircle, Kind::ParentCircle, Kind::ParentCircle},
         true,
         [](auto &p) {
             p.point->SetParentLayer(p.text);
             p.text->SetParentLayer(p.point);
             p.layer->SetParentLayer(p.text);
         }},
        {"a layer names no composition there is",
         {Kind::DanglingID},
         true,
         [](auto &p) { p.point->SetParentComposition(kNowhere); }},
        {"a layer is in its composition twice",
         {Kind::Twice},
         true,
         [](auto &p) { p.composition->Layers().push_front(p.point); }},
        {"a layer is in two compositions",
         {Kind::Twice},
         false,
         [](auto &p) { p.inner->Layers().Add(p.point); }},
        {"a layer ends before it starts",
         {Kind::Frames},
         false,
         [](auto &p) { p.point->SetEndFrame(p.point->StartFrame() - 1); }},
        {"a layer ends where it starts",
         {Kind::Frames},
         false,
         [](auto &p) { p.point->SetEndFrame(p.point->StartFrame()); }},
        {"an asset is missing",
         {Kind::DanglingID},
         false,
         [](auto &p) { p.Show(SolidAsset::Create(u"Other", {}, 1, 1, PAR::Square)); }},
        {"a layer shows more than there is",
         {Kind::BeyondAsset},
         false,
         [](auto &p) { p.Show(p.inner)->SetAssetInstanceStart(1); }},
        {"a composition shows itself", {Kind::Nesting}, false, [](auto &p) { p.Show(p.composition); }},
        {"two compositions show one another",
         {Kind::Nesting, Kind::Nesting},
         false,
         [](auto &p) {
             p.Show(p.inner);
             p.Show(p.composition, p.inner);
         }},
        {"a composition has no frames",
         {Kind::Frames},
         false,
         [](auto &p) { p.inner->Settings().SetFrameRate(NAN); }},
        {"a mask has too few points",
         {Kind::Outline},
         false,
         [](auto &p) { p.mask->Path().Points().pop_back(); }},
        {"a mask, its outline and a point name other owners",
         {Kind::DanglingID, Kind::DanglingID, Kind::DanglingID},
         true,
         [](auto &p) {
             p.mask->SetParentLayerID(kNowhere);
             p.mask->Path().SetParentID(kNowhere);
             p.mask->Path().Points()[1]->SetParentPathID(kNowhere);
         }},
        {"a tracker has no destination",
         {Kind::NoDestination},
         false,
         [](auto &p) { p.tracker->ClearDestinationLayerID(); }},
        {"a tracker names a layer that is missing and another holder",
         {Kind::DanglingID, Kind::DanglingID},
         true,
         [](auto &p) {
             p.tracker->SetDestinationLayerID(kNowhere);
             p.tracker->SetParentLayerID(kNowhere);
         }},
        {"a tracker lacks a point",
         {Kind::MissingPoint},
         false,
         [](auto &p) { p.tracker->SecondaryTrackingPoint().reset(); }},
        {"an effect names a layer that is missing and another holder",
         {Kind::DanglingID, Kind::DanglingID},
         true,
         [](auto &p) {
             p.effect->Properties().StaticValue("layer") = kNowhere;
             p.effect->SetParent(kNowhere, kNowhere);
         }},
        {"a plug-in has gone",
         {Kind::MissingPlugin, Kind::MissingPlugin},
         false,
         [](auto &p) { p.plugins->plugins.clear(); }},
        {"a text is empty", {Kind::Text}, false, [](auto &p) { p.text->Text() = {}; }},
        {"a character has no format",
         {Kind::Text},
         false,
         [](auto &p) { p.text->Text().first->format.reset(); }},
        {"a format is no number",
         {Kind::NoNumber},
         false,
         [](auto &p) { p.text->Text().first->format->leading = NAN; }},
    };
}

/// All of the null point's rotation, but where another one tells more.
std::vector<Damage> DamagesOfProperties()
{
    const auto keys = [](CheckedProject &p) -> KeyFrameList & {
        return p.point->Animation().KeyFrames("rotationZ");
    };
    return {
        {"a value is of a type that converts",
         {Kind::UnexpectedType},
         true,
         [](auto &p) { p.point->Animation().StaticValue("rotationZ") = 5; }},
        {"a value is of a type that does not convert",
         {Kind::UnexpectedType},
         false,
         [](auto &p) { p.point->Animation().StaticValue("rotationZ") = kNowhere; }},
        {"key frames are of another type",
         {Kind::UnexpectedType},
         true,
         [keys](auto &p) {
             keys(p).Set(0, 5.0);
             keys(p).Set(9, 6.0);
         }},
        {"key frames are of several types",
         {Kind::MixedTypes},
         true,
         [keys](auto &p) {
             keys(p).Set(0, 5.f);
             keys(p).Set(9, 6);
         }},
        {"a value and a handle are no numbers",
         {Kind::NoNumber, Kind::NoNumber},
         true,
         [keys](auto &p) {
             p.point->Animation().StaticValue("rotationZ") = NAN;
             keys(p).Set(0, 1.f);
             keys(p).At(0).SetOutgoingPoint({INFINITY, 0});
         }},
        {"key frames of what is not animated",
         {Kind::NotAnimatable},
         false,
         [](auto &p) { p.effect->Properties().KeyFrames("smooth").Set(0, true); }},
        {"key frames at one time",
         {Kind::SameTime},
         false,
         [keys](auto &p) {
             keys(p).Add(KeyFrame(5, 1.f));
             keys(p).Add(KeyFrame(5, 2.f));
         }},
        {"a handle leaves its piece",
         {Kind::Handle},
         false,
         [keys](auto &p) {
             keys(p).Set(0, 1.f);
             keys(p).Set(10, 2.f);
             keys(p).At(10).SetIncomingPoint({-11, 0});
         }},
        {"nothing evaluates an expression",
         {Kind::Expression},
         false,
         [](auto &p) { p.point->Animation().Expression("rotationZ") = "time * 2"; }},
        {"in an outline, a tracker and an object",
         {Kind::UnexpectedType, Kind::UnexpectedType, Kind::UnexpectedType},
         true,
         [](auto &p) {
             using Vector = kytl::matl::KyVector<2, float>;
             p.mask->Path().Points()[0]->Animation().StaticValue("position") = Vector{1, 2};
             p.tracker->PrimaryTrackingPoint()->Animation().StaticValue("featurePosition") = Vector{1, 2};
             p.first->Properties().StaticValue("opacity") = 50;
         }},
    };
}

std::vector<Damage> DamagesOfTheSequence()
{
    return {
        {"an object ends before it starts", {Kind::Frames}, false, [](auto &p) { p.sound->SetEndFrame(-1); }},
        {"a sequence has no frames",
         {Kind::Frames},
         false,
         [](auto &p) { p.sequence->Settings().SetWidth(0); }},
        {"objects overlap",
         {Kind::Frames, Kind::Transition, Kind::Transition},
         false,
         [](auto &p) { p.first->SetEndFrame(45); }},
        {"an object shows more than there is",
         {Kind::BeyondAsset},
         false,
         [](auto &p) { p.second->SetAssetInstanceStart(100); }},
        {"an object names another track",
         {Kind::DanglingID},
         true,
         [](auto &p) { p.sound->SetParentTrackID(kNowhere); }},
        {"an object is on two tracks",
         {Kind::Twice},
         false,
         [](auto &p) {
             p.sequence->VideoTracks().Add(VideoTrack::Create(p.sequence, u"Second"));
             p.sequence->VideoTracks()[1]->Objects().Insert(p.second, 40);
         }},
        {"a link leads nowhere, and the partner's back to it",
         {Kind::DanglingID, Kind::OneSidedLink},
         true,
         [](auto &p) { p.first->SetLinkedObjectID(kNowhere); }},
        {"an object is linked to one that has a partner",
         {Kind::OneSidedLink},
         true,
         [](auto &p) { p.second->SetLinkedObjectID(p.sound->ID()); }},
        {"an object is linked to itself",
         {Kind::OneSidedLink},
         true,
         [](auto &p) { p.second->SetLinkedObjectID(p.second->ID()); }},
        {"a transition leads nowhere",
         {Kind::DanglingID, Kind::Transition},
         true,
         [](auto &p) { p.transition->SetToObject(kNowhere); }},
        {"a transition is that of one side",
         {Kind::Transition},
         false,
         [](auto &p) { p.second->ClearIncomingTransition(); }},
        {"a transition has no frames",
         {Kind::Transition, Kind::Transition},
         false,
         [](auto &p) { p.transition->SetLength(0); }},
    };
}

class DamageTest : public testing::TestWithParam<Damage>
{
};

TEST_P(DamageTest, IsFoundAndRepairedWhereThatIsSafe)
{
    CheckedProject checked;
    ASSERT_EQ(Lines(Validate(*checked.project)), "");
    GetParam().apply(checked);

    const std::vector<Finding> found = Validate(*checked.project);
    std::vector<Kind> expected = GetParam().found;
    std::ranges::sort(expected);
    EXPECT_EQ(KindsOf(found), expected) << Lines(found);
    if (!GetParam().repaired)
        return;

    const WideString before = checked.project->Serialize();
    EXPECT_EQ(Repair(*checked.project, RepairMode::DryRun).size(), found.size());
    EXPECT_TRUE(checked.project->Serialize() == before);
    EXPECT_EQ(Lines(Repair(*checked.project, RepairMode::Apply)), Lines(found));
    std::vector<Finding> left = Validate(*checked.project);
    std::erase_if(left, [](const Finding &finding) { return finding.severity == Severity::Note; });
    EXPECT_EQ(Lines(left), "");
    checked.solid->Instances().Clear(); // which a load does not bring back
    const WideString after = checked.project->Serialize();
    EXPECT_TRUE(checked.Reload(after)->Serialize() == after);
}

std::string NameOf(const testing::TestParamInfo<Damage> &info)
{
    std::string name = info.param.name;
    std::ranges::replace_if(
        name, [](char c) { return !std::isalnum(static_cast<unsigned char>(c)); }, '_');
    return name;
}

INSTANTIATE_TEST_SUITE_P(Assets, DamageTest, testing::ValuesIn(DamagesOfAssets()), NameOf);
INSTANTIATE_TEST_SUITE_P(Layers, DamageTest, testing::ValuesIn(DamagesOfLayers()), NameOf);
INSTANTIATE_TEST_SUITE_P(Properties, DamageTest, testing::ValuesIn(DamagesOfProperties()), NameOf);
INSTANTIATE_TEST_SUITE_P(Sequence, DamageTest, testing::ValuesIn(DamagesOfTheSequence()), NameOf);

/// The list of instances is the host's, who may keep none.
TEST(ValidateTest, AsksForNoInstancesWhereThereAreNone)
{
    CheckedProject checked;
    checked.solid->Instances().Clear();
    EXPECT_EQ(Lines(Validate(*checked.project)), "");
    checked.Show(checked.solid);
    checked.solid->Instances().Add(checked.layer);
    EXPECT_EQ(KindsOf(Validate(*checked.project)), std::vector{Kind::Instances});
}

} // namespace

} // namespace marlet::test
