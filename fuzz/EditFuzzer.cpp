// The bytes say what a user does with a document: edits of all kinds, inner ones, dropped ones, undo and
// redo. After each step the text is the one of that state, every object is where it was, and who listens to
// notices alone knows of everything.

#include "support/FuzzInput.h"

#include <tests/history/EditScript.h>

using namespace marlet::project;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    constexpr std::size_t kMostSteps = 5;
    std::size_t next = 0;
    const auto number = [&]() -> unsigned int { return next < size ? bytes[next++] : 0; };
    marlet::test::EditScript script(number, [](const NarrowString &fault) { Fail(fault.c_str()); });
    for (std::size_t step = 0; step < kMostSteps && next < size; ++step)
        script.Run(1);
    script.UndoAndRedoAll();
    return 0;
}
