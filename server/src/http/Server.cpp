#include "http/Server.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/address.hpp>
#include <boost/asio/signal_set.hpp>
#include <boost/asio/ssl/context.hpp>
#include <boost/asio/steady_timer.hpp>
#include <condition_variable>
#include <iostream>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <vector>

#include "api/Service.h"
#include "events/ChangeWatcher.h"
#include "http/Listener.h"
#include "store/DataDirectory.h"

namespace vantroserver::http {

namespace asio = boost::asio;

namespace {

// Requests block a worker on SQLite for a short while; a few workers keep the others moving.
constexpr unsigned kWorkerThreads = 4;
// How soon a change made by an admin command or another request reaches the event streams.
constexpr std::chrono::milliseconds kChangePollInterval{100};
// How often uploads whose time ran out are removed with their bytes (they answer 404 from the
// moment they expire; the sweep only frees the disk and the reservation's row).
constexpr std::chrono::minutes kUploadSweepInterval{10};

std::shared_ptr<asio::ssl::context> MakeTlsContext(const ServeOptions& options) {
    if (!options.tlsCert && !options.tlsKey) {
        return nullptr;
    }
    if (!options.tlsCert || !options.tlsKey) {
        throw std::runtime_error("TLS needs both a certificate and a key file");
    }
    auto context = std::make_shared<asio::ssl::context>(asio::ssl::context::tls_server);
    context->set_options(asio::ssl::context::default_workarounds | asio::ssl::context::no_sslv2 |
                         asio::ssl::context::no_sslv3 | asio::ssl::context::no_tlsv1 |
                         asio::ssl::context::no_tlsv1_1);
    boost::system::error_code error;
    context->use_certificate_chain_file(options.tlsCert->string(), error);
    if (error) {
        throw std::runtime_error("cannot use TLS certificate " + options.tlsCert->string() + ": " +
                                 error.message());
    }
    context->use_private_key_file(options.tlsKey->string(), asio::ssl::context::pem, error);
    if (error) {
        throw std::runtime_error("cannot use TLS key " + options.tlsKey->string() + ": " +
                                 error.message());
    }
    return context;
}

}  // namespace

class Server::Impl {
public:
    explicit Impl(ServeOptions options) : options(std::move(options)) {
        tls = MakeTlsContext(this->options);
        directory.emplace(store::DataDirectory::Open(this->options.dataDir));
        service.emplace(*directory, this->options);
        watcher = std::make_shared<events::ChangeWatcher>(context, service->Store(), service->Hub(),
                                                          kChangePollInterval);
    }

    unsigned short Start() {
        boost::system::error_code error;
        const auto address = asio::ip::make_address(options.listenAddress, error);
        if (error) {
            throw std::runtime_error("cannot listen on '" + options.listenAddress +
                                     "': not an IP address");
        }
        try {
            listener =
                std::make_shared<Listener>(context, asio::ip::tcp::endpoint(address, options.port),
                                           tls, service->GetDispatcher(), Session::Limits{});
        } catch (const boost::system::system_error& failure) {
            throw std::runtime_error("cannot listen on " + options.listenAddress + ":" +
                                     std::to_string(options.port) + ": " +
                                     failure.code().message());
        }
        service->PublicAddress()->SetListening(tls != nullptr, options.listenAddress,
                                               listener->Port());
        listener->Run();
        watcher->Start();
        ScheduleUploadSweep();
        for (unsigned i = 0; i < kWorkerThreads; ++i) {
            workers.emplace_back([this] { context.run(); });
        }
        return listener->Port();
    }

    void ScheduleUploadSweep() {
        sweepTimer.expires_after(kUploadSweepInterval);
        // The timer is a member, cancelled in Stop before the object goes: `this` is safe.
        sweepTimer.async_wait([this](boost::system::error_code error) {
            if (error) {
                return;
            }
            try {
                service->Uploads()->SweepExpired();
            } catch (const std::exception& failure) {
                std::cerr << "vantro-server: sweeping expired uploads failed: " << failure.what()
                          << std::endl;
            }
            ScheduleUploadSweep();
        });
    }

    void StopOnSignals() {
        signals.emplace(context, SIGINT, SIGTERM);
        // The signal set is a member, cancelled in Stop before the object goes: `this` is safe.
        signals->async_wait([this](boost::system::error_code error, int) {
            if (!error) {
                RequestStop();
            }
        });
    }

    void Wait() {
        std::unique_lock lock(mutex);
        stopRequested.wait(lock, [this] { return stopping; });
        lock.unlock();
        Stop();
    }

    void RequestStop() {
        std::lock_guard lock(mutex);
        stopping = true;
        stopRequested.notify_all();
    }

    void Stop() {
        RequestStop();
        std::lock_guard lock(stopMutex);
        if (listener) {
            listener->Close();
        }
        watcher->Stop();
        sweepTimer.cancel();
        if (signals) {
            boost::system::error_code ignored;
            signals->cancel(ignored);
        }
        context.stop();
        for (auto& worker : workers) {
            worker.join();
        }
        workers.clear();
    }

    ~Impl() { Stop(); }

private:
    // Declared first: everything below uses it and must go before it.
    asio::io_context context{static_cast<int>(kWorkerThreads)};
    ServeOptions options;
    std::shared_ptr<asio::ssl::context> tls;
    std::optional<store::DataDirectory> directory;
    std::optional<api::Service> service;
    std::shared_ptr<events::ChangeWatcher> watcher;
    std::shared_ptr<Listener> listener;
    std::optional<asio::signal_set> signals;
    asio::steady_timer sweepTimer{context};
    std::vector<std::thread> workers;

    std::mutex mutex;
    std::condition_variable stopRequested;
    bool stopping = false;
    std::mutex stopMutex;
};

Server::Server(ServeOptions options) : impl(std::make_shared<Impl>(std::move(options))) {}
Server::~Server() = default;
unsigned short Server::Start() {
    return impl->Start();
}
void Server::StopOnSignals() {
    impl->StopOnSignals();
}
void Server::Wait() {
    impl->Wait();
}
void Server::Stop() {
    impl->Stop();
}

int RunServer(const ServeOptions& options, std::function<void(unsigned short)> onListening) {
    try {
        Server server(options);
        server.StopOnSignals();
        const unsigned short port = server.Start();
        onListening(port);
        server.Wait();
        return 0;
    } catch (const std::exception& error) {
        std::cerr << "vantro-server: " << error.what() << std::endl;
        return 1;
    }
}

}  // namespace vantroserver::http
