// The outcome of a synchronous call into the cloud libraries: a result code (0 for success,
// negative for failure, see ResultCodes.h) and a message for logs. A plain value; any thread.
//
//   vantrocommon::Response response = vantroauth::jwt::Logout();
//   if (!response.IsSuccess()) Report(response.GetResult());
#pragma once

#include <string>
#include <utility>

#include <kelcore/config/ResultCode.h>

namespace vantrocommon {

class Response {
public:
    /// Success.
    Response() = default;
    explicit Response(kelcore::config::ResultCode result, std::string message = {})
        : result(result), message(std::move(message)) {}

    static Response Success() { return Response(); }

    /// Whether the result is not negative.
    bool IsSuccess() const { return result >= 0; }
    kelcore::config::ResultCode GetResult() const { return result; }
    /// What went wrong, for logs; never holds a token or a password.
    const std::string& GetMessage() const { return message; }

private:
    kelcore::config::ResultCode result = kelcore::config::kResultSuccess;
    std::string message;
};

}  // namespace vantrocommon
