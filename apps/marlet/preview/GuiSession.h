#pragma once

namespace marlet::tool
{

/// Makes Qt ready for drawing text, without a display, if nobody has yet. It stays so until the process ends.
/// On the thread that draws.
void RequireGuiSession();

} // namespace marlet::tool
