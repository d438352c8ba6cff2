#include <tests/support/OddCurves.h>
#include <tests/support/SlowCurves.h>

#include <marlet/animation/PropertyValueXml.h>
#include <marlet/foundation/Exceptions.h>
#include <marlet/foundation/xml/XmlReader.h>
#include <marlet/foundation/xml/XmlWriter.h>

#include <boost/lexical_cast/bad_lexical_cast.hpp>
#include <gtest/gtest.h>

namespace marlet::test
{
namespace
{

using namespace project;
using kytl::KyColorRGBA_32f;
using kytl::KyID;
using kytl::matl::KyVector;

std::string Written(const PropertyValue &value)
{
    return ToUtf8(XmlText([&value](XmlWriter &writer) { WriteValue(writer, value); }));
}

PropertyValue Read(const std::string &child, PropertyValue value = {})
{
    const XmlDocument document(FromUtf8("<Value>" + child + "</Value>"));
    ReadValue(document.Root(), value);
    return value;
}

TEST(PropertyValueXmlTest, EachAlternativeHasItsTagAndForm)
{
    const KyID id = KyID::FromString("01234567-89ab-cdef-0123-456789abcdef");
    const std::pair<PropertyValue, const char *> forms[] = {
        {static_cast<unsigned char>(200), "<uint8_t>200</uint8_t>\n"},
        {0.1f, "<float>0.100000001</float>\n"},
        {0.1, "<double>0.10000000000000001</double>\n"},
        {Scale3D{0.1, 100, -1}, "<Scale3D X=\"0.10000000000000001\" Y=\"100\" Z=\"-1\"/>\n"},
        {Orientation3D{0.1f, 90, -1}, "<Orientation3D X=\"0.1\" Y=\"90\" Z=\"-1\"/>\n"},
        {KyColorRGBA_32f{1, 0.5f, 0, 2}, "<MarletColor R=\"1\" G=\"0.5\" B=\"0\" A=\"2\"/>\n"},
        {Point2D{1, 2}, "<KyPoint2_32f X=\"1\" Y=\"2\"/>\n"},
        {Point3D{1, 2, 3}, "<KyPoint3_32f X=\"1\" Y=\"2\" Z=\"3\"/>\n"},
        {KyVector<2, float>{1, 2}, "<KyVector2_32f X=\"1\" Y=\"2\"/>\n"},
        {KyVector<3, float>{1, 2, 3}, "<KyVector3_32f X=\"1\" Y=\"2\" Z=\"3\"/>\n"},
        {id, "<KyID>01234567-89ab-cdef-0123-456789abcdef</KyID>\n"},
    };
    for (const auto &[value, text] : forms)
        EXPECT_EQ(Written(value), text);
}

TEST(PropertyValueXmlTest, ValuesComeBackAsTheyWereButScalesWithThePrecisionOfFloat)
{
    for (const auto &values : SevenValuesOfEach()) {
        for (PropertyValue value : values) {
            const PropertyValue read = Read(Written(value));
            if (auto *scale = boost::get<Scale3D>(&value))
                *scale = {float(scale->X), float(scale->Y), float(scale->Z)};
            EXPECT_EQ(Exactly(read), Exactly(value));
        }
    }
}

TEST(PropertyValueXmlTest, OddTextsAreReadAsNumbersGoAndWithoutAKnownTagTheValueStays)
{
    const std::pair<const char *, PropertyValue> cases[] = {
        {"<int32_t> +7 </int32_t>", 7},
        {"<int32_t>2147483648</int32_t>", 0},
        {"<uint8_t>300</uint8_t>", static_cast<unsigned char>(44)},
        {"<float>1e400</float>", std::numeric_limits<float>::infinity()},
        {"<float/>", 0.0f},
        {"text <!-- --> <float>1</float><int32_t>2</int32_t>", 1.0f},
        {"<Scale3D X=\"0.1\" Y=\"x\" Z=\"\"/>", Scale3D{0.1f, 0, 0}},
    };
    for (const auto &[text, value] : cases)
        EXPECT_EQ(Exactly(Read(text)), Exactly(value)) << text;
    for (const char *text : {"", "text", "<Float>1</Float>", "<unknown/><float>1</float>"})
        EXPECT_EQ(Exactly(Read(text, 8u)), Exactly(8u)) << text;
}

TEST(PropertyValueXmlTest, MissingAttributesAndMalformedTextsFail)
{
    EXPECT_THROW(Read("<Scale3D X=\"1\" Z=\"1\"/>"), XmlParseException);
    EXPECT_THROW(Read("<MarletColor R=\"1\" G=\"1\" B=\"1\"/>"), XmlParseException);
    EXPECT_THROW(Read("<bool>true</bool>"), boost::bad_lexical_cast);
    EXPECT_THROW(Read("<KyID>x</KyID>"), std::runtime_error);
}

} // namespace
} // namespace marlet::test
