#include "HttpServer.h"

#include "output/Failure.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace marlet::tool
{

namespace
{

using Clock = std::chrono::steady_clock;

constexpr std::size_t kLongestRequest = 16384;
constexpr std::size_t kMostConnections = 64;
constexpr std::chrono::seconds kPatience(5);

const char *WordsFor(int status)
{
    switch (status) {
    case 200:
        return "OK";
    case 400:
        return "Bad Request";
    case 403:
        return "Forbidden";
    case 405:
        return "Method Not Allowed";
    case 431:
        return "Request Header Fields Too Large";
    default:
        return "Not Found";
    }
}

std::string Lower(std::string_view text)
{
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return lower;
}

std::string_view Trimmed(std::string_view text)
{
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t'))
        text.remove_prefix(1);
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t'))
        text.remove_suffix(1);
    return text;
}

/// The value of a field of the head that stands there exactly once.
std::optional<std::string> FieldOf(std::string_view head, std::string_view name)
{
    std::optional<std::string> value;
    while (!head.empty()) {
        const std::size_t end = std::min(head.find("\r\n"), head.size());
        const std::string_view line = head.substr(0, end);
        head.remove_prefix(std::min(end + 2, head.size()));
        const std::size_t colon = line.find(':');
        if (colon == std::string_view::npos || Lower(line.substr(0, colon)) != name)
            continue;
        if (value)
            return std::nullopt;
        value = std::string(Trimmed(line.substr(colon + 1)));
    }
    return value;
}

std::string Whole(const HttpAnswer &answer, bool withBody)
{
    return "HTTP/1.1 " + std::to_string(answer.status) + " " + WordsFor(answer.status) +
           "\r\nContent-Type: " + answer.type + "\r\nContent-Length: " + std::to_string(answer.body.size()) +
           (answer.status == 405 ? "\r\nAllow: GET, HEAD" : "") +
           "\r\nCache-Control: no-store\r\nX-Content-Type-Options: nosniff\r\nReferrer-Policy: no-referrer"
           "\r\nCross-Origin-Resource-Policy: same-origin\r\nX-Frame-Options: DENY"
           "\r\nConnection: close\r\n\r\n" +
           (withBody ? answer.body : "");
}

/// Gives up on a reader that does not read, or only little by little: nobody else is answered meanwhile.
void Send(int socket, std::string_view bytes)
{
    const auto until = Clock::now() + kPatience;
    while (!bytes.empty()) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(until - Clock::now());
        if (left.count() <= 0)
            return;
        const ssize_t sent = ::send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
        if (sent > 0) {
            bytes.remove_prefix(static_cast<std::size_t>(sent));
        } else if (sent < 0 && (errno == EAGAIN || errno == EINTR)) {
            pollfd ready{socket, POLLOUT, 0};
            ::poll(&ready, 1, static_cast<int>(left.count()));
        } else {
            return;
        }
    }
}

} // namespace

HttpServer::HttpServer(std::uint16_t port, Answer answer)
    : answer_(std::move(answer)), socket_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0))
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    auto *const plain = reinterpret_cast<sockaddr *>(&address);
    socklen_t size = sizeof address;
    const int yes = 1;
    if (socket_ >= 0)
        ::setsockopt(socket_, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    if (socket_ < 0 || ::bind(socket_, plain, size) != 0 || ::listen(socket_, 16) != 0 ||
        ::getsockname(socket_, plain, &size) != 0) {
        const int error = errno;
        ::close(socket_);
        throw Failure("port " + std::to_string(port), std::generic_category().message(error));
    }
    port_ = ntohs(address.sin_port);
}

HttpServer::~HttpServer()
{
    for (const Connection &connection : connections_)
        ::close(connection.socket);
    ::close(socket_);
}

void HttpServer::Serve(std::chrono::milliseconds time)
{
    const auto end = Clock::now() + time;
    bool canAccept = true;
    do {
        // Who asks stays in the queue as long as there is no descriptor for the connection.
        std::vector<pollfd> waiting{{canAccept ? socket_ : -1, POLLIN, 0}};
        for (const Connection &connection : connections_)
            waiting.push_back({connection.socket, POLLIN, 0});
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now());
        if (::poll(waiting.data(), waiting.size(), static_cast<int>(std::max<long long>(left.count(), 0))) <
            0)
            return;
        auto ready = waiting.begin() + 1;
        for (auto connection = connections_.begin(); connection != connections_.end(); ++ready) {
            const bool goesOn =
                (ready->revents == 0 || Read(*connection)) && Clock::now() < connection->until;
            if (!goesOn) {
                ::close(connection->socket);
                canAccept = true;
            }
            connection = goesOn ? std::next(connection) : connections_.erase(connection);
        }
        if (waiting.front().revents != 0)
            canAccept = Accept();
    } while (Clock::now() < end);
}

bool HttpServer::Accept()
{
    const int socket = ::accept4(socket_, nullptr, nullptr, SOCK_CLOEXEC);
    if (socket < 0)
        return errno != EMFILE && errno != ENFILE && errno != ENOBUFS && errno != ENOMEM;
    if (connections_.size() >= kMostConnections)
        ::close(socket);
    else
        connections_.push_back({socket, {}, Clock::now() + kPatience});
    return true;
}

bool HttpServer::Read(Connection &connection) const
{
    char bytes[4096];
    const ssize_t count = ::recv(connection.socket, bytes, sizeof bytes, MSG_DONTWAIT);
    if (count < 0)
        return errno == EINTR || errno == EAGAIN;
    if (count == 0)
        return false;
    connection.request.append(bytes, static_cast<std::size_t>(count));
    if (connection.request.size() > kLongestRequest) {
        Send(connection.socket, Whole({431, {}, "The request is too long\n"}, true));
        return false;
    }
    const std::size_t end = connection.request.find("\r\n\r\n");
    if (end == std::string::npos)
        return true;
    Send(connection.socket, AnswerTo(connection.request.substr(0, end)));
    return false;
}

bool HttpServer::IsOwnHost(const std::string &host) const
{
    constexpr int kUsualPort = 80; // which browsers leave out
    const std::string port = ":" + std::to_string(port_);
    const std::string asked = Lower(host);
    for (const std::string name : {"127.0.0.1", "localhost"})
        if (asked == name + port || (port_ == kUsualPort && asked == name))
            return true;
    return false;
}

std::string HttpServer::AnswerTo(const std::string &request) const
{
    const auto refuse = [](int status, const char *why) { return Whole({status, "text/plain", why}, true); };
    const std::size_t lineEnd = std::min(request.find("\r\n"), request.size());
    const std::string line = request.substr(0, lineEnd);
    const std::size_t first = line.find(' ');
    const std::size_t last = line.rfind(' ');
    if (first == std::string::npos || first == last || line.compare(last + 1, 7, "HTTP/1.") != 0)
        return refuse(400, "This is no request\n");
    const std::string method = line.substr(0, first);
    const std::optional<std::string> host =
        FieldOf(std::string_view(request).substr(std::min(lineEnd + 2, request.size())), "host");
    if (!host)
        return refuse(400, "A request names its host\n");
    if (!IsOwnHost(*host))
        return refuse(403, "This is not the host that was asked for\n");
    if (method != "GET" && method != "HEAD")
        return refuse(405, "There is nothing here but to read\n");
    const std::string target = line.substr(first + 1, last - first - 1);
    return Whole(answer_(target.substr(0, target.find('?'))), method == "GET");
}

} // namespace marlet::tool
