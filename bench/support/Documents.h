#pragma once

#include <marlet/foundation/Strings.h>
#include <marlet/layers/Abstract3DEffectFactory.h>

#include <memory>

namespace marlet::project
{
class AbstractLayer;
class CompositionAsset;
class KeyFrameList;
class Project;
class PropertyManager;
} // namespace marlet::project

namespace bench
{

/// Milliseconds between two key frames.
constexpr int kKeyDistance = 40;
/// How far the handles of a key frame reach, in milliseconds.
constexpr float kEase = 16;

struct NoEffects : marlet::project::Abstract3DEffectFactory {
    std::shared_ptr<marlet::project::Abstract3DEffect>
    Create(void *, marlet::project::ProjectTextureImageCache &) const override
    {
        return {};
    }
};

/// Gives a property key frames with eased handles: each is left and reached slowly. Values are the same in
/// every run.
void Animate(marlet::project::PropertyManager &properties, const char *name, int keyCount);
/// The value of a key frame's first component.
float ValueOfKey(int index);

/// A project with one composition, to which Add adds layers.
struct Document {
    std::shared_ptr<marlet::project::Project> project;
    std::shared_ptr<marlet::project::CompositionAsset> composition;

    Document();
    void Add(const std::shared_ptr<marlet::project::AbstractLayer> &layer);
};

/// The text of a project of about so many megabytes of UTF-8, all ASCII: point, light and camera layers whose
/// properties have a hundred key frames each. Alike in every run but for its IDs.
const marlet::project::WideString &TextOfMegabytes(int megabytes);

std::shared_ptr<marlet::project::Project> Load(const marlet::project::WideString &text);

} // namespace bench
