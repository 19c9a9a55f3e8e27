// A Beast body that sends a slice of a file from disk: opened once, read with pread from the
// slice's start in large blocks, so a ranged answer never loads the file and never shares a
// file position. Moves with the response to the connection, which serializes it on its strand.
//
//   FileSliceBody::value_type body;
//   if (body.Open(path, error)) body.Restrict(first, length);
//   response.body() = std::move(body);
#pragma once

#include <boost/asio/buffer.hpp>
#include <boost/beast/core/error.hpp>
#include <boost/beast/http/message.hpp>
#include <boost/optional.hpp>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <utility>

namespace vantroserver::http {

struct FileSliceBody {
    class value_type {
    public:
        value_type() = default;
        value_type(value_type&& other) noexcept;
        value_type& operator=(value_type&& other) noexcept;
        value_type(const value_type&) = delete;
        value_type& operator=(const value_type&) = delete;
        ~value_type();

        /// Opens `path` read-only and selects the whole file; false (with `error`) otherwise.
        bool Open(const std::filesystem::path& path, boost::beast::error_code& error);
        /// Sends only bytes [first, first + length) of the file.
        void Restrict(std::uint64_t first, std::uint64_t length);

        bool IsOpen() const { return descriptor >= 0; }
        std::uint64_t FileSize() const { return fileSize; }
        /// Seconds and nanoseconds of the file's last change, as read at Open.
        std::int64_t ModifiedNanoseconds() const { return modified; }
        std::uint64_t Offset() const { return offset; }
        std::uint64_t Length() const { return length; }
        int Descriptor() const { return descriptor; }

    private:
        void Close();

        int descriptor = -1;
        std::uint64_t fileSize = 0;
        std::int64_t modified = 0;
        std::uint64_t offset = 0;
        std::uint64_t length = 0;
    };

    static std::uint64_t size(const value_type& body) { return body.Length(); }

    class writer {
    public:
        using const_buffers_type = boost::asio::const_buffer;

        template <bool isRequest, class Fields>
        writer(const boost::beast::http::header<isRequest, Fields>&, const value_type& body)
            : body(body), position(body.Offset()), remaining(body.Length()) {}

        void init(boost::beast::error_code& error);
        boost::optional<std::pair<const_buffers_type, bool>> get(boost::beast::error_code& error);

    private:
        static constexpr std::size_t kBlockSize = 256 * 1024;

        const value_type& body;
        std::uint64_t position;
        std::uint64_t remaining;
        std::unique_ptr<char[]> block;
    };
};

}  // namespace vantroserver::http
