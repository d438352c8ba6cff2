#pragma once

namespace marlet::tool
{

/// Keeps standard error silent while it lives: the decoders of image files write their complaints there on
/// their own, beside the one line that a failure is told of.
class QuietStandardError
{
public:
    QuietStandardError();
    QuietStandardError(const QuietStandardError &) = delete;
    QuietStandardError &operator=(const QuietStandardError &) = delete;
    ~QuietStandardError();

private:
    int kept_;
};

} // namespace marlet::tool
