#include "SecretServiceTokenStore.h"

#include <libsecret/secret.h>

#include <condition_variable>
#include <deque>
#include <exception>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

#include <kelcore/config/kel_exception.h>

#include <vantroauth/ResultCodes.h>

namespace vantroauth {

namespace {

using kelcore::config::kel_exception;

const SecretSchema* Schema() {
    static const SecretSchema sSchema = [] {
        SecretSchema schema{};
        schema.name = "org.vantrokelui.Token";
        schema.flags = SECRET_SCHEMA_NONE;
        const char* names[] = {"service", "client", "profile", "user"};
        for (std::size_t i = 0; i < std::size(names); ++i) {
            schema.attributes[i].name = names[i];
            schema.attributes[i].type = SECRET_SCHEMA_ATTRIBUTE_STRING;
        }
        return schema;
    }();
    return &sSchema;
}

// The item's attributes; the table borrows the key's strings, which outlive the call.
class Attributes {
public:
    explicit Attributes(const TokenKey& key) : table(g_hash_table_new(g_str_hash, g_str_equal)) {
        Insert("service", key.service);
        Insert("client", key.client);
        Insert("profile", key.profile);
        Insert("user", key.user);
    }
    ~Attributes() { g_hash_table_unref(table); }
    Attributes(const Attributes&) = delete;
    Attributes& operator=(const Attributes&) = delete;
    GHashTable* Get() const { return table; }

private:
    void Insert(const char* name, const std::string& value) {
        g_hash_table_insert(table, const_cast<char*>(name), const_cast<char*>(value.c_str()));
    }
    GHashTable* table;
};

[[noreturn]] void ThrowFailure(const char* what, GError* error) {
    std::string text = std::string("the Secret Service could not ") + what;
    if (error) {
        text += ": ";
        text += error->message;
        g_error_free(error);
    }
    throw kel_exception(text, kResultStorageFailure);
}

}  // namespace

// One thread that makes libsecret's blocking calls in turn. A caller waits for its own call
// at most the store's bound and then cancels it; the thread goes on with the next call once
// the cancelled one returns.
class SecretServiceTokenStore::Worker {
public:
    Worker() : thread([this] { Run(); }) {}
    ~Worker() {
        {
            std::lock_guard lock(mutex);
            stopping = true;
            if (running) {
                g_cancellable_cancel(running);
            }
        }
        wake.notify_all();
        thread.join();
    }
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    /// Runs `call` on the worker and waits for it at most `bound`. Rethrows what it threw;
    /// throws kel_exception (kResultStorageFailure) when it takes longer.
    void Call(std::function<void(GCancellable*)> call, std::chrono::milliseconds bound) {
        auto job = std::make_shared<Job>();
        job->call = std::move(call);
        {
            std::lock_guard lock(mutex);
            if (stopping) {
                throw kel_exception("the Secret Service store is closing", kResultStorageFailure);
            }
            queue.push_back(job);
        }
        wake.notify_all();
        std::unique_lock lock(mutex);
        if (!finished.wait_for(lock, bound, [&] { return job->done; })) {
            job->abandoned = true;
            g_cancellable_cancel(job->cancellable);
            throw kel_exception("the Secret Service did not answer in time", kResultStorageFailure);
        }
        if (job->error) {
            std::rethrow_exception(job->error);
        }
    }

private:
    struct Job {
        Job() : cancellable(g_cancellable_new()) {}
        ~Job() { g_object_unref(cancellable); }
        Job(const Job&) = delete;
        Job& operator=(const Job&) = delete;

        std::function<void(GCancellable*)> call;
        GCancellable* cancellable;
        bool done = false;
        bool abandoned = false;
        std::exception_ptr error;
    };

    void Run() {
        std::unique_lock lock(mutex);
        for (;;) {
            wake.wait(lock, [&] { return stopping || !queue.empty(); });
            if (stopping) {
                return;
            }
            auto job = queue.front();
            queue.pop_front();
            if (job->abandoned) {
                continue;
            }
            running = job->cancellable;
            lock.unlock();
            std::exception_ptr error;
            try {
                job->call(job->cancellable);
            } catch (...) {
                error = std::current_exception();
            }
            lock.lock();
            running = nullptr;
            job->error = error;
            job->done = true;
            finished.notify_all();
        }
    }

    std::mutex mutex;
    std::condition_variable wake;
    std::condition_variable finished;
    std::deque<std::shared_ptr<Job>> queue;
    GCancellable* running = nullptr;
    bool stopping = false;
    std::thread thread;
};

SecretServiceTokenStore::SecretServiceTokenStore(std::chrono::milliseconds bound)
    : bound(bound), worker(std::make_shared<Worker>()) {}

SecretServiceTokenStore::~SecretServiceTokenStore() = default;

// The calls below capture by value: a call the caller stopped waiting for still runs later.

std::optional<StoredTokens> SecretServiceTokenStore::Load(const TokenKey& key) {
    auto tokens = std::make_shared<std::optional<StoredTokens>>();
    worker->Call(
        [key, tokens](GCancellable* cancellable) {
            const Attributes attributes(key);
            GError* error = nullptr;
            gchar* secret =
                secret_password_lookupv_sync(Schema(), attributes.Get(), cancellable, &error);
            if (error) {
                ThrowFailure("be read", error);
            }
            if (secret) {
                const std::string text(secret);
                secret_password_free(secret);  // wipes the copy libsecret made
                *tokens = StoredTokens::FromJson(text);
            }
        },
        bound);
    return *tokens;
}

void SecretServiceTokenStore::Save(const TokenKey& key, const StoredTokens& tokens) {
    worker->Call(
        [key, secret = tokens.ToJson()](GCancellable* cancellable) {
            const Attributes attributes(key);
            const std::string label = "vantrokelui sign-in of " + key.user + " at " + key.service;
            GError* error = nullptr;
            const gboolean stored =
                secret_password_storev_sync(Schema(), attributes.Get(), nullptr, label.c_str(),
                                            secret.c_str(), cancellable, &error);
            if (error || !stored) {
                ThrowFailure("store the tokens", error);
            }
        },
        bound);
}

void SecretServiceTokenStore::Erase(const TokenKey& key) {
    worker->Call(
        [key](GCancellable* cancellable) {
            const Attributes attributes(key);
            GError* error = nullptr;
            secret_password_clearv_sync(Schema(), attributes.Get(), cancellable, &error);
            if (error) {
                ThrowFailure("delete the tokens", error);
            }
        },
        bound);
}

}  // namespace vantroauth
