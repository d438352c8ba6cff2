#include <tests/support/OddCurves.h>
#include <tests/support/SlowCurves.h>

#include <marlet/foundation/Exceptions.h>

#include <QDomDocument>
#include <gmock/gmock.h>

#include <algorithm>

namespace marlet::test
{
namespace
{

using namespace project;

constexpr char kGolden[] = "<PropertyManager Version=\"0\">\n"
                           " <opacity Type=\"0\" Spatial=\"0\">\n"
                           "  <Default>\n"
                           "   <float>1</float>\n"
                           "  </Default>\n"
                           "  <Static>\n"
                           "   <float>0.5</float>\n"
                           "  </Static>\n"
                           "  <Expression>a &lt; b</Expression>\n"
                           " </opacity>\n"
                           " <position Type=\"0\" Spatial=\"1\">\n"
                           "  <Default>\n"
                           "   <KyPoint2_32f X=\"0\" Y=\"0\"/>\n"
                           "  </Default>\n"
                           "  <Static>\n"
                           "   <KyPoint2_32f X=\"1\" Y=\"2\"/>\n"
                           "  </Static>\n"
                           "  <Animation>\n"
                           "   <Key Time=\"-5\" Type=\"1\">\n"
                           "    <IncomingPt X=\"0\" Y=\"0\"/>\n"
                           "    <OutgoingPt X=\"2\" Y=\"0.25\"/>\n"
                           "    <Value>\n"
                           "     <KyPoint2_32f X=\"3\" Y=\"4\"/>\n"
                           "    </Value>\n"
                           "   </Key>\n"
                           "  </Animation>\n"
                           " </position>\n"
                           "</PropertyManager>\n";

std::shared_ptr<PropertyManager> GoldenManager()
{
    auto manager = PropertyManager::Create();
    manager->CreateProperty("opacity", 1.0f, PropertyManager::Type::Animatable, nullptr);
    manager->CreateSpatialProperty("position", Point2D{}, PropertyManager::Type::Animatable, nullptr);
    manager->StaticValue("opacity") = 0.5f;
    manager->Expression("opacity") = "a < b";
    manager->StaticValue("position") = Point2D{1, 2};
    manager->KeyFrames("position").Add(Key(-5, Point2D{3, 4}, {}, {2, 0.25f}));
    return manager;
}

std::shared_ptr<PropertyManager> Loaded(const std::string &text)
{
    return PropertyManager::CreateFromXml(FromUtf8(text));
}

TEST(PropertyManagerXmlTest, WhatWasLoadedIsWrittenAgainByteForByte)
{
    EXPECT_EQ(ToUtf8(GoldenManager()->Serialize()), kGolden);
    EXPECT_EQ(ToUtf8(Loaded(kGolden)->Serialize()), kGolden);
    for (const OddCurve &curve : OddCurves()) {
        const WideString text = curve.Manager()->Serialize();
        // The first load gives scales the precision of floats.
        const WideString again = PropertyManager::CreateFromXml(text)->Serialize();
        EXPECT_EQ(PropertyManager::CreateFromXml(again)->Serialize(), again) << curve.name;
        const bool hasScales = boost::get<Scale3D>(&curve.keys.FirstByTime().Value()) != nullptr;
        EXPECT_EQ(again == text, !hasScales) << curve.name;
    }
}

TEST(PropertyManagerXmlTest, TheFormsForADocumentOfQtSayTheSame)
{
    const auto manager = GoldenManager();
    QDomDocument document;
    QDomElement root = document.createElement("Root");
    document.appendChild(root);
    manager->Serialize(&document, &root);
    QDomElement element = root.firstChildElement("PropertyManager");
    EXPECT_EQ(element.firstChildElement("position").firstChildElement("Animation").childNodes().size(), 1);
    PropertyManager read;
    read.CreateProperty("old", 1, PropertyManager::Type::Animatable, nullptr);
    read.Deserialize(&element);
    EXPECT_EQ(read.Serialize(), manager->Serialize());

    const std::pair<std::function<void()>, const char *> withNothing[] = {
        {[&] { manager->Serialize(nullptr, &root); }, "document"},
        {[&] { manager->Serialize(&document, nullptr); }, "parent"},
        {[&] { read.Deserialize(nullptr); }, "element"}};
    for (const auto &[call, name] : withNothing)
        EXPECT_THAT(call, testing::ThrowsMessage<std::invalid_argument>(testing::HasSubstr(name)));
}

std::string Property(const std::string &attributes, const std::string &children)
{
    return "<PropertyManager Version='0'><p " + attributes + ">" + children + "</p></PropertyManager>";
}

std::string KeyText(int time, const std::string &type = "1")
{
    return "<Key Time='" + std::to_string(time) + "' Type='" + type +
           "'><IncomingPt X='0' Y='0'/><OutgoingPt X='0' Y='0'/><Value><int32_t>" + std::to_string(time) +
           "</int32_t></Value></Key>";
}

const std::string kValues = "<Default><int32_t>1</int32_t></Default><Static><int32_t>2</int32_t></Static>";

TEST(PropertyManagerXmlTest, WhatIsMissingOrMalformedFailsWithItsWords)
{
    const std::pair<std::string, const char *> cases[] = {
        {"", "Wrong tag name\nPropertyManager"},
        {std::string(kGolden, sizeof kGolden - 3), "Wrong tag name\nPropertyManager"},
        {"<PropertyManager/>", "PropertyManager is missing attribute Version\n"},
        {Property("", kValues), "p is missing attribute Type\n"},
        {Property("Type='0'", "<Default/>"), "Missing element\nStatic"},
        {"<PropertyManager Version='1'/>",
         "The project file was saved by a newer version of the application than this one."},
        // Letters that XML does not allow.
        {"<PropertyManager Version='0'><a\u00D7 Type='0'>" + kValues + "</a\u00D7></PropertyManager>",
         "Wrong tag name\nPropertyManager"},
        {"<PropertyManager Version='0'><\u2192 Type='0'>" + kValues + "</\u2192></PropertyManager>",
         "Wrong tag name\nPropertyManager"},
    };
    for (const auto &refused : cases)
        EXPECT_THAT([&] { Loaded(refused.first); }, testing::ThrowsMessage<std::exception>(refused.second))
            << refused.first;
    EXPECT_TRUE(Loaded("<PropertyManager Version='0'><Gr\u00F6\u00DFe Type='0'>" + kValues +
                       "</Gr\u00F6\u00DFe></PropertyManager>")
                    ->HasProperty("Gr\u00F6\u00DFe"));
}

TEST(PropertyManagerXmlTest, WhatMayBeAbsentOrOddIsTakenAsItComes)
{
    EXPECT_EQ(Loaded("<PROPERTYMANAGER Version='x'/>")->PropertyCount(), 0u);
    EXPECT_FALSE(Loaded(Property("Type='0'", kValues))->IsSpatial("p"));
    EXPECT_FALSE(Loaded(Property("Type='0' Spatial='1'", kValues))->IsSpatial("p")) << "no point";
    EXPECT_FALSE(Loaded(Property("Type='0'", kValues + "<Expression></Expression>"))->HasExpression("p"));
    EXPECT_EQ(Loaded(Property("Type='0'", kValues + "<Expression>a<!-- -->b<![CDATA[<]]></Expression>"))
                  ->Expression("p"),
              "ab<");
    const auto empty = Loaded(Property("Type='0'", "<Default/><Static><string/></Static>"));
    EXPECT_EQ(Exactly(empty->DefaultValue("p")) + Exactly(empty->StaticValue("p")), Exactly(0) + Exactly(0));
    const auto keys = Loaded(Property("Type='1'", kValues + "<Animation>x<Other/>" + KeyText(5) + "<!-- -->" +
                                                      KeyText(3) + "</Animation>"));
    EXPECT_EQ(keys->KeyFrames("p").Locations(), (std::vector{3, 5}));
    const auto twice = Loaded("<PropertyManager Version='0'><p Type='0'>" + kValues + "</p><p Type='1'>" +
                              kValues + "<Animation>" + KeyText(1) + "</Animation></p></PropertyManager>");
    EXPECT_EQ(twice->PropertyCount(), 1u);
    EXPECT_TRUE(twice->CanAnimate("p") && twice->IsStatic("p")) << "the first one counts";
}

TEST(PropertyManagerXmlTest, ManyKeyFramesBackwardsTakeNoLongerThanForwards)
{
    // Shifting what is there at each of them would take minutes.
    constexpr int kCount = 200000;
    std::string text;
    for (int time = kCount; time > 0; --time)
        text += KeyText(time);
    const auto manager = Loaded(Property("Type='0'", kValues + "<Animation>" + text + "</Animation>"));
    const std::vector<int> times = manager->KeyFrames("p").Locations();
    EXPECT_EQ(times.size(), std::size_t{kCount});
    EXPECT_TRUE(std::is_sorted(times.begin(), times.end()));
    EXPECT_EQ(Exactly(manager->ValueAtTime("p", 777)), Exactly(777));
}

} // namespace
} // namespace marlet::test
