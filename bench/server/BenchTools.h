// The small tools every upload benchmark needs: seconds and MB/s, a file of random bytes to
// send, number flags with their usage text, and the baseline they all compare against, the file
// in one plain PUT through libcurl. Header-only, like BenchWorld.h, so the bench glob does not
// make it a program. The calling thread.
//
//   std::uint64_t sizeMiB = 1024;
//   const bench::NumberFlag flags[] = {{"--size-mib", &sizeMiB, "the file's size in MiB"}};
//   if (!bench::ParseNumberFlags(argc, argv, flags, help)) ...
//   const double baseline = bench::PlainPut(base + "/test/sink", source, size);
#pragma once

#include <curl/curl.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <span>
#include <string>
#include <vector>

namespace vantroserver::bench {

using Clock = std::chrono::steady_clock;

inline constexpr std::uint64_t kMiB = 1024 * 1024;

inline double Seconds(Clock::duration duration) {
    return std::chrono::duration<double>(duration).count();
}

inline double MegabytesPerSecond(std::uint64_t bytes, double seconds) {
    return static_cast<double>(bytes) / 1e6 / seconds;
}

/// `size` random bytes at `path` (xorshift: cheap, and nothing for a filesystem to compress or
/// skip). False when the file cannot be written.
inline bool WriteRandomFile(const std::filesystem::path& path, std::uint64_t size) {
    const int out = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (out < 0) {
        return false;
    }
    std::vector<std::uint64_t> block(kMiB / sizeof(std::uint64_t));
    std::uint64_t state = 0x9e3779b97f4a7c15ULL;
    for (std::uint64_t written = 0; written < size; written += kMiB) {
        for (auto& word : block) {
            state ^= state << 13;
            state ^= state >> 7;
            state ^= state << 17;
            word = state;
        }
        const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(kMiB, size - written));
        if (::write(out, block.data(), count) != static_cast<ssize_t>(count)) {
            ::close(out);
            return false;
        }
    }
    return ::close(out) == 0;
}

/// A flag `--name N` taking a whole number above 0; `value` holds the default until parsed.
struct NumberFlag {
    const char* name;
    std::uint64_t* value;
    const char* help;
};

/// The usage line and one line per flag with its default, on stdout.
inline void PrintUsage(const char* program, std::span<const NumberFlag> flags) {
    std::printf("usage: %s", program);
    for (const NumberFlag& flag : flags) {
        std::printf(" [%s N]", flag.name);
    }
    std::printf("\n");
    for (const NumberFlag& flag : flags) {
        std::printf("  %-20s %s (default %llu)\n", (std::string(flag.name) + " N").c_str(),
                    flag.help, static_cast<unsigned long long>(*flag.value));
    }
}

/// Reads the flags into their values; false (after saying why on stderr) when they are not
/// understood. `help` is set for --help or -h.
inline bool ParseNumberFlags(int argc, char** argv, std::span<const NumberFlag> flags, bool& help) {
    for (int i = 1; i < argc; ++i) {
        const std::string name = argv[i];
        if (name == "--help" || name == "-h") {
            help = true;
            return true;
        }
        const auto flag = std::find_if(flags.begin(), flags.end(),
                                       [&](const NumberFlag& known) { return name == known.name; });
        if (flag == flags.end()) {
            std::fprintf(stderr, "unknown argument %s\n", name.c_str());
            return false;
        }
        if (i + 1 >= argc) {
            std::fprintf(stderr, "%s needs a number\n", name.c_str());
            return false;
        }
        const std::string text = argv[++i];
        std::uint64_t value = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
        if (error != std::errc() || end != text.data() + text.size() || value == 0) {
            std::fprintf(stderr, "%s needs a whole number above 0, not %s\n", name.c_str(),
                         text.c_str());
            return false;
        }
        *flag->value = value;
    }
    return true;
}

/// The baseline: the file in one PUT through libcurl's easy interface, as plainly as it comes
/// (to the server's /test/sink, which only counts the bytes). The seconds it took, or a
/// negative number on failure (said on stderr).
inline double PlainPut(const std::string& url, const std::filesystem::path& source,
                       std::uint64_t size) {
    FILE* file = std::fopen(source.c_str(), "rb");
    if (!file) {
        return -1;
    }
    CURL* curl = curl_easy_init();
    curl_slist* headers = curl_slist_append(nullptr, "Expect:");
    curl_easy_setopt(curl, CURLOPT_URL, url.c_str());
    curl_easy_setopt(curl, CURLOPT_UPLOAD, 1L);
    curl_easy_setopt(curl, CURLOPT_READDATA, file);
    curl_easy_setopt(curl, CURLOPT_INFILESIZE_LARGE, static_cast<curl_off_t>(size));
    curl_easy_setopt(curl, CURLOPT_HTTPHEADER, headers);
    curl_easy_setopt(
        curl, CURLOPT_WRITEFUNCTION,
        +[](char*, std::size_t itemSize, std::size_t count, void*) { return itemSize * count; });
    const auto start = Clock::now();
    const CURLcode result = curl_easy_perform(curl);
    const double seconds = Seconds(Clock::now() - start);
    long status = 0;
    curl_easy_getinfo(curl, CURLINFO_RESPONSE_CODE, &status);
    curl_slist_free_all(headers);
    curl_easy_cleanup(curl);
    std::fclose(file);
    if (result != CURLE_OK || status != 201) {
        std::fprintf(stderr, "plain PUT failed: %s, status %ld\n", curl_easy_strerror(result),
                     status);
        return -1;
    }
    return seconds;
}

}  // namespace vantroserver::bench
