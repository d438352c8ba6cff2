#pragma once

namespace marlet::project
{

class LoadContext;
class XmlCursor;

/// Tells of IDs and names that stand in a project's element more than once, of IDs that lead nowhere, and of
/// numbers that stand for nothing. Comes last, since it looks at everything.
void TellOfOddities(LoadContext &context, const XmlCursor &project);

} // namespace marlet::project
