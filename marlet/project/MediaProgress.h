#pragma once

#include <marlet/foundation/Strings.h>

namespace marlet::project
{

/// Is told how far the opening of many media files is, and may end it. The host implements it.
class MARLET_EXPORT MediaProgress
{
public:
    /// A file was opened, or could not be: number `number` of `count`, from 1. Called on the thread that
    /// asked for the files, in their order, once for each that had to be opened. False cancels: what comes
    /// behind is not opened. What it throws ends the operation.
    virtual bool OnFile(const WideString &path, int number, int count) = 0;

    virtual ~MediaProgress();
};

} // namespace marlet::project
