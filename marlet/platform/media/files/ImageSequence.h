#pragma once

#include <string>
#include <vector>

namespace kyh::media
{

/// Pictures in files of their own, as the frames of a clip.
struct ImageSequence {
    struct Member {
        int frame; ///< the first that the file is seen in
        std::string path;
    };
    std::vector<Member> members; ///< by frame; the first has frame 0
    int count = 0;               ///< frames

    /// The member that is seen in a frame.
    const Member &MemberAt(int frame) const;
};

/// The one file.
ImageSequence SinglePicture(std::string path);
/// The files of a folder that have the same name as `path` around a number with the same count of digits: the
/// last in the name, but not in its ending.
/// @throws MediaFailure
ImageSequence FindImageSequence(const std::string &path);

} // namespace kyh::media
