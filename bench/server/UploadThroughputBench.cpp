// Upload throughput of the review server over loopback: a file (1 GiB by default) uploaded
// through the upload API in two ways, each against the same file streamed in one plain libcurl
// PUT to /test/sink (the baseline: one body written to disk, no checksums), measured once in the
// same run:
//   - a few large parts (4 by default), all sent in parallel;
//   - the client's usual shape: 8 MiB parts, at most 4 in flight, a new one starting as soon
//     as another is answered.
// The client's SHA-256 of each part and of the whole file is computed first and not timed;
// create + parts + complete are. Prints MB/s for each and the ratios chunked / plain. Any error
// fails the run.
//
//   build/release/bin/UploadThroughputBench [--size-mib N] [--parallel-parts N]
//                                           [--part-mib N] [--in-flight N]
#include <curl/curl.h>
#include <fcntl.h>
#include <openssl/evp.h>
#include <unistd.h>

#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "BenchTools.h"
#include "BenchWorld.h"
#include "http/Server.h"
#include "store/DataDirectory.h"

namespace {

using namespace vantroserver;
using bench::Clock;
using bench::kMiB;
using bench::MegabytesPerSecond;
using bench::Seconds;

std::string Hex(const unsigned char* digest, unsigned int length) {
    static constexpr char kDigits[] = "0123456789abcdef";
    std::string hex;
    for (unsigned int i = 0; i < length; ++i) {
        hex.push_back(kDigits[digest[i] >> 4]);
        hex.push_back(kDigits[digest[i] & 0x0f]);
    }
    return hex;
}

/// SHA-256 of `size` bytes of the file from `offset`, as hex.
std::string Sha256Of(int descriptor, std::uint64_t offset, std::uint64_t size) {
    EVP_MD_CTX* context = EVP_MD_CTX_new();
    EVP_DigestInit_ex(context, EVP_sha256(), nullptr);
    std::vector<char> block(4 * kMiB);
    while (size > 0) {
        const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(size, block.size()));
        const ssize_t got = ::pread(descriptor, block.data(), wanted, static_cast<off_t>(offset));
        if (got <= 0) {
            break;
        }
        EVP_DigestUpdate(context, block.data(), static_cast<std::size_t>(got));
        offset += static_cast<std::uint64_t>(got);
        size -= static_cast<std::uint64_t>(got);
    }
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned int length = 0;
    EVP_DigestFinal_ex(context, digest, &length);
    EVP_MD_CTX_free(context);
    return Hex(digest, length);
}

struct Part {
    std::string url;
    std::uint64_t offset = 0;
    std::uint64_t size = 0;
    std::uint64_t sent = 0;
    std::string sha256;
    int descriptor = -1;
    std::string answer;
    long status = 0;
    curl_slist* headers = nullptr;
};

std::size_t ReadPart(char* buffer, std::size_t size, std::size_t count, void* user) {
    auto& part = *static_cast<Part*>(user);
    const auto wanted =
        static_cast<std::size_t>(std::min<std::uint64_t>(size * count, part.size - part.sent));
    if (wanted == 0) {
        return 0;
    }
    const ssize_t got =
        ::pread(part.descriptor, buffer, wanted, static_cast<off_t>(part.offset + part.sent));
    if (got <= 0) {
        return CURL_READFUNC_ABORT;
    }
    part.sent += static_cast<std::uint64_t>(got);
    return static_cast<std::size_t>(got);
}

std::size_t Append(char* data, std::size_t size, std::size_t count, void* out) {
    static_cast<std::string*>(out)->append(data, size * count);
    return size * count;
}

/// One JSON request; the status and answer.
std::pair<long, std::string> Request(const std::string& method, const std::string& url,
                                     const std::string& authorization, const std::string& body) {
    CURL* curl = curl_easy_init();
    curl_slist* headers = curl_slist_append(nullptr, authorization.c_str());
    headers = curl_slist_append(headers, "Content-Type: application/json");
    std::string answer;
    curl_easy_setopt(curl, CURLOPT_URL, url.c_str());
    curl_easy_setopt(curl, CURLOPT_CUSTOMREQUEST, method.c_str());
    curl_easy_setopt(curl, CURLOPT_HTTPHEADER, headers);
    curl_easy_setopt(curl, CURLOPT_POSTFIELDS, body.c_str());
    curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, &Append);
    curl_easy_setopt(curl, CURLOPT_WRITEDATA, &answer);
    long status = 0;
    if (curl_easy_perform(curl) == CURLE_OK) {
        curl_easy_getinfo(curl, CURLINFO_RESPONSE_CODE, &status);
    }
    curl_slist_free_all(headers);
    curl_easy_cleanup(curl);
    return {status, answer};
}

/// Sends the parts with at most `inFlight` of them under way, a new one starting as soon as
/// another is answered; true when each answered 200.
bool SendParts(std::vector<Part>& parts, std::size_t inFlight, const std::string& authorization) {
    CURLM* multi = curl_multi_init();
    std::size_t next = 0;
    std::size_t active = 0;
    auto start = [&](Part& part) {
        part.headers = curl_slist_append(nullptr, authorization.c_str());
        part.headers =
            curl_slist_append(part.headers, ("X-Content-SHA256: " + part.sha256).c_str());
        part.headers = curl_slist_append(part.headers, "Expect:");
        CURL* easy = curl_easy_init();
        curl_easy_setopt(easy, CURLOPT_URL, part.url.c_str());
        curl_easy_setopt(easy, CURLOPT_UPLOAD, 1L);
        curl_easy_setopt(easy, CURLOPT_INFILESIZE_LARGE, static_cast<curl_off_t>(part.size));
        curl_easy_setopt(easy, CURLOPT_READFUNCTION, &ReadPart);
        curl_easy_setopt(easy, CURLOPT_READDATA, &part);
        curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, &Append);
        curl_easy_setopt(easy, CURLOPT_WRITEDATA, &part.answer);
        curl_easy_setopt(easy, CURLOPT_HTTPHEADER, part.headers);
        curl_easy_setopt(easy, CURLOPT_PRIVATE, &part);
        curl_easy_setopt(easy, CURLOPT_UPLOAD_BUFFERSIZE, 2L * 1024 * 1024);
        curl_multi_add_handle(multi, easy);
        ++active;
    };
    while (next < parts.size() && active < inFlight) {
        start(parts[next++]);
    }
    bool ok = true;
    while (active > 0) {
        int running = 0;
        curl_multi_perform(multi, &running);
        int queued = 0;
        while (CURLMsg* message = curl_multi_info_read(multi, &queued)) {
            if (message->msg != CURLMSG_DONE) {
                continue;
            }
            Part* part = nullptr;
            curl_easy_getinfo(message->easy_handle, CURLINFO_PRIVATE, &part);
            if (message->data.result == CURLE_OK) {
                curl_easy_getinfo(message->easy_handle, CURLINFO_RESPONSE_CODE, &part->status);
            }
            if (part->status != 200) {
                std::fprintf(stderr, "part at %llu: %ld %s\n",
                             static_cast<unsigned long long>(part->offset), part->status,
                             part->answer.c_str());
                ok = false;
            }
            curl_multi_remove_handle(multi, message->easy_handle);
            curl_easy_cleanup(message->easy_handle);
            --active;
            if (ok && next < parts.size()) {
                start(parts[next++]);
            }
        }
        if (active > 0 && running > 0) {
            curl_multi_poll(multi, nullptr, 0, 1000, nullptr);
        }
    }
    curl_multi_cleanup(multi);
    for (Part& part : parts) {
        curl_slist_free_all(part.headers);
    }
    return ok;
}

struct ChunkedResult {
    double seconds = 0;
    double completeSeconds = 0;
};

/// One upload of the source file through the upload API in parts of `partSize`, at most
/// `inFlight` under way; nullopt (after saying why) on any error.
std::optional<ChunkedResult> UploadInParts(const std::string& base,
                                           const std::string& authorization,
                                           const std::string& folderId, int descriptor,
                                           std::uint64_t size, std::uint64_t partSize,
                                           std::size_t inFlight, const std::string& whole,
                                           const std::string& name) {
    const std::uint64_t partCount = (size + partSize - 1) / partSize;
    std::vector<Part> parts(partCount);
    for (std::uint64_t i = 0; i < partCount; ++i) {
        parts[i].offset = i * partSize;
        parts[i].size = std::min(partSize, size - parts[i].offset);
        parts[i].descriptor = descriptor;
    }
    // The client's part checksums, before the clock starts.
    {
        std::vector<std::thread> hashers;
        const std::uint64_t threads = std::min<std::uint64_t>(4, partCount);
        for (std::uint64_t t = 0; t < threads; ++t) {
            hashers.emplace_back([&parts, descriptor, t, threads] {
                for (std::size_t i = t; i < parts.size(); i += threads) {
                    parts[i].sha256 = Sha256Of(descriptor, parts[i].offset, parts[i].size);
                }
            });
        }
        for (auto& hasher : hashers) {
            hasher.join();
        }
    }

    const auto start = Clock::now();
    const auto [createStatus, created] =
        Request("POST", base + "/v2/assets/" + folderId + "/uploads", authorization,
                boost::json::serialize(boost::json::object{
                    {"name", name}, {"filesize", size}, {"part_size", partSize}}));
    if (createStatus != 201) {
        std::fprintf(stderr, "create failed: %ld %s\n", createStatus, created.c_str());
        return std::nullopt;
    }
    const std::string uploadId(boost::json::parse(created).at("upload_id").as_string());
    for (std::uint64_t i = 0; i < partCount; ++i) {
        parts[i].url = base + "/v2/uploads/" + uploadId + "/parts/" + std::to_string(i + 1);
    }
    if (!SendParts(parts, inFlight, authorization)) {
        return std::nullopt;
    }
    const auto partsDone = Clock::now();
    const auto [completeStatus, completed] =
        Request("POST", base + "/v2/uploads/" + uploadId + "/complete", authorization,
                boost::json::serialize(boost::json::object{{"sha256", whole}}));
    const auto end = Clock::now();
    if (completeStatus != 201) {
        std::fprintf(stderr, "complete failed: %ld %s\n", completeStatus, completed.c_str());
        return std::nullopt;
    }
    return ChunkedResult{Seconds(end - start), Seconds(end - partsDone)};
}

}  // namespace

int main(int argc, char** argv) {
    struct {
        std::uint64_t sizeMiB = 1024;
        std::uint64_t parallelParts = 4;
        std::uint64_t partMiB = 8;
        std::uint64_t inFlight = 4;
    } flags;
    const bench::NumberFlag known[] = {
        {"--size-mib", &flags.sizeMiB, "the file's size in MiB"},
        {"--parallel-parts", &flags.parallelParts,
         "the first case: the file in N parts, all sent at once"},
        {"--part-mib", &flags.partMiB, "the second case: parts of N MiB"},
        {"--in-flight", &flags.inFlight, "the second case: at most N parts under way"},
    };
    bool help = false;
    if (!bench::ParseNumberFlags(argc, argv, known, help)) {
        bench::PrintUsage(argv[0], known);
        return 2;
    }
    if (help) {
        bench::PrintUsage(argv[0], known);
        return 0;
    }
    const std::uint64_t size = flags.sizeMiB * kMiB;
    curl_global_init(CURL_GLOBAL_DEFAULT);

    auto world = bench::BenchWorld::Create();
    const auto& root = world.root;
    const auto& dataDir = world.dataDir;
    const auto& project = world.project;
    const std::string& authorization = world.authorization;

    const auto source = root / "source.mov";
    if (!bench::WriteRandomFile(source, size)) {
        std::fprintf(stderr, "cannot write the source file\n");
        return 1;
    }

    http::ServeOptions options;
    options.dataDir = dataDir;
    options.listenAddress = "127.0.0.1";
    options.enableTestHooks = true;
    http::Server server(options);
    const unsigned short port = server.Start();
    const std::string base = "http://127.0.0.1:" + std::to_string(port);
    const std::uint64_t parallelPartSize = (size + flags.parallelParts - 1) / flags.parallelParts;
    const std::uint64_t partSize = std::min(size, flags.partMiB * kMiB);
    std::printf("vantro-server uploads of %llu MiB vs one plain PUT\n",
                static_cast<unsigned long long>(flags.sizeMiB));

    const double plainSeconds = bench::PlainPut(base + "/test/sink", source, size);
    if (plainSeconds < 0) {
        return 1;
    }
    const double plain = MegabytesPerSecond(size, plainSeconds);
    std::printf("plain    (libcurl PUT, /test/sink): %8.1f MB/s  (%.2f s)\n", plain, plainSeconds);

    const int descriptor = ::open(source.c_str(), O_RDONLY | O_CLOEXEC);
    const auto hashStart = Clock::now();
    const std::string whole = Sha256Of(descriptor, 0, size);
    std::printf("client's whole-file checksum (not timed below): %.2f s\n",
                Seconds(Clock::now() - hashStart));

    struct Case {
        std::string label;
        std::uint64_t partSize;
        std::size_t inFlight;
    };
    const std::vector<Case> cases{
        {std::to_string((size + parallelPartSize - 1) / parallelPartSize) + " x " +
             std::to_string(parallelPartSize / kMiB) + " MiB, all at once",
         parallelPartSize, static_cast<std::size_t>(flags.parallelParts)},
        {std::to_string((size + partSize - 1) / partSize) + " x " +
             std::to_string(partSize / kMiB) + " MiB, " + std::to_string(flags.inFlight) +
             " in flight",
         partSize, static_cast<std::size_t>(flags.inFlight)},
    };
    std::vector<double> ratios;
    for (const Case& run : cases) {
        const auto result = UploadInParts(base, authorization, project.rootAssetId, descriptor,
                                          size, run.partSize, run.inFlight, whole,
                                          "source-" + std::to_string(ratios.size() + 1) + ".mov");
        if (!result) {
            ::close(descriptor);
            return 1;
        }
        const double chunked = MegabytesPerSecond(size, result->seconds);
        std::printf("chunked  (%s): %8.1f MB/s  (%.2f s, of which complete %.2f s)\n",
                    run.label.c_str(), chunked, result->seconds, result->completeSeconds);
        ratios.push_back(chunked / plain);
    }
    ::close(descriptor);
    for (std::size_t i = 0; i < cases.size(); ++i) {
        std::printf("chunked / plain, %s: %.2f\n", cases[i].label.c_str(), ratios[i]);
    }

    server.Stop();
    std::filesystem::remove_all(root);
    curl_global_cleanup();
    return 0;
}
