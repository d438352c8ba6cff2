#include <marlet/operations/RefusalWords.h>

namespace marlet::project
{

std::string Quoted(const WideString &name)
{
    return "\"" + ToUtf8(name) + "\"";
}

std::string CountedFrames(long long count)
{
    return std::to_string(count) + (count == 1 ? " frame" : " frames");
}

} // namespace marlet::project
