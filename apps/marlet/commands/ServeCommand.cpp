#include "document/WatchedFile.h"
#include "options/Arguments.h"
#include "options/Interruption.h"
#include "output/Failure.h"
#include "output/Output.h"
#include "output/Warning.h"
#include "serving/HttpServer.h"
#include "serving/ServedPages.h"

namespace marlet::tool
{

namespace
{

std::uint16_t PortOf(const Arguments &arguments)
{
    if (!arguments.Has("--port"))
        return 0;
    const int port = arguments.Integer("--port");
    if (port < 0 || port > 65535)
        throw UsageError("--port: a port is from 0 to 65535");
    return static_cast<std::uint16_t>(port);
}

void Run(const Arguments &arguments, Output &output)
{
    const std::string &path = arguments.Operand(0);
    const std::uint16_t port = PortOf(arguments);
    const Interruption interruption;
    WatchedFile file(path);
    ServedPages pages;
    pages.Update(path);
    HttpServer server(port, [&pages](const std::string &asked) { return pages.At(asked); });
    output.Line("http://127.0.0.1:" + std::to_string(server.Port()) + pages.Path());
    output.Flush();
    while (!interruption.Requested()) {
        server.Serve(std::chrono::milliseconds(100));
        if (!file.HasChanged())
            continue;
        try {
            pages.Update(path);
        } catch (const std::exception &failure) {
            // Until the next change, there is the last version that could be read.
            Warn(path, failure.what());
        }
    }
}

} // namespace

const CommandSpec &ServeCommand()
{
    static const CommandSpec command{"serve",
                                     "the report of a project as a page that follows the file",
                                     "FILE [--port N]",
                                     1,
                                     1,
                                     {{"--port", "N", "the port, one that is free if not given"}},
                                     Run,
                                     "serve film.xml",
                                     "  Prints where the page is: on this machine alone, under a path that "
                                     "nobody else knows, and only to\n"
                                     "  read. When the file changes, the page shows it. Ctrl-C ends that.\n"};
    return command;
}

} // namespace marlet::tool
