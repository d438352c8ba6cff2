#pragma once

#include <tests/support/TestPlugins.h>

#include <marlet/exchange/ExchangeFormat.h>
#include <marlet/exchange/JsonText.h>
#include <marlet/foundation/LoadReport.h>
#include <marlet/project/Project.h>

#include <memory>
#include <string>
#include <vector>

namespace marlet::test
{

/// What reading and writing of timelines is tested with: the tool's plug-ins, and a report.
struct OtioWorld {
    ExchangeOptions options;
    LoadReport report;

    OtioWorld();
    OtioWorld(const OtioWorld &) = delete;

    std::shared_ptr<Project> Read(const std::string &text);
    std::shared_ptr<Project> Read(const Json &json) { return Read(JsonTextOf(json)); }
    std::string Write(const std::shared_ptr<Project> &project);
    std::shared_ptr<Project> Load(const std::string &file);
    /// The severities and words of the report: "loss: ...".
    std::vector<std::string> Told() const;
};

std::string BytesOf(const std::string &file);

/// The tracks of a project's sequence, a line each: "V1: 0-48 boats@10x2, 48-72 gulls@5". A transition into
/// an object and out of it is "<6+4" and ">6+4".
std::string Drawing(const Project &project);

/// A clip of a file in JSON, of so many frames from one on, at a rate.
Json ClipJson(const std::string &name, double from, double frames, double rate = 25);
/// A timeline of video tracks of such items.
Json TimelineJson(const std::vector<std::vector<Json>> &tracks);

} // namespace marlet::test
