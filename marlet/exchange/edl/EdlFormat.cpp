#include <marlet/exchange/edl/EdlFormat.h>

#include <marlet/exchange/edl/EdlReader.h>
#include <marlet/exchange/edl/EdlText.h>
#include <marlet/exchange/edl/EdlWriter.h>
#include <marlet/foundation/Arguments.h>

namespace marlet::project
{

NarrowString EdlFormat::Write(const std::shared_ptr<Project> &project, const ExchangeOptions &options) const
{
    Require(project, "project");
    return EdlOfProject(*project, options);
}

bool EdlFormat::Recognises(std::string_view bytes) const
{
    return LooksLikeEdl(bytes);
}

std::shared_ptr<Project> EdlFormat::Read(std::string_view bytes, const ExchangeOptions &options) const
{
    return ProjectOfEdl(ParseEdl(bytes, options), options);
}

} // namespace marlet::project
