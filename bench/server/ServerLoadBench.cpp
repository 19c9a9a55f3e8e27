// Load on the review server over loopback: 4 client threads each send 10,000 requests on their
// own keep-alive connection, first for a static file (the baseline: no token check, no query),
// then for a folder listing of the same byte size (token check, rate limiter, authorisation and
// paging queries, JSON). Reports requests/s and latency percentiles for both and their ratio.
// Any error (transport failure, status other than 200, wrong length) fails the run.
//
//   build/release/bin/ServerLoadBench [threads] [requests-per-thread]
#include <curl/curl.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>
#include <thread>
#include <vector>

#include "BenchWorld.h"
#include "http/Server.h"
#include "store/DataDirectory.h"

namespace {

using Clock = std::chrono::steady_clock;
using namespace vantroserver;

struct Result {
    std::string name;
    std::size_t requests = 0;
    std::size_t errors = 0;
    double seconds = 0;
    std::vector<double> latenciesMs;

    double Percentile(double p) const {
        if (latenciesMs.empty()) {
            return 0;
        }
        const auto index =
            static_cast<std::size_t>(p * static_cast<double>(latenciesMs.size() - 1));
        return latenciesMs[index];
    }
    double RequestsPerSecond() const { return static_cast<double>(requests) / seconds; }
};

std::size_t CountBody(char*, std::size_t size, std::size_t count, void* user) {
    *static_cast<std::size_t*>(user) += size * count;
    return size * count;
}

Result Run(const std::string& name, const std::string& url, const std::string& authorization,
           std::size_t expectedBytes, unsigned threads, std::size_t perThread) {
    Result result;
    result.name = name;
    std::vector<std::vector<double>> latencies(threads);
    std::atomic<std::size_t> errors{0};
    std::vector<std::thread> clients;
    const auto start = Clock::now();
    for (unsigned t = 0; t < threads; ++t) {
        clients.emplace_back([&, t] {
            CURL* curl = curl_easy_init();
            curl_slist* headers = nullptr;
            if (!authorization.empty()) {
                headers = curl_slist_append(headers, authorization.c_str());
            }
            std::size_t bytes = 0;
            curl_easy_setopt(curl, CURLOPT_URL, url.c_str());
            curl_easy_setopt(curl, CURLOPT_HTTPHEADER, headers);
            curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, CountBody);
            curl_easy_setopt(curl, CURLOPT_WRITEDATA, &bytes);
            curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);
            curl_easy_setopt(curl, CURLOPT_TCP_NODELAY, 1L);
            latencies[t].reserve(perThread);
            for (std::size_t i = 0; i < perThread; ++i) {
                bytes = 0;
                const auto sent = Clock::now();
                const CURLcode code = curl_easy_perform(curl);
                const auto done = Clock::now();
                long status = 0;
                curl_easy_getinfo(curl, CURLINFO_RESPONSE_CODE, &status);
                if (code != CURLE_OK || status != 200 || bytes != expectedBytes) {
                    if (errors.fetch_add(1) < 5) {
                        std::cerr << name << ": request failed: " << curl_easy_strerror(code)
                                  << ", status " << status << ", " << bytes << " bytes\n";
                    }
                }
                latencies[t].push_back(
                    std::chrono::duration<double, std::milli>(done - sent).count());
            }
            curl_slist_free_all(headers);
            curl_easy_cleanup(curl);
        });
    }
    for (auto& client : clients) {
        client.join();
    }
    result.seconds = std::chrono::duration<double>(Clock::now() - start).count();
    for (const auto& list : latencies) {
        result.latenciesMs.insert(result.latenciesMs.end(), list.begin(), list.end());
    }
    std::sort(result.latenciesMs.begin(), result.latenciesMs.end());
    result.requests = result.latenciesMs.size();
    result.errors = errors.load();
    return result;
}

void Print(const Result& r) {
    std::printf(
        "%-8s %7zu requests  %6zu errors  %8.0f req/s  p50 %6.3f ms  p99 %6.3f ms  "
        "max %7.3f ms\n",
        r.name.c_str(), r.requests, r.errors, r.RequestsPerSecond(), r.Percentile(0.50),
        r.Percentile(0.99), r.latenciesMs.empty() ? 0.0 : r.latenciesMs.back());
}

}  // namespace

int main(int argc, char** argv) {
    const unsigned threads = argc > 1 ? static_cast<unsigned>(std::stoul(argv[1])) : 4;
    const std::size_t perThread = argc > 2 ? std::stoul(argv[2]) : 10'000;
    curl_global_init(CURL_GLOBAL_DEFAULT);

    auto world = bench::BenchWorld::Create();
    const auto& root = world.root;
    const auto& dataDir = world.dataDir;
    const auto& directory = world.directory;
    const auto& store = world.store;
    const auto& project = world.project;
    const std::string& authorization = world.authorization;
    // A listing page of 50 children, a typical folder view.
    for (int i = 0; i < 50; ++i) {
        if (i % 2 == 0) {
            store->Assets().CreateFolder(project.rootAssetId, "folder " + std::to_string(i));
        } else {
            store->Assets().AddFile(project.rootAssetId, "clip " + std::to_string(i) + ".mov",
                                    1000 + i);
        }
    }

    http::ServeOptions options;
    options.dataDir = dataDir;
    options.listenAddress = "127.0.0.1";
    options.rateLimit = http::RateLimit{1'000'000'000, std::chrono::milliseconds(1000)};
    http::Server server(options);
    const unsigned short port = server.Start();
    const std::string base = "http://127.0.0.1:" + std::to_string(port);
    const std::string listing = base + "/v2/assets/" + project.rootAssetId + "/children";

    // The static baseline is the listing's own bytes, so both move the same payload.
    std::string listingBody;
    {
        CURL* curl = curl_easy_init();
        curl_slist* headers = curl_slist_append(nullptr, authorization.c_str());
        curl_easy_setopt(curl, CURLOPT_URL, listing.c_str());
        curl_easy_setopt(curl, CURLOPT_HTTPHEADER, headers);
        curl_easy_setopt(
            curl, CURLOPT_WRITEFUNCTION,
            +[](char* data, std::size_t size, std::size_t count, void* out) {
                static_cast<std::string*>(out)->append(data, size * count);
                return size * count;
            });
        curl_easy_setopt(curl, CURLOPT_WRITEDATA, &listingBody);
        curl_easy_perform(curl);
        curl_slist_free_all(headers);
        curl_easy_cleanup(curl);
    }
    std::filesystem::create_directories(directory.StaticDirectory());
    std::ofstream(directory.StaticDirectory() / "listing.json", std::ios::binary) << listingBody;

    std::printf("vantro-server load: %u threads x %zu requests, payload %zu bytes\n", threads,
                perThread, listingBody.size());
    const Result baseline =
        Run("static", base + "/static/listing.json", {}, listingBody.size(), threads, perThread);
    Print(baseline);
    const Result api =
        Run("listing", listing, authorization, listingBody.size(), threads, perThread);
    Print(api);
    std::printf("listing / static: throughput %.2fx, p99 latency %.2fx\n",
                api.RequestsPerSecond() / baseline.RequestsPerSecond(),
                api.Percentile(0.99) / baseline.Percentile(0.99));

    server.Stop();
    std::filesystem::remove_all(root);
    curl_global_cleanup();
    return baseline.errors + api.errors == 0 && !listingBody.empty() ? 0 : 1;
}
