#include <tests/operations/UndoableProject.h>
#include <tests/support/PropertyValuePrinter.h>

#include <marlet/exchange/ExchangeException.h>
#include <marlet/exchange/ExchangeFormat.h>
#include <marlet/foundation/LoadReport.h>
#include <marlet/history/Edit.h>

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

namespace marlet::test
{

namespace
{

using testing::HasSubstr;

const ExchangeFormat &Format(std::string_view name)
{
    return *ExchangeFormat::ByName(name);
}

const PropertyValue kValues[] = {-2147483647 - 1,
                                 4294967295u,
                                 static_cast<unsigned char>(255),
                                 0.1f,
                                 std::nextafter(1.0, 2.0),
                                 true,
                                 Scale3D{1.0 / 3, -0.0, 1e300},
                                 Orientation3D{1.f / 3, -0.f, 1e-40f},
                                 kytl::KyColorRGBA_32f{0.1f, 2, -3, 0.5f},
                                 kytl::matl::KyPoint<2, float>{16777216, 1e38f},
                                 kytl::matl::KyPoint<3, float>{1, 2.5f, 1.f / 7},
                                 kytl::matl::KyVector<2, float>{std::numeric_limits<float>::infinity(), 0},
                                 kytl::matl::KyVector<3, float>{-1, 0, 1},
                                 KyID::Generate()};

/// A layer with a property of some type, which has key frames.
struct AnimatedProject : UndoableProject {
    explicit AnimatedProject(const PropertyValue &value = 0.f)
    {
        options.composition = u"Main";
        options.layer = u"Point";
        options.property = "subject";
        options.load.report = &report;
        point->Animation().CreateProperty("subject", value, PropertyManager::Type::Animatable, nullptr);
        KeyFrame curved(-40, value);
        curved.SetType(KeyFrameType::Bezier);
        curved.SetOutgoingPoint({12.3456789f, -0.1f});
        KeyFrame held(1001, value);
        held.SetType(KeyFrameType::Hold);
        held.SetIncomingPoint({-1e-7f, 3});
        for (const KeyFrame &key : {curved, held, KeyFrame(1001, value)})
            Keys().Add(key);
    }

    KeyFrameList &Keys() { return point->Animation().KeyFrames("subject"); }

    std::string Take(std::string_view format, const std::string &table)
    {
        return Do([&] { Format(format).ReadInto(project, table, options); });
    }

    LoadReport report;
    ExchangeOptions options;
};

TEST(KeyFramesTest, ComeBackAsTheyWereWhateverTheyHold)
{
    for (const std::string_view format : {"csv", "keyframes"}) {
        for (const PropertyValue &value : kValues) {
            AnimatedProject from(value);
            const std::string text = Format(format).Write(from.project, from.options);
            SCOPED_TRACE(text);
            EXPECT_TRUE(Format(format).Recognises(text));
            const WideString before = from.project->Serialize();
            EXPECT_EQ(from.Take(format, text), "");
            EXPECT_TRUE(from.project->Serialize() == before);
            from.Keys().Clear();
            from.history.SetChecksAnnouncements(true); // the test itself has cleared them
            Format(format).ReadInto(from.project, text, from.options);
            EXPECT_TRUE(from.project->Serialize() == before);
            EXPECT_EQ(from.report.Count(), 0u);
        }
    }
}

/// Column by column as a person would read it.
TEST(KeyFramesTest, StandOneALine)
{
    AnimatedProject from(kytl::matl::KyPoint<2, float>{8, -2.5f});
    const std::string first = from.Keys().Identifiers().front().ToNarrowString();
    EXPECT_THAT(
        Format("csv").Write(from.project, from.options),
        testing::StartsWith("id,type,time,frame,x,y,interpolation,in time,in value,out time,out value\n" +
                            first + ",KyPoint2_32f,-40,-1,8,-2.5,bezier,0,0,12.345679,-0.1\n"));
    EXPECT_THAT(
        Format("keyframes").Write(from.project, from.options),
        HasSubstr("\n        {\"id\": \"" + first +
                  "\", \"type\": \"KyPoint2_32f\", \"time\": -40, \"frame\": -1, \"value\": [8, -2.5], "
                  "\"interpolation\": \"bezier\", \"in\": [0, 0], \"out\": [12.345679, -0.1]},\n"));
}

TEST(KeyFramesTest, TakeWhatSpreadsheetsWrite)
{
    const struct {
        const char *format;
        const char *text;
    } kTexts[] = {
        {"csv",
         "\xEF\xBB\xBF\"Time\";\"Value\";Interpolation\r\n0;1.5;\r\n\r\n\"40\"; \"-2\" ;HOLD\r\n;;\r\n"},
        {"csv", "remark\tvalue\tframe\n\"a \"\"b\"\"\nc\"\t1.5\t0\n# a note\n\t-2.0\t1\t\n"},
        {"keyframes", "{\"keyFrames\": [{\"time\": 0, \"value\": 1.5},\n {\"frame\": 1, \"value\": \"-2\", "
                      "\"interpolation\": \"hold\"}]}"},
    };
    for (const auto &[format, text] : kTexts) {
        AnimatedProject to;
        EXPECT_EQ(to.Take(format, text), "") << text;
        ASSERT_EQ(to.Keys().Locations(), (std::vector<int>{0, 40})) << text;
        EXPECT_EQ(to.Keys().At(0).Value(), PropertyValue(1.5f));
        EXPECT_EQ(to.Keys().At(0).Type(), KeyFrameType::Linear);
        EXPECT_EQ(to.Keys().At(40).Value(), PropertyValue(-2.f));
    }
}

/// Of 41.7 and 83.3 milliseconds the library takes the whole ones.
TEST(KeyFramesTest, StandOnTheFramesOfTheirRate)
{
    AnimatedProject to;
    EXPECT_EQ(to.Take("keyframes", "{\"version\": 1, \"frameRate\": 24, \"keyFrames\": ["
                                   "{\"frame\": 1, \"value\": 0}, {\"frame\": 1.5, \"value\": 0}, "
                                   "{\"frame\": 2, \"value\": 0}]}"),
              "");
    EXPECT_EQ(to.Keys().Locations(), (std::vector<int>{41, 63, 83}));
    to.options.frameRate = 24;
    const std::string text = Format("csv").Write(to.project, to.options);
    for (const char *cells : {",41,1,", ",63,1.512,", ",83,2,"})
        EXPECT_THAT(text, HasSubstr(cells));
}

TEST(KeyFramesTest, RefusalsNameTheLineAndChangeNothing)
{
    const struct {
        const char *format;
        const char *text;
        const char *words;
    } kBad[] = {
        {"csv", "", "There are no lines"},
        {"csv", "a,b\n", "Line 1: there is neither"},
        {"csv", "time,value\n0,1\n\n1,x\n", "Line 4: value is \"x\", which is no number"},
        {"csv", "time,value\n0,1,2\n", "Line 2: there are more cells"},
        {"csv", "time,value\n\"\n\",1\n0,\"1", "Line 4: a quote does not end"},
        {"csv", "time,value\n1e99,1\n", "Line 2: the time is beyond"},
        {"csv", "time,value\nnan,1\n", "Line 2: the time is beyond"},
        {"csv", "time,frame,value\n,,1\n", "Line 2: time is missing"},
        {"csv", "time\n0\n", "Line 2: value is missing"},
        {"csv", "time,type,value\n0,double,1\n", "Line 2: the property holds float, not double"},
        {"csv", "time,value,interpolation\n0,1,smooth\n", "Line 2: interpolation is \"smooth\""},
        {"csv", "time,value,id\n0,1,x\n", "Line 2: id is \"x\", which is no ID"},
        {"csv",
         "time,value,id\n0,1,14a6c7f9-d350-4b82-971f-40e86b2dc506\n1,1,14a6c7f9-d350-4b82-971f-"
         "40e86b2dc506\n",
         "Line 3: another key frame has the ID"},
        {"keyframes", "{\"keyFrames\": [\n{\"time\": 0,, \"value\": 1}]}", "Line 2, column 12"},
        {"keyframes", "{\"other\": [{}], \"keyFrames\": [{\"time\": 0, \"value\": 1},\n\n{\"time\": 0}]}",
         "Line 3: value is missing"},
        {"keyframes", "{\"keyFrames\": [{\"time\": 0, \"value\": [1, 2]}]}", "Line 1: value is missing"},
        {"keyframes", "{\"keyFrames\": [{\"time\": [], \"value\": 1}]}", "Line 1: a list or an object"},
        {"keyframes", "{\"keyFrames\": [{\"time\": 0, \"value\": 1, \"in\": 3}]}", "Line 1: a handle is"},
        {"keyframes", "{\"keyFrames\": [3]}", "Key frame 1 is no object"},
        {"keyframes", "{\"version\": 2, \"keyFrames\": []}", "only version 1"},
        {"keyframes", "[]", "no list of key frames"},
    };
    AnimatedProject to;
    const WideString before = to.project->Serialize();
    for (const auto &[format, text, words] : kBad) {
        try {
            Format(format).ReadInto(to.project, text, to.options);
            ADD_FAILURE() << text;
        } catch (const ExchangeException &refusal) {
            EXPECT_THAT(refusal.what(), HasSubstr(words)) << text;
        }
    }
    EXPECT_TRUE(to.project->Serialize() == before);
    EXPECT_EQ(to.history.UndoCount(), 0u);
}

/// A value of whole numbers has ends.
TEST(KeyFramesTest, WholeNumbersKeepToTheirRange)
{
    AnimatedProject to(static_cast<unsigned char>(1));
    for (const char *value : {"256", "-1", "1.5", "nan", "true"})
        EXPECT_THROW(Format("csv").ReadInto(to.project, std::string("time,value\n0,") + value, to.options),
                     ExchangeException)
            << value;
    EXPECT_EQ(to.Take("csv", "time,value\n0,255.0"), "");
    EXPECT_EQ(to.Keys().At(0).Value(), PropertyValue(static_cast<unsigned char>(255)));
}

TEST(KeyFramesTest, AreThoseOfThePropertyThatIsNamedOrTheOnlyOne)
{
    AnimatedProject from;
    const auto write = [&] { return from.Do([&] { Format("csv").Write(from.project, from.options); }); };
    from.options.property = "";
    EXPECT_EQ(write(), "");
    from.options.layer = u"Picture";
    EXPECT_EQ(write(), "There is no property with key frames of layer \"Picture\"");
    from.options.property = from.effect->ID().ToNarrowString() + "/amount";
    EXPECT_EQ(write(), "");
    from.options.property = "Blur/none";
    EXPECT_EQ(write(), "There is no property \"none\" of effect \"Blur\"");
    from.options.layer = u"";
    EXPECT_EQ(write(), "There is more than one layer in composition \"Main\": one must be named");
    from.options.composition = u"None";
    EXPECT_EQ(write(), "There is no composition \"None\" in the project");
    from.options = {};
    from.options.composition = u"Main";
    from.options.layer = u"Picture";
    from.options.property = "Blur/smooth";
    EXPECT_EQ(from.Take("csv", "time,value\n0,1\n"), "Property \"smooth\" cannot be animated");
}

} // namespace

} // namespace marlet::test
