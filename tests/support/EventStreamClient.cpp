#include "support/EventStreamClient.h"

#include <curl/curl.h>

#include <algorithm>
#include <cctype>

namespace testsupport {

EventStreamClient::EventStreamClient(std::string url, HttpClient::Headers headers) {
    HttpClient::Escape("");  // Makes sure curl's global state is set up before the thread.
    multi = curl_multi_init();
    reader = std::thread(
        [this, url = std::move(url), headers = std::move(headers)] { Run(url, headers); });
}

EventStreamClient::~EventStreamClient() {
    {
        std::lock_guard lock(mutex);
        stopping = true;
    }
    curl_multi_wakeup(static_cast<CURLM*>(multi));
    reader.join();
    curl_multi_cleanup(static_cast<CURLM*>(multi));
}

void EventStreamClient::Run(std::string url, HttpClient::Headers headers) {
    CURLM* m = static_cast<CURLM*>(multi);
    CURL* curl = curl_easy_init();
    curl_slist* list = curl_slist_append(nullptr, "Accept: text/event-stream");
    for (const auto& [name, value] : headers) {
        list = curl_slist_append(list, (name + ": " + value).c_str());
    }
    curl_easy_setopt(curl, CURLOPT_URL, url.c_str());
    curl_easy_setopt(curl, CURLOPT_HTTPHEADER, list);
    curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, OnData);
    curl_easy_setopt(curl, CURLOPT_WRITEDATA, this);
    curl_easy_setopt(curl, CURLOPT_HEADERFUNCTION, OnHeader);
    curl_easy_setopt(curl, CURLOPT_HEADERDATA, this);
    curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);
    curl_multi_add_handle(m, curl);
    int running = 1;
    while (running > 0) {
        if (curl_multi_perform(m, &running) != CURLM_OK) {
            break;
        }
        {
            std::lock_guard lock(mutex);
            if (stopping) {
                break;
            }
        }
        if (running > 0) {
            curl_multi_poll(m, nullptr, 0, 1000, nullptr);
        }
    }
    long code = 0;
    curl_easy_getinfo(curl, CURLINFO_RESPONSE_CODE, &code);
    curl_multi_remove_handle(m, curl);
    curl_easy_cleanup(curl);
    curl_slist_free_all(list);
    std::lock_guard lock(mutex);
    status = code;
    ended = true;
    changed.notify_all();
}

std::size_t EventStreamClient::OnHeader(char* data, std::size_t size, std::size_t count,
                                        void* self) {
    auto* client = static_cast<EventStreamClient*>(self);
    std::string line(data, size * count);
    std::string lower = line;
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    std::lock_guard lock(client->mutex);
    if (lower.rfind("http/", 0) == 0) {
        const auto space = line.find(' ');
        client->status = space == std::string::npos ? 0 : std::atol(line.c_str() + space + 1);
    } else if (lower.rfind("content-type:", 0) == 0) {
        std::string value = line.substr(13);
        value.erase(0, value.find_first_not_of(" \t"));
        value.erase(value.find_last_not_of(" \t\r\n") + 1);
        client->contentType = value;
    }
    client->changed.notify_all();
    return size * count;
}

std::size_t EventStreamClient::OnData(char* data, std::size_t size, std::size_t count, void* self) {
    static_cast<EventStreamClient*>(self)->Feed(data, size * count);
    return size * count;
}

void EventStreamClient::Feed(const char* data, std::size_t size) {
    partial.append(data, size);
    std::size_t end;
    while ((end = partial.find("\n\n")) != std::string::npos) {
        const std::string frame = partial.substr(0, end);
        partial.erase(0, end + 2);
        Event event;
        bool comment = false;
        std::size_t start = 0;
        while (start <= frame.size()) {
            const auto lineEnd = std::min(frame.find('\n', start), frame.size());
            const std::string line = frame.substr(start, lineEnd - start);
            start = lineEnd + 1;
            if (line.rfind(':', 0) == 0) {
                comment = true;
            } else if (line.rfind("event: ", 0) == 0) {
                event.type = line.substr(7);
            } else if (line.rfind("data: ", 0) == 0) {
                event.data += line.substr(6);
            }
        }
        std::lock_guard lock(mutex);
        if (!event.type.empty() || !event.data.empty()) {
            events.push_back(std::move(event));
        } else if (comment) {
            ++comments;
        }
        changed.notify_all();
    }
}

bool EventStreamClient::WaitFor(const std::function<bool(const Event&)>& match,
                                std::chrono::milliseconds timeout) {
    std::unique_lock lock(mutex);
    return changed.wait_for(lock, timeout,
                            [&] { return std::any_of(events.begin(), events.end(), match); });
}

bool EventStreamClient::WaitForComment(std::chrono::milliseconds timeout) {
    std::unique_lock lock(mutex);
    return changed.wait_for(lock, timeout, [&] { return comments > 0 || ended; }) && comments > 0;
}

bool EventStreamClient::WaitForEnd(std::chrono::milliseconds timeout) {
    std::unique_lock lock(mutex);
    return changed.wait_for(lock, timeout, [&] { return ended; });
}

std::vector<EventStreamClient::Event> EventStreamClient::Events() {
    std::lock_guard lock(mutex);
    return events;
}

long EventStreamClient::Status() {
    std::lock_guard lock(mutex);
    return status;
}

std::string EventStreamClient::ContentType() {
    std::lock_guard lock(mutex);
    return contentType;
}

}  // namespace testsupport
