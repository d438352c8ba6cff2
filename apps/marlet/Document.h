#pragma once

#include <marlet/foundation/KyID.h>
#include <marlet/foundation/Strings.h>

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace marlet::project
{
class AbstractLayer;
class CompositionAsset;
class Project;
} // namespace marlet::project

namespace marlet::tool
{

using ProjectPointer = std::shared_ptr<project::Project>;
using CompositionPointer = std::shared_ptr<project::CompositionAsset>;
using LayerPointer = std::shared_ptr<project::AbstractLayer>;

/// A project from its text, with the assets' lists of instances filled.
/// @throws as Project::CreateFromXml
ProjectPointer ParseProject(const project::WideString &text);

/// @throws as ReadTextFile and ParseProject
ProjectPointer ReadProject(const std::string &path);

/// @throws as WriteFile
void WriteProject(const project::Project &project, const std::string &path);

/// Every composition of the project, in file order.
std::vector<CompositionPointer> Compositions(const project::Project &project);

/// The layers of a composition by their IDs. Of several layers with one ID the first counts, as it does in
/// CompositionAsset::FindLayerByID.
std::unordered_map<kytl::KyID, LayerPointer> LayersByID(const project::CompositionAsset &composition);

// By ID, or by a name that only one of them has. @throws Failure

CompositionPointer FindComposition(const project::Project &project, const std::string &idOrName);
LayerPointer FindLayer(const project::CompositionAsset &composition, const std::string &idOrName);

} // namespace marlet::tool
