#include "support/PartUploader.h"

#include <curl/curl.h>
#include <fcntl.h>
#include <openssl/evp.h>
#include <unistd.h>

#include <algorithm>
#include <memory>
#include <stdexcept>

namespace testsupport {

namespace {

struct Transfer {
    const PartUploader::Part* part = nullptr;
    int descriptor = -1;
    std::uint64_t sent = 0;
    PartUploader::Reply reply;
    curl_slist* headers = nullptr;
    char error[CURL_ERROR_SIZE] = {};
};

std::size_t ReadBody(char* buffer, std::size_t size, std::size_t count, void* user) {
    auto& transfer = *static_cast<Transfer*>(user);
    const auto& part = *transfer.part;
    std::uint64_t limit = part.size;
    if (part.abortAfter) {
        if (transfer.sent >= *part.abortAfter) {
            return CURL_READFUNC_ABORT;
        }
        limit = *part.abortAfter;
    }
    const std::size_t wanted =
        static_cast<std::size_t>(std::min<std::uint64_t>(size * count, limit - transfer.sent));
    if (wanted == 0) {
        return 0;
    }
    const ssize_t got = ::pread(transfer.descriptor, buffer, wanted,
                                static_cast<off_t>(part.offset + transfer.sent));
    if (got <= 0) {
        return CURL_READFUNC_ABORT;
    }
    transfer.sent += static_cast<std::uint64_t>(got);
    return static_cast<std::size_t>(got);
}

std::size_t WriteBody(char* data, std::size_t size, std::size_t count, void* user) {
    static_cast<Transfer*>(user)->reply.body.append(data, size * count);
    return size * count;
}

std::string Hex(const unsigned char* digest, unsigned int length) {
    static constexpr char kDigits[] = "0123456789abcdef";
    std::string hex;
    for (unsigned int i = 0; i < length; ++i) {
        hex.push_back(kDigits[digest[i] >> 4]);
        hex.push_back(kDigits[digest[i] & 0x0f]);
    }
    return hex;
}

}  // namespace

std::vector<PartUploader::Reply> PartUploader::PutAll(const std::vector<Part>& parts) const {
    std::vector<std::unique_ptr<Transfer>> transfers;
    CURLM* multi = curl_multi_init();
    const std::string authorization = "Authorization: Bearer " + accessToken;
    for (const Part& part : parts) {
        auto transfer = std::make_unique<Transfer>();
        transfer->part = &part;
        transfer->descriptor = ::open(part.source.c_str(), O_RDONLY | O_CLOEXEC);
        if (transfer->descriptor < 0) {
            throw std::runtime_error("cannot open " + part.source.string());
        }
        transfer->headers = curl_slist_append(transfer->headers, authorization.c_str());
        transfer->headers =
            curl_slist_append(transfer->headers, ("X-Content-SHA256: " + part.sha256).c_str());
        // No 100-continue round trip: the parts go straight out.
        transfer->headers = curl_slist_append(transfer->headers, "Expect:");
        CURL* easy = curl_easy_init();
        curl_easy_setopt(easy, CURLOPT_URL, part.url.c_str());
        curl_easy_setopt(easy, CURLOPT_UPLOAD, 1L);
        curl_easy_setopt(easy, CURLOPT_INFILESIZE_LARGE, static_cast<curl_off_t>(part.size));
        curl_easy_setopt(easy, CURLOPT_READFUNCTION, &ReadBody);
        curl_easy_setopt(easy, CURLOPT_READDATA, transfer.get());
        curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, &WriteBody);
        curl_easy_setopt(easy, CURLOPT_WRITEDATA, transfer.get());
        curl_easy_setopt(easy, CURLOPT_HTTPHEADER, transfer->headers);
        curl_easy_setopt(easy, CURLOPT_ERRORBUFFER, transfer->error);
        curl_easy_setopt(easy, CURLOPT_PRIVATE, transfer.get());
        curl_easy_setopt(easy, CURLOPT_TIMEOUT, 120L);
        curl_easy_setopt(easy, CURLOPT_UPLOAD_BUFFERSIZE, 512L * 1024);
        curl_multi_add_handle(multi, easy);
        transfers.push_back(std::move(transfer));
    }
    int running = 0;
    do {
        curl_multi_perform(multi, &running);
        if (running > 0) {
            curl_multi_poll(multi, nullptr, 0, 1000, nullptr);
        }
    } while (running > 0);
    int queued = 0;
    while (CURLMsg* message = curl_multi_info_read(multi, &queued)) {
        if (message->msg != CURLMSG_DONE) {
            continue;
        }
        CURL* easy = message->easy_handle;
        Transfer* transfer = nullptr;
        curl_easy_getinfo(easy, CURLINFO_PRIVATE, &transfer);
        if (message->data.result == CURLE_OK) {
            curl_easy_getinfo(easy, CURLINFO_RESPONSE_CODE, &transfer->reply.status);
        } else {
            transfer->reply.transportError = transfer->error[0] != '\0'
                                                 ? transfer->error
                                                 : curl_easy_strerror(message->data.result);
        }
        curl_multi_remove_handle(multi, easy);
        curl_easy_cleanup(easy);
    }
    curl_multi_cleanup(multi);
    std::vector<Reply> replies;
    for (auto& transfer : transfers) {
        ::close(transfer->descriptor);
        curl_slist_free_all(transfer->headers);
        replies.push_back(std::move(transfer->reply));
    }
    return replies;
}

std::string PartUploader::Sha256OfFile(const std::filesystem::path& file, std::uint64_t offset,
                                       std::uint64_t size) {
    const int descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) {
        throw std::runtime_error("cannot open " + file.string());
    }
    EVP_MD_CTX* context = EVP_MD_CTX_new();
    EVP_DigestInit_ex(context, EVP_sha256(), nullptr);
    std::vector<char> block(1 << 20);
    while (size > 0) {
        const std::size_t wanted =
            static_cast<std::size_t>(std::min<std::uint64_t>(size, block.size()));
        const ssize_t got = ::pread(descriptor, block.data(), wanted, static_cast<off_t>(offset));
        if (got <= 0) {
            break;
        }
        EVP_DigestUpdate(context, block.data(), static_cast<std::size_t>(got));
        offset += static_cast<std::uint64_t>(got);
        size -= static_cast<std::uint64_t>(got);
    }
    ::close(descriptor);
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned int length = 0;
    EVP_DigestFinal_ex(context, digest, &length);
    EVP_MD_CTX_free(context);
    return Hex(digest, length);
}

std::string PartUploader::Sha256(const std::string& data) {
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned int length = 0;
    EVP_Digest(data.data(), data.size(), digest, &length, EVP_sha256(), nullptr);
    return Hex(digest, length);
}

}  // namespace testsupport
