#pragma once

namespace marlet::project
{

class LoadContext;
class XmlCursor;

/// Tells of IDs that stand in a project's element more than once, and of those that lead nowhere. Comes last,
/// since it looks at everything.
void TellOfIDs(LoadContext &context, const XmlCursor &project);

} // namespace marlet::project
