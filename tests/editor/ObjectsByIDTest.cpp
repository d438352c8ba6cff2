#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/ObjectsByID.h>
#include <marlet/editor/VisualObject.h>
#include <marlet/project/SolidAsset.h>

#include <gtest/gtest.h>

namespace marlet::test
{
namespace
{

using namespace marlet::project;

/// Counts what is held in memory, which is until the last reference, also a weak one, is gone.
template <class T> struct CountingAllocator {
    using value_type = T;

    explicit CountingAllocator(int &ofHeld) : held(&ofHeld) {}
    template <class U> CountingAllocator(const CountingAllocator<U> &other) : held(other.held) {}

    T *allocate(std::size_t count)
    {
        ++*held;
        return std::allocator<T>().allocate(count);
    }
    void deallocate(T *memory, std::size_t count)
    {
        --*held;
        std::allocator<T>().deallocate(memory, count);
    }
    bool operator==(const CountingAllocator &) const = default;

    int *held;
};

TEST(ObjectsByID, KeepsNoMoreOfWhatHasGoneThanOfWhatIsThere)
{
    int held = 0;
    const auto sequence = EditorSequence::Create({}, 1);
    const auto solid = SolidAsset::Create(u"", {}, 1, 1, {});
    const auto make = [&]() -> std::shared_ptr<AbstractSequenceObject> {
        const auto object = VisualObject::Create(solid, sequence);
        const auto counted = std::allocate_shared<std::shared_ptr<VisualObject>>(
            CountingAllocator<std::shared_ptr<VisualObject>>(held), object);
        return {counted, object.get()};
    };
    {
        ObjectsByID objects;
        std::vector<std::shared_ptr<AbstractSequenceObject>> living;
        for (int i = 0; i < 20000; ++i) {
            const auto object = make();
            objects.Set(object);
            if (i % 100 == 0)
                living.push_back(object);
        }
        EXPECT_LT(held, 6 * static_cast<int>(living.size()));
        for (const auto &object : living)
            EXPECT_EQ(objects.Find(object->ID()), object);
        for (const auto &object : living)
            objects.Erase(object->ID());
        for (const auto &object : living)
            EXPECT_EQ(objects.Find(object->ID()), nullptr);
    }
    EXPECT_EQ(held, 0);
}

} // namespace
} // namespace marlet::test
