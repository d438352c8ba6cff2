#include <marlet/foundation/KyList.h>

#include <gtest/gtest.h>

#include <memory>

namespace
{

using kytl::KyList;

template <class List> class KyListTest : public testing::Test
{
};

using Lists = testing::Types<KyList<std::shared_ptr<int>>, KyList<std::shared_ptr<int>, std::list>>;
TYPED_TEST_SUITE(KyListTest, Lists);

template <class List> List OneTwoThree()
{
    List list;
    for (const int number : {1, 2, 3})
        list.Add(std::make_shared<int>(number));
    return list;
}

TYPED_TEST(KyListTest, FindsTheFirstAndLooksNoFurther)
{
    const TypeParam list = OneTwoThree<TypeParam>();
    int asked = 0;
    const auto aboveOne = [&asked](std::shared_ptr<int> element) {
        ++asked;
        return *element > 1;
    };
    EXPECT_EQ(*list.FindFirst(aboveOne), 2);
    EXPECT_EQ(asked, 2);
    int index = -1;
    EXPECT_TRUE(list.FindIndex(aboveOne, index));
    EXPECT_EQ(index, 1);
}

TYPED_TEST(KyListTest, FindsNothingAsAnEmptyElement)
{
    const auto never = [](std::shared_ptr<int> element) { return *element > 3; };
    const TypeParam list = OneTwoThree<TypeParam>();
    EXPECT_EQ(list.FindFirst(never), nullptr);
    EXPECT_FALSE(list.Any(never));
    int index = 7;
    EXPECT_FALSE(list.FindIndex(never, index));
    EXPECT_EQ(index, 7);
}

TYPED_TEST(KyListTest, ACallbackOwnsWhatItIsHanded)
{
    TypeParam list = OneTwoThree<TypeParam>();
    const std::weak_ptr<int> first = list.front();
    list.ForEach([&first](std::shared_ptr<int> element) {
        if (*element == 1) {
            EXPECT_EQ(first.use_count(), 2);
        }
        element.reset();
    });
    EXPECT_NE(list.front(), nullptr);
}

} // namespace
