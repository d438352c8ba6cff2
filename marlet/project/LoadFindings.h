#pragma once

namespace marlet::project
{

class LoadContext;
class XmlCursor;

/// Takes over the IDs of the assets, layers and objects of a project's element whose tags are none that this
/// library knows, if the load keeps them. Comes first, for what names them.
void TakeObjectsKept(LoadContext &context, const XmlCursor &project);

/// Tells of IDs and names that stand in a project's element more than once, of IDs that lead nowhere, and of
/// numbers that stand for nothing. Comes last, since it looks at everything.
void TellOfOddities(LoadContext &context, const XmlCursor &project);

} // namespace marlet::project
