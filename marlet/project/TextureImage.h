#pragma once

#include <marlet/foundation/KyID.h>
#include <marlet/foundation/Strings.h>
#include <marlet/foundation/ValuePtr.h>

namespace marlet::project
{

struct TextureImage_Impl;

/// An image file that a 3D effect uses as a texture: its path, its size in pixels, and whether it could be
/// opened. It holds no pixels. Used from one thread at a time.
class MARLET_EXPORT TextureImage
{
public:
    TextureImage();
    /// A copy has a new ID.
    TextureImage(const TextureImage &other);
    TextureImage &operator=(TextureImage other);
    ~TextureImage();

    const kytl::KyID &ID() const;
    const WideString &FilePath() const;
    /// Takes the path and looks at the file.
    void Load(const WideString &path);
    /// Looks at the file again.
    void Reload();
    /// What came of the last look; the size is 0 if it failed.
    bool LoadSuccessful() const;
    int Width() const;
    int Height() const;

private:
    ValuePtr<TextureImage_Impl> impl_;
};

} // namespace marlet::project
