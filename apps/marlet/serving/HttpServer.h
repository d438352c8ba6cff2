#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <list>
#include <string>

namespace marlet::tool
{

struct HttpAnswer {
    int status = 200;
    std::string type = "text/plain; charset=utf-8";
    std::string body;
};

/// Answers browsers on this machine: on 127.0.0.1 alone, GET and HEAD alone, and only to requests that name
/// this machine as their host, so that no page of a foreign name reaches it. Each connection carries one
/// request. Not for several threads.
class HttpServer
{
public:
    /// What there is under a path, without what follows a question mark; another status for nothing.
    using Answer = std::function<HttpAnswer(const std::string &path)>;

    /// Port 0 stands for one that is free. @throws Failure
    HttpServer(std::uint16_t port, Answer answer);
    HttpServer(const HttpServer &) = delete;
    HttpServer &operator=(const HttpServer &) = delete;
    ~HttpServer();

    std::uint16_t Port() const { return port_; }
    /// Answers whoever asks, for that long.
    void Serve(std::chrono::milliseconds time);

private:
    struct Connection {
        int socket;
        std::string request;
        std::chrono::steady_clock::time_point until;
    };

    /// Whether there may be more to accept; not if the machine or the process is out of descriptors.
    bool Accept();
    /// Whether the connection goes on.
    bool Read(Connection &connection) const;
    std::string AnswerTo(const std::string &request) const;
    bool IsOwnHost(const std::string &host) const;

    Answer answer_;
    int socket_;
    std::uint16_t port_ = 0;
    std::list<Connection> connections_;
};

} // namespace marlet::tool
