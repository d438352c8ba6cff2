#pragma once

#include <marlet/foundation/Export.h>
#include <marlet/foundation/ValuePtr.h>

namespace marlet::project
{

class XmlCursor;
class XmlWriter;
struct ProjectSettings_Impl;

/// The colour bit depth. The host names the depths; the library stores the number.
enum class BPC : int {};

/// The settings of a whole project. Belongs to the thread that edits the project.
class MARLET_EXPORT ProjectSettings
{
public:
    ProjectSettings(const ProjectSettings &) = delete;
    ProjectSettings &operator=(const ProjectSettings &) = delete;
    ~ProjectSettings();

    /// 1000 in a new project.
    BPC ColorBitDepth() const;
    void SetColorBitDepth(BPC depth);

private:
    friend struct Project_Impl;
    friend class Project;

    ProjectSettings();
    void Serialize(XmlWriter &writer) const;
    void Deserialize(const XmlCursor &element);

    ValuePtr<ProjectSettings_Impl> impl_;
};

} // namespace marlet::project
