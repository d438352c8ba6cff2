#pragma once

#include <tests/support/TestDocuments.h>

#include <marlet/foundation/Strings.h>
#include <marlet/layers/Abstract3DEffect.h>
#include <marlet/layers/Abstract3DEffectFactory.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/Project.h>

#include <filesystem>
#include <fstream>
#include <iterator>

/// A host without 3D effects.
struct NoEffects : marlet::project::Abstract3DEffectFactory {
    std::shared_ptr<marlet::project::Abstract3DEffect>
    Create(void *, marlet::project::ProjectTextureImageCache &) const override
    {
        return nullptr;
    }
};

inline std::shared_ptr<marlet::project::Project> Load(const kytl::WideString &text)
{
    return marlet::project::Project::CreateFromXml(text, u"", nullptr, NoEffects());
}

inline std::string ReadBytes(const std::filesystem::path &path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline kytl::WideString ReadDocument(const std::filesystem::path &path)
{
    return marlet::project::FromUtf8(ReadBytes(std::filesystem::path(MARLET_TEST_DOCUMENTS) / path));
}

/// The only composition of a project.
inline std::shared_ptr<marlet::project::CompositionAsset>
OnlyComposition(const marlet::project::Project &project)
{
    const auto compositions = project.Assets().GetByType(marlet::project::AssetType::Composition);
    return std::dynamic_pointer_cast<marlet::project::CompositionAsset>(compositions.at(0));
}
