#include <marlet/checks/ValueTypes.h>

#include <tests/support/PropertyValuePrinter.h>

#include <gmock/gmock.h>

#include <limits>

namespace marlet::test
{

using namespace marlet::project;

namespace
{

using Point2 = kytl::matl::KyPoint<2, float>;
using Point3 = kytl::matl::KyPoint<3, float>;
using Vector2 = kytl::matl::KyVector<2, float>;
using Vector3 = kytl::matl::KyVector<3, float>;
using Color = kytl::KyColorRGBA_32f;

TEST(ValueTypesTest, NumbersConvertWhereNoneIsLostOrInvented)
{
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    const PropertyValue none; // stands for no conversion where the model is no int
    const struct {
        PropertyValue value;
        PropertyValue model;
        PropertyValue expected;
    } cases[] = {
        {5, 1.f, 5.f},
        {0.1, 1.f, 0.1f},
        {2.f, 7u, 2u},
        {-2.f, 7u, none},
        {2.5f, static_cast<unsigned char>(7), none},
        {256, static_cast<unsigned char>(7), none},
        {1.0, false, true},
        {2, false, none},
        {true, 1.0, 1.0},
        {1e300, 1.f, none},
        {kInfinity, 1.f, none},
        {Point2{1, 2}, Vector2{}, Vector2{1, 2}},
        {Vector3{1, 2, 3}, Point3{}, Point3{1, 2, 3}},
        {Point3{1, 2, 3}, Scale3D{}, Scale3D{1, 2, 3}},
        {Point2{1, 2}, Point3{}, none},
        {Color{1, 0, 0, 1}, Point3{}, none},
        {kytl::KyID::Generate(), 1.f, none},
        {1.f, kytl::KyID(), none},
    };
    for (const auto &[value, model, expected] : cases) {
        const auto converted = Converted(value, model);
        EXPECT_EQ(converted.value_or(none), expected) << TypeName(value) << " to " << TypeName(model);
        EXPECT_EQ(converted.has_value(), !(expected == none));
    }
}

} // namespace

} // namespace marlet::test
