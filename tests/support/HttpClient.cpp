#include "support/HttpClient.h"

#include <curl/curl.h>

#include <algorithm>
#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>
#include <cctype>
#include <mutex>
#include <stdexcept>

namespace testsupport {

namespace {

void InitCurlOnce() {
    static std::once_flag once;
    std::call_once(once, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
}

size_t AppendBody(char* data, size_t size, size_t count, void* user) {
    static_cast<std::string*>(user)->append(data, size * count);
    return size * count;
}

size_t AppendHeader(char* data, size_t size, size_t count, void* user) {
    auto* headers = static_cast<std::map<std::string, std::string>*>(user);
    std::string line(data, size * count);
    if (line.rfind("HTTP/", 0) == 0) {
        headers->clear();  // A new status line (after 100 Continue): start over.
        return size * count;
    }
    const auto colon = line.find(':');
    if (colon != std::string::npos) {
        std::string name = line.substr(0, colon);
        std::transform(name.begin(), name.end(), name.begin(),
                       [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
        std::string value = line.substr(colon + 1);
        value.erase(0, value.find_first_not_of(" \t"));
        value.erase(value.find_last_not_of(" \t\r\n") + 1);
        (*headers)[name] = value;
    }
    return size * count;
}

}  // namespace

struct HttpClient::Handle {
    CURL* curl = nullptr;
    Handle() {
        InitCurlOnce();
        curl = curl_easy_init();
        if (!curl) {
            throw std::runtime_error("curl_easy_init failed");
        }
    }
    ~Handle() { curl_easy_cleanup(curl); }
};

std::string HttpClient::Reply::Header(const std::string& name) const {
    const auto found = headers.find(name);
    return found == headers.end() ? std::string{} : found->second;
}

boost::json::value HttpClient::Reply::Json() const {
    return boost::json::parse(body);
}

HttpClient::HttpClient() : handle(std::make_unique<Handle>()) {}
HttpClient::~HttpClient() = default;

HttpClient::Reply HttpClient::Get(const std::string& url, const Headers& headers) {
    return Send("GET", url, {}, headers);
}

HttpClient::Reply HttpClient::Delete(const std::string& url, const Headers& headers) {
    return Send("DELETE", url, {}, headers);
}

HttpClient::Reply HttpClient::Post(const std::string& url, const std::string& body,
                                   const std::string& contentType, const Headers& headers) {
    Headers all = headers;
    all.emplace_back("Content-Type", contentType);
    return Send("POST", url, body, all);
}

HttpClient::Reply HttpClient::PostJson(const std::string& url, const boost::json::value& body,
                                       const Headers& headers) {
    return Post(url, boost::json::serialize(body), "application/json", headers);
}

HttpClient::Reply HttpClient::PostForm(const std::string& url, const Headers& fields,
                                       const Headers& headers) {
    std::string body;
    for (const auto& [name, value] : fields) {
        if (!body.empty()) {
            body += '&';
        }
        body += Escape(name) + "=" + Escape(value);
    }
    return Post(url, body, "application/x-www-form-urlencoded", headers);
}

HttpClient::Reply HttpClient::Send(const std::string& method, const std::string& url,
                                   const std::string& body, const Headers& headers) {
    CURL* curl = handle->curl;
    curl_easy_reset(curl);
    Reply reply;
    curl_slist* list = nullptr;
    for (const auto& [name, value] : headers) {
        list = curl_slist_append(list, (name + ": " + value).c_str());
    }
    curl_easy_setopt(curl, CURLOPT_URL, url.c_str());
    curl_easy_setopt(curl, CURLOPT_HTTPHEADER, list);
    curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, AppendBody);
    curl_easy_setopt(curl, CURLOPT_WRITEDATA, &reply.body);
    curl_easy_setopt(curl, CURLOPT_HEADERFUNCTION, AppendHeader);
    curl_easy_setopt(curl, CURLOPT_HEADERDATA, &reply.headers);
    curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(curl, CURLOPT_TIMEOUT, 60L);
    if (insecure) {
        curl_easy_setopt(curl, CURLOPT_SSL_VERIFYPEER, 0L);
        curl_easy_setopt(curl, CURLOPT_SSL_VERIFYHOST, 0L);
    }
    if (method == "HEAD") {
        curl_easy_setopt(curl, CURLOPT_NOBODY, 1L);
    } else if (method != "GET") {
        curl_easy_setopt(curl, CURLOPT_CUSTOMREQUEST, method.c_str());
    }
    if (!body.empty() || method == "POST" || method == "PUT" || method == "PATCH") {
        curl_easy_setopt(curl, CURLOPT_POSTFIELDS, body.data());
        curl_easy_setopt(curl, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body.size()));
    }
    const CURLcode code = curl_easy_perform(curl);
    curl_slist_free_all(list);
    if (code != CURLE_OK) {
        reply.transportError = curl_easy_strerror(code);
        return reply;
    }
    curl_easy_getinfo(curl, CURLINFO_RESPONSE_CODE, &reply.status);
    return reply;
}

std::string HttpClient::Escape(const std::string& text) {
    InitCurlOnce();
    char* escaped = curl_easy_escape(nullptr, text.c_str(), static_cast<int>(text.size()));
    std::string result = escaped ? escaped : "";
    curl_free(escaped);
    return result;
}

HttpClient::Headers Bearer(const std::string& token) {
    return {{"Authorization", "Bearer " + token}};
}

}  // namespace testsupport
