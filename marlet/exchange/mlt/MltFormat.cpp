#include <marlet/exchange/mlt/MltFormat.h>

#include <marlet/exchange/mlt/MltWriter.h>
#include <marlet/foundation/Arguments.h>

namespace marlet::project
{

NarrowString MltFormat::Write(const std::shared_ptr<Project> &project, const ExchangeOptions &options) const
{
    Require(project, "project");
    return MltOfProject(*project, options);
}

} // namespace marlet::project
