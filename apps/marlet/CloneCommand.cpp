#include "Arguments.h"
#include "Document.h"
#include "Output.h"

#include <marlet/project/AssetList.h>
#include <marlet/project/BinFolder.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/Project.h>

#include <algorithm>

namespace marlet::tool
{

using namespace project;

namespace
{

/// The first folder that lists the asset, or null.
BinFolder *FindFolderOf(BinFolder &root, const AbstractAsset &asset)
{
    std::vector<BinFolder *> folders{&root};
    for (std::size_t i = 0; i < folders.size(); ++i) {
        const BinFolder::AssetReferences &assets = folders[i]->Assets();
        if (std::any_of(assets.begin(), assets.end(),
                        [&](const auto &reference) { return reference.lock().get() == &asset; }))
            return folders[i];
        for (const auto &folder : folders[i]->Folders())
            folders.push_back(folder.get());
    }
    return nullptr;
}

void Run(const Arguments &arguments, Output &output)
{
    const std::string &name = arguments.Text("--composition");
    const ProjectPointer project = ReadProject(arguments.Operand(0));
    const CompositionPointer composition = FindComposition(*project, name);
    const std::shared_ptr<AbstractAsset> clone = composition->Clone();
    if (arguments.Has("--name"))
        clone->SetName(FromUtf8(arguments.Text("--name")));

    project->Assets().All().Add(clone);
    if (BinFolder *folder = FindFolderOf(project->Assets().Bin(), *composition)) {
        folder->Assets().Add(clone);
        clone->SetParentFolderID(folder->ID());
    } else {
        clone->ClearParentBinFolder();
    }
    FillInstances(*project);
    WriteProject(*project, arguments.Operand(1));
    output.Line("Composition " + Quoted(composition->Name()) + " is cloned as " + Quoted(clone->Name()) +
                "  " + clone->ID().ToNarrowString());
}

} // namespace

const CommandSpec &CloneCommand()
{
    static const CommandSpec command{
        "clone",
        "a second composition like one that is there, whose layers refer to one another",
        "FILE OUT --composition C [--name N]",
        2,
        2,
        {{"--composition", "C", "the composition, by ID or name"},
         {"--name", "N", "the name of the clone; that of the composition if not given"}},
        Run,
        "clone examples/titles.xml copy.xml --composition Opening --name \"Second Opening\""};
    return command;
}

} // namespace marlet::tool
