#include <marlet/foundation/KyID.h>

#include <gtest/gtest.h>

TEST(KyID, NullIDIsAllZeros)
{
    EXPECT_EQ(kytl::KyID().ToNarrowString(), "00000000-0000-0000-0000-000000000000");
}
