#include "EditScript.h"

#include <gtest/gtest.h>

#include <random>

using namespace marlet::test;

class EditScripts : public testing::TestWithParam<unsigned int>
{
};

TEST_P(EditScripts, UndoAndRedoGiveBackEveryStateAndTellOfAllChanges)
{
    std::mt19937 random(GetParam());
    EditScript script([&] { return static_cast<unsigned int>(random()); },
                      [](const NarrowString &fault) { FAIL() << fault; });
    script.Run(120);
    script.UndoAndRedoAll();
    EXPECT_GT(script.States(), 2U);
}

INSTANTIATE_TEST_SUITE_P(Seeds, EditScripts, testing::Range(1U, 13U));
