#pragma once

#include <marlet/compare/Difference.h>

#include <memory>

namespace marlet::project
{

class Abstract3DEffectFactory;
class Project;

/// Makes a project another one by its differences from that, as one edit with the label. Its text is then
/// what ApplyToText makes of it: applied to the first of two projects that were compared, the differences
/// make it the second.
///
/// What stays keeps its address, and takes over what differs in it; what is new is read as a load reads it,
/// with the project's own plug-ins, media and textures, and has the IDs that it is to have. An object of
/// which something differs that cannot be changed in place is exchanged for a new one with the same ID.
///
/// Costs about two loads of the project. Belongs to the thread that edits it.
/// @throws OperationException if a changed element is not there, or something cannot be changed, such as the
/// project's own ID; what a load throws. Nothing is changed then.
MARLET_EXPORT void Apply(const std::shared_ptr<Project> &project, const std::vector<Difference> &differences,
                         const Abstract3DEffectFactory &effectFactory,
                         const WideString &label = u"Apply changes");

} // namespace marlet::project
