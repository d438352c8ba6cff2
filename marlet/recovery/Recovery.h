#pragma once

#include <marlet/foundation/Export.h>
#include <marlet/foundation/LoadReport.h>
#include <marlet/foundation/Strings.h>

#include <memory>
#include <string_view>

namespace marlet::project
{

class Abstract3DEffectFactory;
class AbstractPluginManager;

/// The largest part of a damaged or cut off project that loads, as a text: with LoadOptions::keepUnknown both
/// with these plug-ins and without any. Elements that stand whole in what is there are kept, in their place;
/// one whose end is missing is closed where it has all that it needs, and dropped with the nearest layer,
/// effect, point, key frame or the like around it where not. What a composition, a track or an element that
/// is damaged inside lacks of its own is put in as a new one has it. A text that loads is given back as it
/// is.
///
/// No media are opened and no file is written. Takes the time of a few loads, however many damages there are.
/// @param bytes of the file: UTF-8, or UTF-16 with a byte order mark
/// @param report is filled with what is gone and what was put in, in the order of the damaged text. Lines and
/// columns are of its text, offsets of its bytes in UTF-8
/// @throws MessageException if nothing of a project is in it: neither its start tag nor that of an object in
/// it, whole and with a version
MARLET_EXPORT WideString RecoverProject(std::string_view bytes, const WideString &texturesFolder,
                                        const std::shared_ptr<AbstractPluginManager> &pluginManager,
                                        const Abstract3DEffectFactory &effectFactory, LoadReport &report);

} // namespace marlet::project
