// Reads a server-sent-events stream on its own thread (libcurl multi) and collects what
// arrives, so a test can wait for an event instead of sleeping. Owned by one test; Wait* from
// the test's thread.
//
//   EventStreamClient events(server.Url("/v2/events"), Bearer(token));
//   ASSERT_TRUE(events.WaitForComment());          // the stream is live
//   ... change something ...
//   ASSERT_TRUE(events.WaitFor([](auto& e) { return e.type == "asset-list"; }));
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "support/HttpClient.h"

namespace testsupport {

class EventStreamClient {
public:
    struct Event {
        std::string type;
        std::string data;
    };

    EventStreamClient(std::string url, HttpClient::Headers headers);
    /// Closes the stream and joins the reader thread.
    ~EventStreamClient();
    EventStreamClient(const EventStreamClient&) = delete;
    EventStreamClient& operator=(const EventStreamClient&) = delete;

    /// Waits until an event satisfying `match` has arrived (already or later).
    bool WaitFor(const std::function<bool(const Event&)>& match,
                 std::chrono::milliseconds timeout = std::chrono::seconds(20));
    /// Waits for at least one comment line (the server greets a new stream with one).
    bool WaitForComment(std::chrono::milliseconds timeout = std::chrono::seconds(20));
    /// Waits until the stream has ended (closed by the server or refused).
    bool WaitForEnd(std::chrono::milliseconds timeout = std::chrono::seconds(20));

    std::vector<Event> Events();
    long Status();
    std::string ContentType();

private:
    void Run(std::string url, HttpClient::Headers headers);
    void Feed(const char* data, std::size_t size);

    static std::size_t OnData(char* data, std::size_t size, std::size_t count, void* self);
    static std::size_t OnHeader(char* data, std::size_t size, std::size_t count, void* self);

    std::mutex mutex;
    std::condition_variable changed;
    std::vector<Event> events;
    std::size_t comments = 0;
    bool ended = false;
    bool stopping = false;
    long status = 0;
    std::string contentType;
    std::string partial;  // Text after the last complete frame; reader thread only.
    void* multi = nullptr;
    std::thread reader;
};

}  // namespace testsupport
