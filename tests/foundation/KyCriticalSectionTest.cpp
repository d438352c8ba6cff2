#include <marlet/foundation/KyCriticalSection.h>

#include <gtest/gtest.h>

#include <thread>

namespace
{

using namespace kytl::thread;

TEST(KyCriticalSectionTest, TheHolderEntersAgainAndOthersWait)
{
    KyCriticalSection lock;
    int counter = 0;
    const auto count = [&] {
        for (int i = 0; i < 20000; ++i) {
            const KyScopedLock outer(lock);
            const KyScopedLock inner(lock);
            ++counter;
        }
    };
    std::thread other(count);
    count();
    other.join();
    EXPECT_EQ(counter, 40000);
}

} // namespace
