#pragma once

#include <marlet/foundation/KyID.h>

#include <string>
#include <unordered_map>
#include <vector>

namespace marlet::project
{
class Project;
}

namespace marlet::tool
{

/// What the objects of a project are called and where they stand in time, at one moment: a notice that comes
/// later names objects that may be gone, and does not say where they stood.
class Standings
{
public:
    struct Standing {
        std::string kind; ///< "picture", "text layer"
        std::string name;
        bool isInTime = false; ///< of layers and objects
        int startFrame = 0;    ///< of the composition or the sequence
        int endFrame = 0;

        /// picture "Sea"; the kind alone of what has no name.
        std::string Text() const;
    };

    explicit Standings(const project::Project &project);

    /// Null if the project has no such object.
    const Standing *Find(const kytl::KyID &id) const;
    /// In the order of time. Nothing if there is no such track.
    const std::vector<kytl::KyID> &ObjectsOnTrack(const kytl::KyID &track) const;

private:
    std::unordered_map<kytl::KyID, Standing> objects_;
    std::unordered_map<kytl::KyID, std::vector<kytl::KyID>> tracks_;
};

} // namespace marlet::tool
