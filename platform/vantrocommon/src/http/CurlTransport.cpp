#include <vantrocommon/http/CurlTransport.h>

#include <curl/curl.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <exception>
#include <fstream>
#include <map>
#include <mutex>
#include <optional>
#include <sstream>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include <kelcore/async/Executors.h>
#include <kelcore/async/Promise.h>
#include <kelcore/config/ErrorHandling.h>
#include <kelcore/config/kel_exception.h>
#include <kelcore/debug/Trace.h>
#include <kelcore/logging/Logging.h>

#include <vantrocommon/ResultCodes.h>

#include "detail/HeaderNames.h"
#include "detail/LoggableUrl.h"

namespace vantrocommon::http {
namespace {

using kelcore::config::ResultCode;

constexpr std::string_view kTraceCategory = "vantrocommon";
constexpr int kTraceLevel = 5;
// curl_multi_poll returns earlier for curl's own timers and for wake-ups; this only bounds a
// wait with nothing to do.
constexpr int kLongestPollMilliseconds = 1000;

void InitialiseCurlOnce() {
    // curl_global_init is not thread-safe; a function-local static runs it exactly once.
    static const CURLcode result = curl_global_init(CURL_GLOBAL_DEFAULT);
    if (result != CURLE_OK) {
        kelcore::config::ThrowError(std::string("libcurl could not start: ") +
                                    curl_easy_strerror(result));
    }
}

std::string ReadWholeFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        return {};
    }
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

// Setting CURLOPT_CAINFO would replace the system's bundle, and the extra CA is meant to be
// trusted besides it. So the system bundle and the extra file are joined into one PEM blob
// (CURLOPT_CAINFO_BLOB); libcurl's CA directory, when it has one, stays in effect as well.
std::string TrustedCertificates(const std::string& extraCaFile) {
    if (extraCaFile.empty()) {
        return {};
    }
    const std::string extra = ReadWholeFile(extraCaFile);
    if (extra.empty()) {
        kelcore::logging::LogWarning(
            "CurlTransport: the extra CA file could not be read; only the system's "
            "certificates are trusted");
        return {};
    }
    std::string blob;
    if (const char* system = curl_version_info(CURLVERSION_NOW)->cainfo) {
        blob = ReadWholeFile(system);
        blob += '\n';
    }
    blob += extra;
    return blob;
}

/// A failed exchange as the future will report it.
struct Failure {
    ResultCode code;
    std::string text;
};

ResultCode ResultOfCurlCode(CURLcode code) {
    switch (code) {
        case CURLE_OPERATION_TIMEDOUT:
            return kResultTimedOut;
        case CURLE_PEER_FAILED_VERIFICATION:
        case CURLE_SSL_CONNECT_ERROR:
        case CURLE_SSL_CERTPROBLEM:
        case CURLE_SSL_CIPHER:
        case CURLE_SSL_CACERT_BADFILE:
        case CURLE_SSL_ISSUER_ERROR:
        case CURLE_SSL_PINNEDPUBKEYNOTMATCH:
        case CURLE_SSL_INVALIDCERTSTATUS:
        case CURLE_SSL_CRL_BADFILE:
        case CURLE_SSL_ENGINE_NOTFOUND:
        case CURLE_SSL_ENGINE_SETFAILED:
        case CURLE_SSL_ENGINE_INITFAILED:
        case CURLE_USE_SSL_FAILED:
            return kResultTlsFailure;
        case CURLE_UNSUPPORTED_PROTOCOL:
        case CURLE_URL_MALFORMAT:
            return kResultInvalidArgument;
        default:
            // Refused, reset, dropped, an empty or broken reply: the exchange did not finish.
            return kResultNetworkFailure;
    }
}

// One request from Send to completion. The fields below `promise` belong to the I/O thread
// once the exchange is queued; the cancel flag is the only one written elsewhere.
struct Exchange {
    Request request;
    CancellationToken cancel;
    std::uint64_t cancelRegistration = 0;
    std::shared_ptr<kelcore::threads::AsyncExecutor> executor;
    kelcore::async::Promise<Reply> promise;
    std::atomic<bool> cancelRequested{false};

    CURL* easy = nullptr;
    curl_slist* headerList = nullptr;
    int fd = -1;
    // A body sent through the read callback: a file range, or a string for PUT.
    std::uint64_t bodyOffset = 0;
    std::uint64_t bodyLength = 0;
    std::uint64_t bodyPosition = 0;
    std::optional<std::string> fileProblem;
    std::uint64_t progressReported = 0;
    // Whether the body goes to request.onBodyData; decided at its first bytes.
    std::optional<bool> bodyStreamed;
    std::string lastHeaderName;
    Reply reply;
    std::array<char, CURL_ERROR_SIZE> errorText{};
    std::chrono::steady_clock::time_point started = std::chrono::steady_clock::now();

    Exchange(Request request, CancellationToken cancel,
             std::shared_ptr<kelcore::threads::AsyncExecutor> executor)
        : request(std::move(request)),
          cancel(std::move(cancel)),
          executor(executor),
          promise(std::move(executor)) {}

    ~Exchange() { ReleaseResources(); }
    Exchange(const Exchange&) = delete;
    Exchange& operator=(const Exchange&) = delete;

    /// The easy handle must already be out of the multi handle.
    void ReleaseResources() {
        if (easy != nullptr) {
            curl_easy_cleanup(std::exchange(easy, nullptr));
        }
        if (headerList != nullptr) {
            curl_slist_free_all(std::exchange(headerList, nullptr));
        }
        if (fd >= 0) {
            ::close(std::exchange(fd, -1));
        }
    }

    /// "METHOD url-without-query".
    std::string Describe() const { return request.method + " " + detail::LoggableUrl(request.url); }

    bool HasHeader(std::string_view name) const {
        const auto upper = detail::UpperCaseHeaderName(name);
        return std::any_of(request.headers.begin(), request.headers.end(), [&](const auto& field) {
            return detail::UpperCaseHeaderName(field.first) == upper;
        });
    }
};

std::string_view TrimSpaces(std::string_view text) {
    const auto first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos) {
        return {};
    }
    const auto last = text.find_last_not_of(" \t");
    return text.substr(first, last - first + 1);
}

// Every curl callback catches everything: an exception must not unwind through C code.

std::size_t OnHeaderLine(char* data, std::size_t size, std::size_t count, void* user) noexcept {
    auto& exchange = *static_cast<Exchange*>(user);
    const std::size_t length = size * count;
    try {
        std::string_view line(data, length);
        while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) {
            line.remove_suffix(1);
        }
        if (line.starts_with("HTTP/")) {
            // A new status line: what came before was an interim (1xx) answer's.
            exchange.reply.headers.clear();
            exchange.lastHeaderName.clear();
        } else if (!line.empty() && (line.front() == ' ' || line.front() == '\t')) {
            if (!exchange.lastHeaderName.empty()) {
                auto& value = exchange.reply.headers[exchange.lastHeaderName];
                value += ' ';
                value += TrimSpaces(line);
            }
        } else if (const auto colon = line.find(':'); colon != std::string_view::npos) {
            auto name = detail::UpperCaseHeaderName(TrimSpaces(line.substr(0, colon)));
            const auto value = TrimSpaces(line.substr(colon + 1));
            auto [field, inserted] = exchange.reply.headers.try_emplace(name, value);
            if (!inserted) {
                field->second += ", ";
                field->second += value;
            }
            exchange.lastHeaderName = std::move(name);
        }
        return length;
    } catch (...) {
        return 0;  // aborts the exchange
    }
}

void StreamBody(Exchange& exchange, std::string_view chunk) noexcept {
    try {
        exchange.request.onBodyData(chunk);
    } catch (const std::exception& e) {
        kelcore::logging::LogException("CurlTransport body callback", e);
    } catch (...) {
        kelcore::logging::LogError("CurlTransport body callback: unknown exception");
    }
}

std::size_t OnBodyBytes(char* data, std::size_t size, std::size_t count, void* user) noexcept {
    auto& exchange = *static_cast<Exchange*>(user);
    try {
        if (!exchange.bodyStreamed && exchange.request.onBodyData) {
            // Decided at the first bytes, when the final status is known: only a successful
            // answer is streamed, so an error's body still reaches the caller in the Reply.
            long status = 0;
            curl_easy_getinfo(exchange.easy, CURLINFO_RESPONSE_CODE, &status);
            exchange.bodyStreamed = status >= 200 && status < 300;
            if (!*exchange.bodyStreamed) {
                exchange.request.onBodyData = nullptr;
            }
        }
        if (exchange.bodyStreamed.value_or(false)) {
            StreamBody(exchange, std::string_view(data, size * count));
        } else {
            exchange.reply.body.append(data, size * count);
        }
        return size * count;
    } catch (...) {
        return 0;  // aborts the exchange
    }
}

std::size_t OnReadBody(char* buffer, std::size_t size, std::size_t count, void* user) noexcept {
    auto& exchange = *static_cast<Exchange*>(user);
    const std::size_t wanted = static_cast<std::size_t>(
        std::min<std::uint64_t>(size * count, exchange.bodyLength - exchange.bodyPosition));
    if (wanted == 0) {
        return 0;
    }
    if (exchange.fd < 0) {
        const auto& text = std::get<std::string>(exchange.request.body);
        std::memcpy(buffer, text.data() + exchange.bodyPosition, wanted);
        exchange.bodyPosition += wanted;
        return wanted;
    }
    ssize_t got = 0;
    do {
        got = ::pread(exchange.fd, buffer, wanted,
                      static_cast<off_t>(exchange.bodyOffset + exchange.bodyPosition));
    } while (got < 0 && errno == EINTR);
    if (got <= 0) {
        try {
            exchange.fileProblem =
                got < 0 ? std::string("the body's file could not be read: ") + std::strerror(errno)
                        : std::string("the body's file ended before its range");
        } catch (...) {
        }
        return CURL_READFUNC_ABORT;
    }
    exchange.bodyPosition += static_cast<std::uint64_t>(got);
    return static_cast<std::size_t>(got);
}

int OnSeekBody(void* user, curl_off_t offset, int origin) noexcept {
    auto& exchange = *static_cast<Exchange*>(user);
    if (origin != SEEK_SET || offset < 0 ||
        static_cast<std::uint64_t>(offset) > exchange.bodyLength) {
        return CURL_SEEKFUNC_CANTSEEK;
    }
    exchange.bodyPosition = static_cast<std::uint64_t>(offset);
    return CURL_SEEKFUNC_OK;
}

void ReportProgress(Exchange& exchange, std::uint64_t sent) noexcept {
    if (sent <= exchange.progressReported || !exchange.request.onBodyProgress) {
        return;
    }
    exchange.progressReported = sent;
    try {
        exchange.request.onBodyProgress(sent);
    } catch (const std::exception& e) {
        kelcore::logging::LogException("CurlTransport progress callback", e);
    } catch (...) {
        kelcore::logging::LogError("CurlTransport progress callback: unknown exception");
    }
}

int OnTransferInfo(void* user, curl_off_t, curl_off_t, curl_off_t, curl_off_t sent) noexcept {
    ReportProgress(*static_cast<Exchange*>(user),
                   static_cast<std::uint64_t>(std::max<curl_off_t>(0, sent)));
    return 0;
}

std::string HttpVersionName(long version) {
    switch (version) {
        case CURL_HTTP_VERSION_1_0:
            return "1.0";
        case CURL_HTTP_VERSION_1_1:
            return "1.1";
        case CURL_HTTP_VERSION_2_0:
            return "2";
        case CURL_HTTP_VERSION_3:
            return "3";
        default:
            return {};
    }
}

template <class Value>
void SetOption(CURL* easy, CURLoption option, Value value) {
    if (const CURLcode code = curl_easy_setopt(easy, option, value); code != CURLE_OK) {
        throw Failure{kResultNetworkFailure, curl_easy_strerror(code)};
    }
}

// The state the I/O thread shares with the transport and with cancellation callbacks. Those
// callbacks may outlive the transport, so they hold it weakly; it owns the multi handle, which
// therefore lives as long as anyone may still wake it.
class Loop {
public:
    explicit Loop(CurlTransport::Options options)
        : options(std::move(options)),
          trustedCertificates(TrustedCertificates(this->options.caFile)),
          multi(curl_multi_init()) {
        if (multi == nullptr) {
            kelcore::config::ThrowError("libcurl could not make a multi handle");
        }
        curl_multi_setopt(multi, CURLMOPT_PIPELINING, CURLPIPE_MULTIPLEX);
        curl_multi_setopt(multi, CURLMOPT_MAX_HOST_CONNECTIONS,
                          std::max(1L, this->options.maxConnectionsPerHost));
    }
    ~Loop() { curl_multi_cleanup(multi); }
    Loop(const Loop&) = delete;
    Loop& operator=(const Loop&) = delete;

    /// Any thread. Queues `exchange` for the I/O thread; false once the loop is stopping.
    bool Queue(std::shared_ptr<Exchange> exchange) {
        {
            std::lock_guard lock(mutex);
            if (stopping) {
                return false;
            }
            arrived.push_back(std::move(exchange));
        }
        Wake();
        return true;
    }
    /// Any thread. Makes Run finish every exchange as cancelled and return.
    void Stop() {
        {
            std::lock_guard lock(mutex);
            stopping = true;
        }
        Wake();
    }
    /// Any thread. Makes the I/O thread look at its queue and cancellations.
    void Wake() { curl_multi_wakeup(multi); }
    /// Any thread.
    long ConnectionsOpened() const { return connectionsOpened.load(); }
    /// The I/O thread's loop; returns once stopped, with every exchange finished.
    void Run();

private:
    /// I/O thread. Prepares the easy handle; throws a Failure when the request cannot start.
    void Prepare(Exchange& exchange) const;
    /// I/O thread. Takes the exchange out of curl and posts its outcome to its executor.
    void Finish(const std::shared_ptr<Exchange>& exchange, std::optional<Failure> failure);

    const CurlTransport::Options options;
    const std::string trustedCertificates;
    CURLM* const multi;
    std::atomic<long> connectionsOpened{0};

    std::mutex mutex;
    std::vector<std::shared_ptr<Exchange>> arrived;  // guarded by mutex
    bool stopping = false;                           // guarded by mutex
};

void Loop::Prepare(Exchange& exchange) const {
    exchange.easy = curl_easy_init();
    if (exchange.easy == nullptr) {
        throw Failure{kResultNetworkFailure, "libcurl could not make a handle"};
    }
    CURL* easy = exchange.easy;
    const Request& request = exchange.request;
    SetOption(easy, CURLOPT_PRIVATE, &exchange);
    SetOption(easy, CURLOPT_ERRORBUFFER, exchange.errorText.data());
    SetOption(easy, CURLOPT_URL, request.url.c_str());
    SetOption(easy, CURLOPT_PROTOCOLS_STR, "http,https");
    SetOption(easy, CURLOPT_NOSIGNAL, 1L);
    SetOption(easy, CURLOPT_FOLLOWLOCATION, 0L);
    SetOption(easy, CURLOPT_USERAGENT, options.userAgent.c_str());
    SetOption(easy, CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_2TLS));
    if (request.url.starts_with("https:")) {
        // Waiting for a connection that may multiplex beats opening a second one.
        SetOption(easy, CURLOPT_PIPEWAIT, 1L);
    }
    SetOption(easy, CURLOPT_SSL_VERIFYPEER, 1L);
    SetOption(easy, CURLOPT_SSL_VERIFYHOST, 2L);
    if (!trustedCertificates.empty()) {
        curl_blob blob{const_cast<char*>(trustedCertificates.data()), trustedCertificates.size(),
                       CURL_BLOB_NOCOPY};
        SetOption(easy, CURLOPT_CAINFO_BLOB, &blob);
    }

    if (request.connectTimeout.count() > 0) {
        SetOption(easy, CURLOPT_CONNECTTIMEOUT_MS,
                  static_cast<long>(request.connectTimeout.count()));
    }
    if (request.timeout.count() > 0) {
        SetOption(easy, CURLOPT_TIMEOUT_MS, static_cast<long>(request.timeout.count()));
    }
    if (request.stallTimeout.count() > 0) {
        // Below one byte a second for the whole period means nothing moved.
        const long seconds = static_cast<long>((request.stallTimeout.count() + 999) / 1000);
        SetOption(easy, CURLOPT_LOW_SPEED_LIMIT, 1L);
        SetOption(easy, CURLOPT_LOW_SPEED_TIME, std::max(1L, seconds));
    }

    SetOption(easy, CURLOPT_HEADERFUNCTION, &OnHeaderLine);
    SetOption(easy, CURLOPT_HEADERDATA, &exchange);
    SetOption(easy, CURLOPT_WRITEFUNCTION, &OnBodyBytes);
    SetOption(easy, CURLOPT_WRITEDATA, &exchange);
    if (request.onBodyProgress) {
        SetOption(easy, CURLOPT_NOPROGRESS, 0L);
        SetOption(easy, CURLOPT_XFERINFOFUNCTION, &OnTransferInfo);
        SetOption(easy, CURLOPT_XFERINFODATA, &exchange);
    }

    // The body decides what curl would send by itself (GET, POST or PUT); any other method is
    // named outright.
    const std::string& method = request.method;
    const bool isPut = method == "PUT";
    const bool streamed = isPut || std::holds_alternative<FileRange>(request.body);
    std::string defaultMethod = "GET";
    if (const auto* range = std::get_if<FileRange>(&request.body)) {
        exchange.fd = ::open(range->path.c_str(), O_RDONLY | O_CLOEXEC);
        if (exchange.fd < 0) {
            throw Failure{kResultFileError, std::string("the body's file could not be opened: ") +
                                                std::strerror(errno)};
        }
        struct stat status {};
        if (::fstat(exchange.fd, &status) != 0) {
            throw Failure{kResultFileError, std::string("the body's file could not be read: ") +
                                                std::strerror(errno)};
        }
        if (S_ISREG(status.st_mode) &&
            static_cast<std::uint64_t>(status.st_size) < range->offset + range->length) {
            throw Failure{kResultFileError, "the body's file is shorter than its range"};
        }
        exchange.bodyOffset = range->offset;
        exchange.bodyLength = range->length;
    } else if (const auto* text = std::get_if<std::string>(&request.body)) {
        exchange.bodyLength = text->size();
    }
    if (streamed) {
        SetOption(easy, CURLOPT_READFUNCTION, &OnReadBody);
        SetOption(easy, CURLOPT_READDATA, &exchange);
        SetOption(easy, CURLOPT_SEEKFUNCTION, &OnSeekBody);
        SetOption(easy, CURLOPT_SEEKDATA, &exchange);
        const auto length = static_cast<curl_off_t>(exchange.bodyLength);
        if (isPut) {
            SetOption(easy, CURLOPT_UPLOAD, 1L);
            SetOption(easy, CURLOPT_INFILESIZE_LARGE, length);
            defaultMethod = "PUT";
        } else {
            // POST without POSTFIELDS reads the body through the read callback.
            SetOption(easy, CURLOPT_POST, 1L);
            SetOption(easy, CURLOPT_POSTFIELDSIZE_LARGE, length);
            defaultMethod = "POST";
        }
    } else if (const auto* text = std::get_if<std::string>(&request.body);
               text || method == "POST") {
        static const char kEmpty[] = "";
        SetOption(easy, CURLOPT_POSTFIELDSIZE_LARGE,
                  static_cast<curl_off_t>(text ? text->size() : 0));
        SetOption(easy, CURLOPT_POSTFIELDS, text ? text->data() : kEmpty);
        defaultMethod = "POST";
    }
    if (method == "HEAD" && defaultMethod == "GET") {
        SetOption(easy, CURLOPT_NOBODY, 1L);
    } else if (method != defaultMethod) {
        SetOption(easy, CURLOPT_CUSTOMREQUEST, method.c_str());
    }

    const auto append = [&](const std::string& line) {
        curl_slist* grown = curl_slist_append(exchange.headerList, line.c_str());
        if (grown == nullptr) {
            throw Failure{kResultNetworkFailure, "libcurl could not store a header"};
        }
        exchange.headerList = grown;
    };
    for (const auto& [name, value] : request.headers) {
        // "Name:" would make curl drop the field; "Name;" sends it empty.
        append(value.empty() ? name + ";" : name + ": " + value);
    }
    if (!exchange.HasHeader("Expect")) {
        append("Expect:");  // no 100-continue round trip before a body
    }
    if (defaultMethod == "POST" && !exchange.HasHeader("Content-Type")) {
        append("Content-Type:");  // rather than curl's form-encoded default
    }
    SetOption(easy, CURLOPT_HTTPHEADER, exchange.headerList);
}

void Loop::Finish(const std::shared_ptr<Exchange>& exchange, std::optional<Failure> failure) {
    long connects = 0;
    curl_off_t sent = 0;
    curl_off_t received = 0;
    if (exchange->easy != nullptr) {
        curl_easy_getinfo(exchange->easy, CURLINFO_NUM_CONNECTS, &connects);
        curl_easy_getinfo(exchange->easy, CURLINFO_SIZE_UPLOAD_T, &sent);
        curl_easy_getinfo(exchange->easy, CURLINFO_SIZE_DOWNLOAD_T, &received);
        if (!failure) {
            long status = 0;
            long version = 0;
            curl_easy_getinfo(exchange->easy, CURLINFO_RESPONSE_CODE, &status);
            curl_easy_getinfo(exchange->easy, CURLINFO_HTTP_VERSION, &version);
            exchange->reply.status = static_cast<int>(status);
            exchange->reply.httpVersion = HttpVersionName(version);
            ReportProgress(*exchange, static_cast<std::uint64_t>(sent));
        }
        curl_multi_remove_handle(multi, exchange->easy);
    }
    exchange->ReleaseResources();
    exchange->cancel.RemoveOnCancel(exchange->cancelRegistration);
    connectionsOpened += connects;

    if (kelcore::debug::TraceEnabled(kTraceCategory, kTraceLevel)) {
        const auto elapsed = std::chrono::duration_cast<std::chrono::milliseconds>(
            std::chrono::steady_clock::now() - exchange->started);
        std::ostringstream line;
        line << exchange->Describe() << ' ';
        if (failure) {
            line << "failed (0x" << std::hex << static_cast<std::uint32_t>(failure->code)
                 << std::dec << ')';
        } else {
            line << exchange->reply.status;
        }
        line << ", " << sent << " bytes sent, " << received << " received, " << elapsed.count()
             << " ms";
        kelcore::debug::Trace(kTraceCategory, kTraceLevel, line.str());
    }

    // Completion always goes through the executor: never on this thread, never inside Send.
    auto promise = std::make_shared<kelcore::async::Promise<Reply>>(std::move(exchange->promise));
    try {
        if (failure) {
            auto error = std::make_exception_ptr(kelcore::config::kel_exception(
                exchange->Describe() + ": " + failure->text, failure->code));
            exchange->executor->Post([promise, error] { promise->SetException(error); });
        } else {
            exchange->executor->Post([promise, reply = std::move(exchange->reply)]() mutable {
                promise->SetValue(std::move(reply));
            });
        }
    } catch (const std::exception& e) {
        // The promise goes with the task, which cancels the future.
        kelcore::logging::LogException("CurlTransport", e);
    }
}

void Loop::Run() {
    std::map<CURL*, std::shared_ptr<Exchange>> active;
    const auto cancelled = [](std::string text) {
        return std::optional<Failure>(Failure{kResultCancelled, std::move(text)});
    };
    for (;;) {
        std::vector<std::shared_ptr<Exchange>> incoming;
        bool stop = false;
        {
            std::lock_guard lock(mutex);
            incoming.swap(arrived);
            stop = stopping;
        }
        for (auto& exchange : incoming) {
            if (stop) {
                Finish(exchange, cancelled("the transport was closed"));
                continue;
            }
            if (exchange->cancelRequested.load()) {
                Finish(exchange, cancelled("cancelled"));
                continue;
            }
            try {
                Prepare(*exchange);
            } catch (const Failure& failure) {
                Finish(exchange, failure);
                continue;
            }
            if (const CURLMcode code = curl_multi_add_handle(multi, exchange->easy);
                code != CURLM_OK) {
                curl_easy_cleanup(std::exchange(exchange->easy, nullptr));
                Finish(exchange, Failure{kResultNetworkFailure, curl_multi_strerror(code)});
                continue;
            }
            active.emplace(exchange->easy, exchange);
        }
        if (stop) {
            for (auto& [easy, exchange] : active) {
                Finish(exchange, cancelled("the transport was closed"));
            }
            return;
        }
        for (auto it = active.begin(); it != active.end();) {
            if (it->second->cancelRequested.load()) {
                const auto exchange = it->second;
                it = active.erase(it);
                Finish(exchange, cancelled("cancelled"));
            } else {
                ++it;
            }
        }

        int running = 0;
        curl_multi_perform(multi, &running);
        int left = 0;
        while (CURLMsg* message = curl_multi_info_read(multi, &left)) {
            if (message->msg != CURLMSG_DONE) {
                continue;
            }
            const auto found = active.find(message->easy_handle);
            if (found == active.end()) {
                continue;
            }
            const CURLcode code = message->data.result;  // the message dies with the handle
            const auto exchange = found->second;
            active.erase(found);
            std::optional<Failure> failure;
            if (exchange->fileProblem) {
                failure = Failure{kResultFileError, *exchange->fileProblem};
            } else if (code != CURLE_OK) {
                std::string text = exchange->errorText[0] != '\0' ? exchange->errorText.data()
                                                                  : curl_easy_strerror(code);
                while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) {
                    text.pop_back();
                }
                failure = Failure{ResultOfCurlCode(code), std::move(text)};
            }
            Finish(exchange, std::move(failure));
        }
        curl_multi_poll(multi, nullptr, 0, kLongestPollMilliseconds, nullptr);
    }
}

}  // namespace

struct CurlTransport::Impl {
    std::shared_ptr<Loop> loop;
    std::shared_ptr<kelcore::threads::AsyncExecutor> executor;
    std::thread thread;
};

std::shared_ptr<CurlTransport> CurlTransport::Create(Options options) {
    // The constructor is private so that every transport is shared: callers hand it to
    // several clients, and its futures may complete after any one of them is gone.
    return std::shared_ptr<CurlTransport>(new CurlTransport(std::move(options)));
}

CurlTransport::CurlTransport(Options options) : impl(std::make_unique<Impl>()) {
    InitialiseCurlOnce();
    impl->executor = options.executor;
    impl->loop = std::make_shared<Loop>(std::move(options));
    // The thread holds the loop too, so the loop outlives it whatever order things end in.
    impl->thread = std::thread([loop = impl->loop] { loop->Run(); });
}

CurlTransport::~CurlTransport() {
    impl->loop->Stop();
    if (impl->thread.get_id() == std::this_thread::get_id()) {
        // Only a progress callback runs on the I/O thread, and it must not own the transport;
        // should it, the loop still ends on its own after this return.
        impl->thread.detach();
    } else {
        impl->thread.join();
    }
}

kelcore::async::Future<Reply> CurlTransport::Send(Request request, CancellationToken cancel) {
    auto executor = impl->executor ? impl->executor : kelcore::async::GetDefaultExecutor();
    auto exchange = std::make_shared<Exchange>(std::move(request), cancel, std::move(executor));
    auto future = exchange->promise.GetFuture();
    // The callback may run on any thread, at once when the token is already cancelled, and
    // after the transport is gone: it only raises a flag and wakes the loop, both held weakly.
    exchange->cancelRegistration =
        cancel.OnCancel([weakExchange = std::weak_ptr<Exchange>(exchange),
                         weakLoop = std::weak_ptr<Loop>(impl->loop)] {
            if (auto cancelled = weakExchange.lock()) {
                cancelled->cancelRequested = true;
            }
            if (auto loop = weakLoop.lock()) {
                loop->Wake();
            }
        });
    if (!impl->loop->Queue(exchange)) {
        cancel.RemoveOnCancel(exchange->cancelRegistration);
        auto promise =
            std::make_shared<kelcore::async::Promise<Reply>>(std::move(exchange->promise));
        auto error = std::make_exception_ptr(kelcore::config::kel_exception(
            exchange->Describe() + ": the transport was closed", kResultCancelled));
        exchange->executor->Post([promise, error] { promise->SetException(error); });
    }
    return future;
}

long CurlTransport::ConnectionsOpened() const {
    return impl->loop->ConnectionsOpened();
}

}  // namespace vantrocommon::http
