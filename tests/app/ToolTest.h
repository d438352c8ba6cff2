#pragma once

#include <marlet/animation/PropertyManager.h>
#include <marlet/layers/PointLayer.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/Project.h>

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace marlet::test
{

using namespace marlet::project;

struct ToolRun {
    int exitCode = -1;
    std::string out;
    std::string err;

    std::vector<std::string> OutLines() const;
};

/// Runs the built tool as a process, in a folder of the test's own.
class ToolTest : public testing::Test
{
protected:
    ToolTest();
    ~ToolTest() override;

    ToolRun Run(const std::vector<std::string> &words) const;
    /// Runs a line of shell in which "$MARLET" is the tool.
    ToolRun Shell(const std::string &line) const;

    std::string Path(const std::string &name) const;
    /// Returns the path.
    std::string Write(const std::string &name, const std::string &bytes) const;
    std::string Read(const std::string &name) const;
    std::vector<std::string> FileNames() const;

    /// A project with one composition "Main" at 25 frames per second, saved under a name; returns the path.
    std::string Save(const std::string &name) const;
    std::shared_ptr<PointLayer> AddPoint(const std::u16string &name,
                                         kytl::matl::KyPoint<3, float> position = {});

    std::shared_ptr<Project> project_;
    std::shared_ptr<CompositionAsset> composition_;

private:
    std::string folder_;
};

} // namespace marlet::test
