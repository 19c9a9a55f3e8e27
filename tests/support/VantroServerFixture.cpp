#include "support/VantroServerFixture.h"

#include <openssl/evp.h>
#include <openssl/rand.h>
#include <openssl/sha.h>

#include <array>
#include <boost/json/parse.hpp>
#include <stdexcept>

#include "support/QueryText.h"

namespace testsupport {

namespace {

std::string Base64Url(const unsigned char* data, std::size_t size) {
    static constexpr char kAlphabet[] =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";
    std::string out;
    std::uint32_t buffer = 0;
    int bits = 0;
    for (std::size_t i = 0; i < size; ++i) {
        buffer = (buffer << 8) | data[i];
        bits += 8;
        while (bits >= 6) {
            bits -= 6;
            out += kAlphabet[(buffer >> bits) & 0x3F];
        }
    }
    if (bits > 0) {
        out += kAlphabet[(buffer << (6 - bits)) & 0x3F];
    }
    return out;
}

}  // namespace

void VantroServerFixture::TearDown() {
    if (server.Running()) {
        EXPECT_EQ(server.Stop(), 0) << "vantro-server did not exit cleanly on SIGTERM";
    }
}

std::string VantroServerFixture::AddUser(const std::string& username, const std::string& password) {
    // Few PBKDF2 iterations: sign-in stays quick; the default cost is the store tests' business.
    return AdminId({"user", "add", "--username", username, "--password", password,
                    "--password-iterations", "1000"});
}

std::string VantroServerFixture::AdminId(std::vector<std::string> args) {
    const std::string output = Admin(args);
    const auto ids = IdsIn(output);
    if (ids.empty()) {
        throw std::runtime_error("no id in the output of " + args.front() + ": " + output);
    }
    return ids.front();
}

std::vector<std::string> VantroServerFixture::IdsIn(const std::string& text) {
    // The shape 8-4-4-4-12 of lower-case hex, found by hand (std::regex trips GCC's
    // uninitialised-use warnings in sanitizer builds).
    auto isId = [](std::string_view candidate) {
        for (std::size_t i = 0; i < candidate.size(); ++i) {
            const char c = candidate[i];
            const bool dash = i == 8 || i == 13 || i == 18 || i == 23;
            if (dash ? c != '-' : !((c >= '0' && c <= '9') || (c >= 'a' && c <= 'f'))) {
                return false;
            }
        }
        return true;
    };
    constexpr std::size_t kLength = 36;
    std::vector<std::string> ids;
    for (std::size_t at = 0; at + kLength <= text.size();) {
        if (isId(std::string_view(text).substr(at, kLength))) {
            ids.push_back(text.substr(at, kLength));
            at += kLength;
        } else {
            ++at;
        }
    }
    return ids;
}

std::string VantroServerFixture::NewVerifier() {
    std::array<unsigned char, 32> bytes;
    if (RAND_bytes(bytes.data(), static_cast<int>(bytes.size())) != 1) {
        throw std::runtime_error("RAND_bytes failed");
    }
    return Base64Url(bytes.data(), bytes.size());
}

std::string VantroServerFixture::ChallengeOf(const std::string& verifier) {
    std::array<unsigned char, SHA256_DIGEST_LENGTH> digest;
    SHA256(reinterpret_cast<const unsigned char*>(verifier.data()), verifier.size(), digest.data());
    return Base64Url(digest.data(), digest.size());
}

std::map<std::string, std::string> VantroServerFixture::QueryOf(const std::string& url) {
    std::map<std::string, std::string> params;
    for (auto& [name, value] : QueryPairs(url)) {
        params[std::move(name)] = std::move(value);
    }
    return params;
}

std::string VantroServerFixture::AuthorizeUrl(const std::string& challenge,
                                              const std::string& state,
                                              const std::string& redirectUri) const {
    return Url("/oauth/authorize?response_type=code&client_id=" + HttpClient::Escape(kClientId) +
               "&redirect_uri=" + HttpClient::Escape(redirectUri) + "&code_challenge=" + challenge +
               "&code_challenge_method=S256&state=" + HttpClient::Escape(state));
}

HttpClient::Reply VantroServerFixture::PostSignIn(const std::string& username,
                                                  const std::string& password,
                                                  const std::string& challenge,
                                                  const std::string& state,
                                                  const std::string& redirectUri) {
    return client.PostForm(Url("/oauth/authorize"), {{"response_type", "code"},
                                                     {"client_id", kClientId},
                                                     {"redirect_uri", redirectUri},
                                                     {"code_challenge", challenge},
                                                     {"code_challenge_method", "S256"},
                                                     {"state", state},
                                                     {"username", username},
                                                     {"password", password}});
}

std::string VantroServerFixture::Authorize(const std::string& username, const std::string& password,
                                           const std::string& verifier) {
    const auto reply = PostSignIn(username, password, ChallengeOf(verifier));
    EXPECT_EQ(reply.status, 302) << reply.body;
    const auto params = QueryOf(reply.Header("location"));
    const auto code = params.find("code");
    EXPECT_NE(code, params.end()) << reply.Header("location");
    return code == params.end() ? std::string{} : code->second;
}

HttpClient::Reply VantroServerFixture::ExchangeCode(const std::string& code,
                                                    const std::string& verifier,
                                                    const std::string& redirectUri) {
    return client.PostForm(Url("/oauth/token"), {{"grant_type", "authorization_code"},
                                                 {"code", code},
                                                 {"redirect_uri", redirectUri},
                                                 {"client_id", kClientId},
                                                 {"code_verifier", verifier}});
}

HttpClient::Reply VantroServerFixture::Refresh(const std::string& refreshToken) {
    return client.PostForm(Url("/oauth/token"), {{"grant_type", "refresh_token"},
                                                 {"refresh_token", refreshToken},
                                                 {"client_id", kClientId}});
}

VantroServerFixture::Tokens VantroServerFixture::SignIn(const std::string& username,
                                                        const std::string& password) {
    const std::string verifier = NewVerifier();
    const std::string code = Authorize(username, password, verifier);
    const auto reply = ExchangeCode(code, verifier);
    EXPECT_EQ(reply.status, 200) << reply.body;
    Tokens tokens;
    if (reply.status != 200) {
        return tokens;
    }
    tokens.answer = reply.Json().as_object();
    tokens.access = std::string(tokens.answer.at("access_token").as_string());
    tokens.refresh = std::string(tokens.answer.at("refresh_token").as_string());
    return tokens;
}

}  // namespace testsupport
