#include <tests/support/LayerStage.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

namespace
{

thread_local long allocations = 0;

} // namespace

void *operator new(std::size_t size)
{
    ++allocations;
    if (void *memory = std::malloc(size))
        return memory;
    throw std::bad_alloc();
}

void operator delete(void *memory) noexcept
{
    std::free(memory);
}

void operator delete(void *memory, std::size_t) noexcept
{
    std::free(memory);
}

namespace marlet::test
{
namespace
{

TEST(LayerAllocation, IsNotNeededForWorldMatricesOnceTheyAreWarm)
{
    const LayerStage stage;
    std::shared_ptr<PointLayer> layer;
    for (int depth = 0; depth < 4; ++depth) {
        const auto child = stage.AddPoint();
        child->SetDimensions(LayerDimensions::ThreeD);
        if (layer)
            child->SetParentLayer(layer->ID());
        layer = child;
        for (const int time : {0, 700, 2000}) {
            const auto t = static_cast<float>(time);
            SetAt(*layer, "position", time, Point{t, t * t / 1000, 0});
            SetAt(*layer, "scale", time, Scale3D{100.0 + time, 50, 50});
            KeyFrame key(time, t / 10);
            key.SetOutgoingPoint({200, 5});
            layer->Animation().KeyFrames("rotationZ").Add(key);
        }
    }
    const auto evaluate = [&] {
        for (int time = -50; time < 2100; time += 50)
            layer->WorldTransformationAtTime(time, stage.project, true);
    };
    evaluate();
    const long before = allocations;
    evaluate();
    EXPECT_EQ(allocations, before);
}

} // namespace
} // namespace marlet::test
