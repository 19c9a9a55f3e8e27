// Upload throughput of the SDK's TransferManager over loopback, against the review server run
// in-process: a file (1 GiB by default) uploaded (a) as one plain libcurl PUT to /test/sink (the
// baseline: one body streamed to disk, no parts, no checksums) and (b) through
// TransferManager::Upload into the project's root folder, which hashes the file, sends its parts
// in parallel with their checksums and completes with the whole file's checksum. Both run in the
// same process, one after the other, from the page cache. Prints each time, when the SDK's parts
// were all acknowledged, and the ratio baseline time / SDK time. Any error fails the run.
//
//   build/release/bin/TransferManagerUploadBench [--size-mib N] [--part-mib N] [--in-flight N]
#include <curl/curl.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <atomic>
#include <charconv>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <filesystem>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <vantrocommon/Guid.h>
#include <vantrocommon/ServiceEndpoint.h>
#include <vantrosdk/TransferManager.h>
#include <vantrosdk/UploadRequest.h>
#include <vantrosdk/UploadResponse.h>
#include <vantrosdk/VantroClient.h>
#include <vantrosdk/VantroConfig.h>

#include "../server/BenchTools.h"
#include "../server/BenchWorld.h"
#include "http/Server.h"

namespace {

using vantroserver::bench::Clock;
using vantroserver::bench::kMiB;
using vantroserver::bench::MegabytesPerSecond;
using vantroserver::bench::Seconds;

/// CPU time of the whole process (client and in-process server), user and system.
double ProcessCpuSeconds() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

struct SdkRun {
    bool ok = false;
    double seconds = 0;
    double firstAcknowledged = 0;  ///< When the first part was acknowledged.
    double allAcknowledged = 0;    ///< When progress reached the file's size.
};

SdkRun UploadThroughSdk(const std::string& folder, const std::filesystem::path& source,
                        std::uint64_t size) {
    struct Progress {
        std::mutex mutex;
        std::optional<Clock::time_point> first;
        std::optional<Clock::time_point> all;
    } progress;
    const auto start = Clock::now();
    vantrosdk::UploadRequest request(vantrocommon::Guid(folder), source.string(),
                                     [&progress, size](std::uint64_t sent, std::uint64_t) {
                                         const auto now = Clock::now();
                                         std::lock_guard lock(progress.mutex);
                                         if (sent > 0 && !progress.first) {
                                             progress.first = now;
                                         }
                                         if (sent == size && !progress.all) {
                                             progress.all = now;
                                         }
                                     });
    vantrocommon::Guid transfer;
    const auto answer =
        vantrosdk::VantroClient::Get()->GetTransferManager()->Upload(request, transfer);

    std::mutex mutex;
    std::condition_variable done;
    bool complete = false;
    Clock::time_point end;
    answer.Then([&](const auto&) {
        std::lock_guard lock(mutex);
        end = Clock::now();
        complete = true;
        done.notify_all();
    });
    {
        std::unique_lock lock(mutex);
        done.wait(lock, [&] { return complete; });
    }
    SdkRun run;
    if (kelcore::async::ResultOf(answer) != 0) {
        std::fprintf(stderr, "SDK upload failed: code 0x%08x\n",
                     static_cast<unsigned>(kelcore::async::ResultOf(answer)));
        return run;
    }
    if (!answer.Get()->IsSuccessful() || !answer.Get()->GetAssetObject().id ||
        answer.Get()->GetAssetObject().filesize != size) {
        std::fprintf(stderr, "SDK upload refused: status %d\n", answer.Get()->GetHTTPStatusCode());
        return run;
    }
    std::lock_guard lock(progress.mutex);
    run.ok = true;
    run.seconds = Seconds(end - start);
    run.firstAcknowledged = progress.first ? Seconds(*progress.first - start) : 0;
    run.allAcknowledged = progress.all ? Seconds(*progress.all - start) : 0;
    return run;
}

}  // namespace

int main(int argc, char** argv) {
    struct {
        std::uint64_t sizeMiB = 1024;
        std::uint64_t partMiB = 8;
        std::uint64_t inFlight = 4;
    } flags;
    const vantroserver::bench::NumberFlag known[] = {
        {"--size-mib", &flags.sizeMiB, "the file's size in MiB"},
        {"--part-mib", &flags.partMiB, "the SDK's part size in MiB"},
        {"--in-flight", &flags.inFlight, "the SDK's parts in flight"},
    };
    bool help = false;
    if (!vantroserver::bench::ParseNumberFlags(argc, argv, known, help)) {
        vantroserver::bench::PrintUsage(argv[0], known);
        return 2;
    }
    if (help) {
        vantroserver::bench::PrintUsage(argv[0], known);
        return 0;
    }
    const std::uint64_t size = flags.sizeMiB * kMiB;
    curl_global_init(CURL_GLOBAL_DEFAULT);

    auto world = vantroserver::bench::BenchWorld::Create();
    const auto source = world.root / "source.mov";
    if (!vantroserver::bench::WriteRandomFile(source, size)) {
        std::fprintf(stderr, "cannot write the source file\n");
        return 1;
    }

    vantroserver::http::ServeOptions options;
    options.dataDir = world.dataDir;
    options.listenAddress = "127.0.0.1";
    options.enableTestHooks = true;
    vantroserver::http::Server server(options);
    const unsigned short port = server.Start();
    const std::string base = "http://127.0.0.1:" + std::to_string(port);

    vantrosdk::VantroConfig config("vantrokelui-desktop");
    vantrocommon::ServiceEndpoint endpoint;
    endpoint.apiBase = base;
    endpoint.webBase = base;
    config.SetEndpoint(endpoint);
    config.SetTransferPartSize(flags.partMiB * kMiB);
    config.SetTransferPartsInFlight(static_cast<int>(flags.inFlight));
    if (!vantrosdk::VantroClient::Initialize(config, {}).IsSuccess()) {
        std::fprintf(stderr, "the SDK client could not be made\n");
        return 1;
    }
    const std::string bearer = "Bearer ";
    const std::string token =
        world.authorization.substr(world.authorization.find(bearer) + bearer.size());
    vantrosdk::VantroClient::Get()->UpdateAccessToken(token);

    std::printf(
        "uploads of %llu MiB over loopback: one plain PUT vs TransferManager::Upload "
        "(%llu MiB parts, %llu in flight)\n",
        static_cast<unsigned long long>(flags.sizeMiB),
        static_cast<unsigned long long>(flags.partMiB),
        static_cast<unsigned long long>(flags.inFlight));

    const double plainCpuStart = ProcessCpuSeconds();
    const double plainSeconds = vantroserver::bench::PlainPut(base + "/test/sink", source, size);
    if (plainSeconds < 0) {
        return 1;
    }
    const double plainCpu = ProcessCpuSeconds() - plainCpuStart;
    std::printf("baseline (libcurl PUT, /test/sink): %8.1f MB/s  (%.2f s; %.2f s of CPU)\n",
                MegabytesPerSecond(size, plainSeconds), plainSeconds, plainCpu);

    const double sdkCpuStart = ProcessCpuSeconds();
    const SdkRun sdk = UploadThroughSdk(world.project.rootAssetId, source, size);
    if (!sdk.ok) {
        return 1;
    }
    const double sdkCpu = ProcessCpuSeconds() - sdkCpuStart;
    std::printf(
        "sdk      (TransferManager::Upload):  %8.1f MB/s  (%.2f s; first part "
        "acknowledged at %.2f s, all at %.2f s, completed %.2f s later)\n",
        MegabytesPerSecond(size, sdk.seconds), sdk.seconds, sdk.firstAcknowledged,
        sdk.allAcknowledged, sdk.seconds - sdk.allAcknowledged);
    std::printf("         CPU of client and server together: %.2f s over %.2f s (%u cores)\n",
                sdkCpu, sdk.seconds, std::thread::hardware_concurrency());
    std::printf("baseline time / sdk time: %.2f\n", plainSeconds / sdk.seconds);

    vantrosdk::VantroClient::ResetForTesting();
    server.Stop();
    std::filesystem::remove_all(world.root);
    curl_global_cleanup();
    return 0;
}
