// What the share pipeline adds to an upload: a file (100 MiB) sent over loopback to the review
// server run in-process, (a) by the bare TransferManager::Upload into a new version stack (the
// baseline: from the call to its future's completion) and (b) through the pipeline, from
// model::StartUpload of a job to the moment the panel's CurrentViewID becomes 10 (the link is
// ready): the same upload plus the pipeline's progress callbacks and estimates, the values stored
// with the sequence, the asset added to the new review link, the temporary file deleted and the
// properties' deliveries pumped on the main thread. The link is made and the job submitted before
// the clock starts, as the encoder's render would come in between.
//
// The two run in alternating rounds, so that load from elsewhere on the machine falls on both;
// each round is one Google Benchmark entry with manual time. At the end the program prints both
// means and medians and the ratio pipeline / baseline (goal: under 1.05). Any failure ends the
// run.
//
//   build/e2e-release/bin/ShareUploadBench [--size-mib N] [--rounds N] [benchmark flags]
#include <stdlib.h>

#include <algorithm>
#include <atomic>
#include <charconv>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <numeric>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include <benchmark/benchmark.h>
#include <curl/curl.h>

#include <kelcore/string/String.h>
#include <kelcore/threads/MainThread.h>
#include <kelcore/threads/MainThreadQueue.h>
#include <kelcore/utility/EnableSharedAs.h>
#include <kelcore/utility/Guid.h>
#include <vantrocommon/Guid.h>
#include <vantrocommon/ServiceEndpoint.h>
#include <vantrokelui/model/EncoderPresetModel.h>
#include <vantrokelui/model/EncodingStatus.h>
#include <vantrokelui/model/SequenceSettings.h>
#include <vantrokelui/model/ShareModel.h>
#include <vantrokelui/model/connector/SdkClient.h>
#include <vantrosdk/TransferManager.h>
#include <vantrosdk/UploadRequest.h>
#include <vantrosdk/UploadResponse.h>
#include <vantrosdk/VantroClient.h>
#include <vantrosdk/VantroConfig.h>

#include "http/Server.h"
#include "server/BenchTools.h"
#include "server/BenchWorld.h"

namespace {

namespace model = vantrokelui::model;
using kelcore::string::StdToUTF16String;
using kelcore::string::string;
using kelcore::utility::Guid;
using vantroserver::bench::Clock;

using vantroserver::bench::kMiB;
constexpr auto kWaitLimit = std::chrono::minutes(5);

// The panel's eleven properties, as the view model owns them. The screen's setter notes the
// moment the pipeline shows the link, on whichever thread it runs.
class BenchPanel final : public vantrokelui::ActiveAssetNameNotifyingProperty,
                         public vantrokelui::ReviewLinkURLNotifyingProperty,
                         public vantrokelui::CurrentViewIDNotifyingProperty,
                         public vantrokelui::EncodingStatusNotifyingProperty,
                         public vantrokelui::EncodingProgressNotifyingProperty,
                         public vantrokelui::ProcessingRemainingTimeNotifyingProperty,
                         public vantrokelui::UploadingSpeedNotifyingProperty,
                         public vantrokelui::EncoderPresetsNotifyingProperty,
                         public vantrokelui::SelectedEncoderPresetNotifyingProperty,
                         public vantrokelui::ActiveAssetDirtyNotifyingProperty,
                         public vantrokelui::CreateNewLinkModeNotifyingProperty,
                         public virtual kelcore::utility::EnableSharedAs {
public:
    void SetCurrentViewID(vantrokelui::ShareForReviewViewID view) override {
        if (view == vantrokelui::ShareForReviewViewID::CopyLinkSection) {
            const std::lock_guard lock(mutex);
            linkShownAt = Clock::now();
        }
        CurrentViewIDNotifyingProperty::SetCurrentViewID(view);
    }

    void ForgetLink() {
        const std::lock_guard lock(mutex);
        linkShownAt.reset();
    }
    std::optional<Clock::time_point> LinkShownAt() const {
        const std::lock_guard lock(mutex);
        return linkShownAt;
    }

private:
    mutable std::mutex mutex;
    std::optional<Clock::time_point> linkShownAt;
};

// The host: one sequence's values in memory, and an encoder that only takes note of the job
// (the bench puts the rendered file in place itself).
struct BenchHost {
    std::mutex mutex;
    std::map<string, string> values;               // the one sequence's
    std::optional<std::pair<string, string>> job;  // output path, job id
};

struct World {
    std::filesystem::path root;
    std::filesystem::path source;
    std::uint64_t size = 0;
    std::string folder;
    std::string project;
    std::unique_ptr<vantroserver::http::Server> server;
    std::shared_ptr<kelcore::threads::MainThreadQueue> queue;
    std::shared_ptr<BenchPanel> panel;
    std::shared_ptr<BenchHost> host;
    const Guid projectGuid = Guid::CreateUnique();
    const Guid sequenceGuid = Guid::CreateUnique();
    std::vector<double> baseline;
    std::vector<double> pipeline;
    bool failed = false;
};

World& TheWorld() {
    static World world;
    return world;
}

void Fail(benchmark::State& state, const std::string& why) {
    TheWorld().failed = true;
    state.SkipWithError(why.c_str());
}

// The bare upload: the seconds from the call to the future's completion, or nothing on failure.
std::optional<double> BareUpload(const World& world) {
    vantrosdk::UploadRequest request(vantrocommon::Guid(world.folder), world.source.string(), {});
    request.SetAutoversionId(vantrocommon::Guid(Guid::CreateUnique().AsStdString()));
    vantrocommon::Guid transfer;
    std::mutex mutex;
    std::condition_variable done;
    bool complete = false;
    Clock::time_point end;
    const auto start = Clock::now();
    const auto answer =
        vantrosdk::VantroClient::Get()->GetTransferManager()->Upload(request, transfer);
    answer.Then([&](const auto&) {
        const std::lock_guard lock(mutex);
        end = Clock::now();
        complete = true;
        done.notify_all();
    });
    {
        std::unique_lock lock(mutex);
        if (!done.wait_for(lock, kWaitLimit, [&] { return complete; })) {
            return std::nullopt;
        }
    }
    if (kelcore::async::ResultOf(answer) != 0 || !answer.Get()->IsSuccessful() ||
        answer.Get()->GetAssetObject().filesize != world.size) {
        return std::nullopt;
    }
    return std::chrono::duration<double>(end - start).count();
}

void InstallHost(World& world) {
    auto host = std::make_shared<BenchHost>();
    world.host = host;
    world.panel = std::make_shared<BenchPanel>();
    const Guid project = world.projectGuid;
    const Guid sequence = world.sequenceGuid;
    model::SetAssetDataMethods(
        [project, sequence](Guid& p, Guid& s) {
            p = project;
            s = sequence;
            return true;
        },
        [host](const Guid&, const Guid&, const string& key, string& value) {
            const std::lock_guard lock(host->mutex);
            const auto found = host->values.find(key);
            if (found == host->values.end()) {
                return false;
            }
            value = found->second;
            return true;
        },
        [host](const Guid&, const Guid&, const string& key, const string& value) {
            const std::lock_guard lock(host->mutex);
            host->values[key] = value;
            return true;
        },
        [host](const Guid&, const Guid&, const string& key) {
            const std::lock_guard lock(host->mutex);
            host->values.erase(key);
            return true;
        });
    model::SetAssetProcessingMethod(
        [host](const string& outputFilePath, const string& jobID, const string&) {
            {
                const std::lock_guard lock(host->mutex);
                host->job = std::make_pair(outputFilePath, jobID);
            }
            kelcore::threads::AsyncCallFromMainThread([] {});
        },
        [](const string&) {});
    const auto& panel = world.panel;
    model::SetNotifyingProperties(
        [] {}, std::weak_ptr<vantrokelui::ActiveAssetNameNotifyingProperty>(panel),
        std::weak_ptr<vantrokelui::ActiveAssetDirtyNotifyingProperty>(panel),
        std::weak_ptr<vantrokelui::ReviewLinkURLNotifyingProperty>(panel),
        std::weak_ptr<vantrokelui::CurrentViewIDNotifyingProperty>(panel),
        std::weak_ptr<vantrokelui::EncodingStatusNotifyingProperty>(panel),
        std::weak_ptr<vantrokelui::EncodingProgressNotifyingProperty>(panel),
        std::weak_ptr<vantrokelui::ProcessingRemainingTimeNotifyingProperty>(panel),
        std::weak_ptr<vantrokelui::UploadingSpeedNotifyingProperty>(panel),
        std::weak_ptr<vantrokelui::EncoderPresetsNotifyingProperty>(panel),
        std::weak_ptr<vantrokelui::SelectedEncoderPresetNotifyingProperty>(panel),
        std::weak_ptr<vantrokelui::CreateNewLinkModeNotifyingProperty>(panel));
    model::SetEncoderPresets({{u"H.264 Match Source", u"/presets/h264.epr", u"mp4"}});
    panel->SetActiveAssetName(u"Share Bench");
    const auto set = [host](const Guid&, const Guid&, const string& key, const string& value) {
        const std::lock_guard lock(host->mutex);
        host->values[key] = value;
        return true;
    };
    model::SetSequenceGuid(set, project, sequence, model::kUploadFolderGuidKey, Guid(world.folder));
    model::SetSequenceString(set, project, sequence, model::kUploadFolderPathKey, u"Bench/Project");
    model::SetSequenceGuid(set, project, sequence, model::kUploadFolderParentProjGuidKey,
                           Guid(world.project));
}

// Submits a first share (a new link, made now) and puts the rendered file at the job's output
// path; the job's id, or nothing on failure.
std::optional<string> SubmitJob(World& world) {
    {
        const std::lock_guard lock(world.host->mutex);
        for (const auto key : {model::kUploadedAssetGuidKey, model::kVersionStackGuidKey,
                               model::kReviewLinkGuidKey, model::kReviewLinkURLKey}) {
            world.host->values.erase(string(key));
        }
        world.host->job.reset();
    }
    world.panel->ForgetLink();
    model::ProcessAssetForReview();
    const bool queued = world.queue->PumpUntil(
        [&] {
            const std::lock_guard lock(world.host->mutex);
            return world.host->job.has_value();
        },
        kWaitLimit);
    if (!queued) {
        return std::nullopt;
    }
    std::pair<string, string> job;
    {
        const std::lock_guard lock(world.host->mutex);
        job = *world.host->job;
    }
    // The encoder's output: a hard link to the source costs nothing and reads from the same
    // cached pages as the baseline. The pipeline deletes it at the end.
    const std::filesystem::path output(kelcore::string::UTF16toStdString(job.first));
    std::error_code error;
    std::filesystem::remove(output, error);
    std::filesystem::create_hard_link(world.source, output, error);
    if (error) {
        return std::nullopt;
    }
    model::SetShareJobEncodingStatusForJob(vantrokelui::EncodingStatus::Encoded, job.second);
    model::SetShareJobEncodingStatusForJob(vantrokelui::EncodingStatus::Uploading, job.second);
    model::SetCurrentActiveSequenceAndProperties();
    world.queue->RunUntilEmpty();
    return job.second;
}

// StartUpload to the link on screen: the seconds, or nothing on failure.
std::optional<double> PipelineUpload(World& world, const string& jobID) {
    const auto start = Clock::now();
    model::StartUpload(jobID);
    const bool shown =
        world.queue->PumpUntil([&] { return world.panel->LinkShownAt().has_value(); }, kWaitLimit);
    if (!shown) {
        return std::nullopt;
    }
    const double seconds =
        std::chrono::duration<double>(*world.panel->LinkShownAt() - start).count();
    world.queue->RunUntilEmpty();
    return seconds;
}

void BM_BareTransferManagerUpload(benchmark::State& state) {
    World& world = TheWorld();
    for (auto _ : state) {
        const auto seconds = BareUpload(world);
        if (!seconds) {
            Fail(state, "the bare upload failed");
            return;
        }
        state.SetIterationTime(*seconds);
        world.baseline.push_back(*seconds);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * world.size));
}

void BM_PipelineStartUploadToLink(benchmark::State& state) {
    World& world = TheWorld();
    for (auto _ : state) {
        state.PauseTiming();
        const auto jobID = SubmitJob(world);
        state.ResumeTiming();
        if (!jobID) {
            Fail(state, "the share was not submitted");
            return;
        }
        const auto seconds = PipelineUpload(world, *jobID);
        if (!seconds) {
            Fail(state, "the pipeline never showed the link");
            return;
        }
        state.SetIterationTime(*seconds);
        world.pipeline.push_back(*seconds);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * world.size));
}

struct Flags {
    std::uint64_t sizeMiB = 100;
    int rounds = 10;
};

// Takes this program's own flags out of argv, leaving Google Benchmark's.
bool TakeFlags(int& argc, char** argv, Flags& flags) {
    int kept = 1;
    for (int i = 1; i < argc; ++i) {
        const std::string flag = argv[i];
        if ((flag == "--size-mib" || flag == "--rounds") && i + 1 < argc) {
            const std::string text = argv[++i];
            std::uint64_t value = 0;
            const auto [end, error] =
                std::from_chars(text.data(), text.data() + text.size(), value);
            if (error != std::errc() || end != text.data() + text.size() || value == 0) {
                std::fprintf(stderr, "%s needs a whole number above 0\n", flag.c_str());
                return false;
            }
            if (flag == "--size-mib") {
                flags.sizeMiB = value;
            } else {
                flags.rounds = static_cast<int>(value);
            }
            continue;
        }
        argv[kept++] = argv[i];
    }
    argc = kept;
    return true;
}

double Mean(const std::vector<double>& values) {
    return std::accumulate(values.begin(), values.end(), 0.0) / static_cast<double>(values.size());
}

double Median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    const std::size_t middle = values.size() / 2;
    return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

}  // namespace

int main(int argc, char** argv) {
    Flags flags;
    if (!TakeFlags(argc, argv, flags)) {
        return 2;
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 2;
    }
    curl_global_init(CURL_GLOBAL_DEFAULT);
    World& world = TheWorld();
    world.size = flags.sizeMiB * kMiB;

    auto bench = vantroserver::bench::BenchWorld::Create();
    world.root = bench.root;
    world.source = bench.root / "source.mp4";
    world.folder = bench.project.rootAssetId;
    world.project = bench.project.id;
    if (!vantroserver::bench::WriteRandomFile(world.source, world.size)) {
        std::fprintf(stderr, "cannot write the source file\n");
        return 1;
    }
    // The pipeline's temporary files go to the cache directory: keep it beside the source, on
    // the same file system, so the encoder's output can be a hard link.
    ::setenv("XDG_CACHE_HOME", (bench.root / "cache").c_str(), 1);

    vantroserver::http::ServeOptions options;
    options.dataDir = bench.dataDir;
    options.listenAddress = "127.0.0.1";
    world.server = std::make_unique<vantroserver::http::Server>(options);
    const std::string base = "http://127.0.0.1:" + std::to_string(world.server->Start());

    vantrosdk::VantroConfig config("vantrokelui-desktop");
    vantrocommon::ServiceEndpoint endpoint;
    endpoint.apiBase = base;
    endpoint.webBase = base;
    config.SetEndpoint(endpoint);
    if (!vantrosdk::VantroClient::Initialize(config, {}).IsSuccess()) {
        std::fprintf(stderr, "the SDK client could not be made\n");
        return 1;
    }
    const std::string bearer = "Bearer ";
    vantrosdk::VantroClient::Get()->UpdateAccessToken(
        bench.authorization.substr(bench.authorization.find(bearer) + bearer.size()));
    model::VantroConnectorIntegration::SetClient(vantrosdk::VantroClient::Get());

    kelcore::threads::SetMainThread();
    world.queue = std::make_shared<kelcore::threads::MainThreadQueue>();
    kelcore::threads::SetMainThreadDispatcher(world.queue);
    InstallHost(world);

    // One upload of each kind first, untimed: the server's files, the page cache and the
    // connections are then as warm for the first round as for the last.
    const auto warmJob = SubmitJob(world);
    if (!BareUpload(world) || !warmJob || !PipelineUpload(world, *warmJob)) {
        std::fprintf(stderr, "the warm-up uploads failed\n");
        return 1;
    }

    const std::string size = std::to_string(flags.sizeMiB) + "MiB";
    for (int round = 1; round <= flags.rounds; ++round) {
        const std::string suffix = "/" + size + "/round:" + std::to_string(round);
        benchmark::RegisterBenchmark(("BareTransferManagerUpload" + suffix).c_str(),
                                     BM_BareTransferManagerUpload)
            ->Iterations(1)
            ->UseManualTime()
            ->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark(("PipelineStartUploadToLink" + suffix).c_str(),
                                     BM_PipelineStartUploadToLink)
            ->Iterations(1)
            ->UseManualTime()
            ->Unit(benchmark::kMillisecond);
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();

    int status = world.failed ? 1 : 0;
    if (!world.failed && !world.baseline.empty() && !world.pipeline.empty()) {
        // Each round's pair ran back to back, so its ratio sees the same load on the machine;
        // the median of those ratios is the figure least moved by a busy neighbour.
        std::vector<double> ratios;
        for (std::size_t i = 0; i < std::min(world.baseline.size(), world.pipeline.size()); ++i) {
            ratios.push_back(world.pipeline[i] / world.baseline[i]);
        }
        std::printf("\n%llu MiB over loopback, %zu rounds:\n",
                    static_cast<unsigned long long>(flags.sizeMiB), ratios.size());
        std::printf("  bare TransferManager upload:  mean %.1f ms, median %.1f ms\n",
                    Mean(world.baseline) * 1e3, Median(world.baseline) * 1e3);
        std::printf("  pipeline StartUpload to link: mean %.1f ms, median %.1f ms\n",
                    Mean(world.pipeline) * 1e3, Median(world.pipeline) * 1e3);
        std::printf(
            "  pipeline / baseline: %.3f (means), %.3f (medians), %.3f (median of the rounds' "
            "ratios); goal under 1.05\n",
            Mean(world.pipeline) / Mean(world.baseline),
            Median(world.pipeline) / Median(world.baseline), Median(ratios));
        std::printf("  rounds, baseline (ms):");
        for (const double seconds : world.baseline) {
            std::printf(" %.1f", seconds * 1e3);
        }
        std::printf("\n  rounds, pipeline (ms):");
        for (const double seconds : world.pipeline) {
            std::printf(" %.1f", seconds * 1e3);
        }
        std::printf("\n");
    }

    kelcore::threads::SetMainThreadDispatcher(nullptr);
    world.panel.reset();
    model::VantroConnectorIntegration::ClearClient();
    vantrosdk::VantroClient::ResetForTesting();
    world.server->Stop();
    std::filesystem::remove_all(world.root);
    curl_global_cleanup();
    return status;
}
