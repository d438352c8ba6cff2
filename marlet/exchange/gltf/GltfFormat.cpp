#include <marlet/exchange/gltf/GltfFormat.h>

#include <marlet/exchange/gltf/GltfWriter.h>
#include <marlet/foundation/Arguments.h>

namespace marlet::project
{

NarrowString GltfFormat::Write(const std::shared_ptr<Project> &project, const ExchangeOptions &options) const
{
    Require(project, "project");
    return GltfOfProject(project, options);
}

} // namespace marlet::project
