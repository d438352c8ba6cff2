#include "ToolTest.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <thread>

namespace marlet::test
{

namespace
{

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

/// What the tool shows in browsers.
class BrowserTest : public ToolTest
{
protected:
    /// What a browser makes of a page. If a file is given, it takes another's place while the page is open.
    QJsonObject Look(const std::string &page, const std::string &files = "") const
    {
        const ToolRun run =
            Shell("'" MARLET_PYTHON "' '" MARLET_LOOK "' '" MARLET_CHROMIUM "' '" + page + "' " + files);
        EXPECT_EQ(run.exitCode, 0) << run.err;
        return QJsonDocument::fromJson(QByteArray::fromStdString(run.out)).object();
    }

    static void ExpectSound(const QJsonObject &seen)
    {
        const std::string all = QJsonDocument(seen).toJson().toStdString();
        EXPECT_TRUE(seen["console"].isArray() && seen["console"].toArray().isEmpty()) << all;
        EXPECT_TRUE(seen["broken"].isArray() && seen["broken"].toArray().isEmpty()) << all;
        EXPECT_GE(seen["images"].toInt(), 2) << all;
        EXPECT_GE(seen["reached"].toInt(), seen["reachable"].toInt()) << all;
        EXPECT_NE(seen["light"].toString(), seen["dark"].toString()) << all;
        EXPECT_FALSE(seen["wide"].toBool(true)) << all;
    }
};

/// The tool serving a file, until it is told to end.
class Server
{
public:
    /// It prints its process's number, and then to a file where it is.
    Server(const ToolRun &started, const std::string &log) : pid_(std::stoi(started.out))
    {
        for (int attempt = 0; attempt < 200 && url_.find('\n') == std::string::npos; ++attempt) {
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
            std::ifstream file(log);
            url_.assign(std::istreambuf_iterator<char>(file), {});
        }
        url_.erase(url_.find_last_not_of('\n') + 1);
        const std::size_t colon = url_.rfind(':');
        port_ = std::stoi(url_.substr(colon + 1));
        path_ = url_.substr(url_.find('/', colon));
    }
    Server(const Server &) = delete;
    Server &operator=(const Server &) = delete;
    ~Server() { ::kill(pid_, SIGTERM); }

    const std::string &Url() const { return url_; }
    const std::string &Path() const { return path_; }
    std::string Host() const { return "127.0.0.1:" + std::to_string(port_); }

    /// What it answers to a request, sent in two pieces.
    std::string Ask(const std::string &request) const
    {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(static_cast<std::uint16_t>(port_));
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        const int socket = ::socket(AF_INET, SOCK_STREAM, 0);
        EXPECT_EQ(::connect(socket, reinterpret_cast<sockaddr *>(&address), sizeof address), 0);
        const std::size_t half = request.size() / 2;
        EXPECT_GT(::send(socket, request.data(), half, 0), 0);
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        EXPECT_GT(::send(socket, request.data() + half, request.size() - half, 0), 0);
        std::string answer;
        char bytes[4096];
        for (ssize_t count = 0; (count = ::recv(socket, bytes, sizeof bytes, 0)) > 0;)
            answer.append(bytes, static_cast<std::size_t>(count));
        ::close(socket);
        return answer;
    }
    std::string Ask(const std::string &method, const std::string &path, const std::string &host) const
    {
        return Ask(method + " " + path + " HTTP/1.1\r\nHost: " + host + "\r\n\r\n");
    }

private:
    int pid_;
    std::string url_;
    std::string path_;
    int port_ = 0;
};

} // namespace

TEST_F(BrowserTest, ReportsAreSmallAndShowWithoutAComplaint)
{
    for (const char *name : {"titles", "cut"}) {
        SCOPED_TRACE(name);
        ASSERT_EQ(
            Run({"report", std::string(MARLET_EXAMPLES "/") + name + ".xml", "-o", Path(name)}).exitCode, 0);
        ExpectSound(Look("file://" + Path(name) + "/index.html"));
        std::uintmax_t bytes = 0;
        for (const auto &file : std::filesystem::directory_iterator(Path(name)))
            bytes += file.file_size();
        EXPECT_LT(bytes, 400'000u);
    }
    EXPECT_THAT(Read("titles/index.html"), AllOf(HasSubstr("<polyline"), HasSubstr("curve-003.svg")));
}

TEST_F(BrowserTest, AServedPageFollowsItsFileAndForbidsAllElse)
{
    AddPoint(u"<script>alert(1)</script>")->Animation().KeyFrames("rotationZ").Set(0, 1.f);
    project_->SetName(u"Before");
    Save("a.xml");
    project_->SetName(u"After");
    Save("b.xml");
    const ToolRun started = Shell("\"$MARLET\" serve a.xml >log 2>&1 & echo $!");
    const Server server(started, Path("log"));
    ASSERT_THAT(server.Url(), StartsWith("http://127.0.0.1:"));

    const QJsonObject seen = Look(server.Url(), "b.xml a.xml");
    ExpectSound(seen);
    EXPECT_EQ(seen["title"].toString(), "After");

    const std::string page = server.Ask("GET", server.Path(), server.Host());
    EXPECT_THAT(page, AllOf(StartsWith("HTTP/1.1 200 "), HasSubstr("</html>"), HasSubstr("nosniff")));
    EXPECT_THAT(server.Ask("HEAD", server.Path(), server.Host()),
                AllOf(StartsWith("HTTP/1.1 200 "), Not(HasSubstr("<html"))));
    const struct {
        std::string method;
        std::string path;
        std::string host;
        const char *status;
    } refused[] = {
        {"POST", server.Path(), server.Host(), "405"},
        {"DELETE", server.Path(), server.Host(), "405"},
        {"GET", server.Path(), "example.org", "403"},
        {"GET", server.Path(), "127.0.0.1:1", "403"},
        {"GET", server.Path(), server.Host() + "\r\nHost: " + server.Host(), "400"},
        {"GET", "/", server.Host(), "404"},
        {"GET", server.Path() + "../a.xml", server.Host(), "404"},
        {"GET", server.Path() + "%2e%2e/a.xml", server.Host(), "404"},
        {"GET", "/etc/passwd", server.Host(), "404"},
        {"GET", server.Path() + std::string(20000, 'x'), server.Host(), "431"},
    };
    for (const auto &[method, path, host, status] : refused)
        EXPECT_THAT(server.Ask(method, path, host), StartsWith(std::string("HTTP/1.1 ") + status))
            << method << " " << path.substr(0, 60) << " " << host;
    EXPECT_THAT(server.Ask("nonsense\r\n\r\n"), StartsWith("HTTP/1.1 400"));
}

/// A new file in the place of the old one, and several writes at once.
TEST_F(BrowserTest, AWatchRunsItsCommandOncePerChange)
{
    Save("a.xml");
    const ToolRun run = Shell("\"$MARLET\" watch a.xml -- sh -c 'echo ran >>runs; exit 3' >log & pid=$!\n"
                              "lines() { n=0; until [ \"$(wc -l <$1)\" -ge $2 ] || [ $n -ge 100 ]; do sleep "
                              "0.1; n=$((n + 1)); done; }\n"
                              "touch runs; lines log 1\n"
                              "cp a.xml b.xml; mv b.xml a.xml; lines log 2\n"
                              "for i in 1 2 3; do echo >>a.xml; sleep 0.05; done; lines log 3; sleep 0.5\n"
                              "kill -TERM $pid; wait $pid; echo \"ended with $?\"; cat log runs");
    EXPECT_EQ(run.out, "ended with 0\nwatching a.xml\nsh ended with 3\nsh ended with 3\nran\nran\n")
        << run.err;
    EXPECT_EQ(Run({"watch", "not-there.xml", "--", "true"}).exitCode, 1);
    EXPECT_EQ(Run({"watch", "a.xml"}).exitCode, 2);
}

} // namespace marlet::test
