#include <gtest/gtest.h>

#include <atomic>
#include <fstream>
#include <thread>
#include <vector>

#include "store/Database.h"
#include "store/StoreError.h"
#include "store/Transaction.h"
#include "support/TemporaryDirectory.h"

namespace vantroserver::store {
namespace {

std::string Pragma(Database& database, const std::string& name) {
    auto lease = database.Acquire();
    Statement statement = lease->Prepare("PRAGMA " + name);
    EXPECT_TRUE(statement.Step());
    return statement.ColumnText(0);
}

TEST(Database, NewFileUsesWalForeignKeysAndTheCurrentSchemaVersion) {
    testsupport::TemporaryDirectory directory;
    auto database = Database::Open(directory.Path() / "v.db", true);
    EXPECT_EQ(Pragma(*database, "journal_mode"), "wal");
    EXPECT_EQ(Pragma(*database, "foreign_keys"), "1");
    EXPECT_EQ(Pragma(*database, "busy_timeout"), "5000");
    EXPECT_EQ(Pragma(*database, "user_version"), std::to_string(Database::kSchemaVersion));
}

TEST(Database, SchemaHasEveryTable) {
    testsupport::TemporaryDirectory directory;
    auto database = Database::Open(directory.Path() / "v.db", true);
    auto lease = database->Acquire();
    for (const char* table :
         {"users", "clients", "accounts", "account_members", "teams", "team_members", "projects",
          "project_shares", "assets", "token_families", "authorization_codes", "refresh_tokens",
          "changes"}) {
        Statement statement =
            lease->Prepare("SELECT 1 FROM sqlite_schema WHERE type = 'table' AND name = ?");
        statement.Bind(1, std::string_view(table));
        EXPECT_TRUE(statement.Step()) << table;
    }
}

TEST(Database, ReopensAnExistingFileWithoutTouchingItsRows) {
    testsupport::TemporaryDirectory directory;
    const auto file = directory.Path() / "v.db";
    {
        auto database = Database::Open(file, true);
        auto lease = database->Acquire();
        lease->Execute("INSERT INTO clients (id, created_at) VALUES ('c', 1)");
    }
    auto database = Database::Open(file, false);
    auto lease = database->Acquire();
    Statement statement = lease->Prepare("SELECT COUNT(*) FROM clients");
    ASSERT_TRUE(statement.Step());
    EXPECT_EQ(statement.ColumnInt(0), 1);
}

TEST(Database, RefusesAMissingFileWhenNotCreating) {
    testsupport::TemporaryDirectory directory;
    EXPECT_THROW(Database::Open(directory.Path() / "absent.db", false), StoreError);
    EXPECT_FALSE(std::filesystem::exists(directory.Path() / "absent.db"));
}

TEST(Database, RefusesAFileThatIsNotADatabase) {
    testsupport::TemporaryDirectory directory;
    const auto file = directory.Write("junk.db", std::string(4096, 'x'));
    EXPECT_THROW(Database::Open(file, false), StoreError);
}

TEST(Database, RefusesAnotherSchemaVersion) {
    testsupport::TemporaryDirectory directory;
    const auto file = directory.Path() / "v.db";
    {
        auto database = Database::Open(file, true);
        database->Acquire()->Execute("PRAGMA user_version = 99");
    }
    try {
        Database::Open(file, false);
        FAIL() << "opened a database of another version";
    } catch (const StoreError& error) {
        EXPECT_NE(std::string(error.what()).find("99"), std::string::npos) << error.what();
    }
}

TEST(Database, AVersionTwoDatabaseGainsTheCompletedUploadsTable) {
    testsupport::TemporaryDirectory directory;
    const auto file = directory.Path() / "v2.db";
    {
        auto database = Database::Open(file, true);
        auto lease = database->Acquire();
        lease->Execute("DROP TABLE completed_uploads");
        lease->Execute("PRAGMA user_version = 2");
    }
    auto database = Database::Open(file, false);
    EXPECT_EQ(Pragma(*database, "user_version"), std::to_string(Database::kSchemaVersion));
    EXPECT_NO_THROW(database->Acquire()->Execute("SELECT COUNT(*) FROM completed_uploads"));
}

TEST(Database, ForeignKeysAreEnforcedOnEveryPooledConnection) {
    testsupport::TemporaryDirectory directory;
    auto database = Database::Open(directory.Path() / "v.db", true);
    // Hold one lease so the second is a freshly opened connection.
    auto first = database->Acquire();
    auto second = database->Acquire();
    for (Connection* connection : {&*first, &*second}) {
        EXPECT_THROW(connection->Execute("INSERT INTO teams (id, account_id, name, created_at) "
                                         "VALUES ('t', 'no-such-account', 'n', 1)"),
                     StoreError);
    }
}

TEST(Database, UniqueViolationIsAConflict) {
    testsupport::TemporaryDirectory directory;
    auto database = Database::Open(directory.Path() / "v.db", true);
    auto lease = database->Acquire();
    auto insert = [&] {
        lease->Prepare("INSERT INTO clients (id, created_at) VALUES (?, 1)")
            .Bind(1, std::string_view("same"))
            .Run();
    };
    insert();
    try {
        insert();
        FAIL() << "second insert of the same key succeeded";
    } catch (const StoreError& error) {
        EXPECT_EQ(error.GetKind(), StoreError::Kind::Conflict);
    }
}

TEST(Database, TransactionRollsBackUnlessCommitted) {
    testsupport::TemporaryDirectory directory;
    auto database = Database::Open(directory.Path() / "v.db", true);
    auto lease = database->Acquire();
    {
        Transaction transaction(*lease);
        lease->Execute("INSERT INTO clients (id, created_at) VALUES ('gone', 1)");
    }
    {
        Transaction transaction(*lease);
        lease->Execute("INSERT INTO clients (id, created_at) VALUES ('kept', 1)");
        transaction.Commit();
    }
    Statement statement = lease->Prepare("SELECT group_concat(id) FROM clients");
    ASSERT_TRUE(statement.Step());
    EXPECT_EQ(statement.ColumnText(0), "kept");
}

TEST(Database, ManyThreadsWriteAndReadThroughThePool) {
    testsupport::TemporaryDirectory directory;
    auto database = Database::Open(directory.Path() / "v.db", true);
    constexpr int kThreads = 6;
    constexpr int kWrites = 50;
    std::atomic<int> failures{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            for (int i = 0; i < kWrites; ++i) {
                try {
                    auto lease = database->Acquire();
                    Transaction transaction(*lease);
                    lease->Prepare("INSERT INTO clients (id, created_at) VALUES (?, 1)")
                        .Bind(1, std::to_string(t) + "-" + std::to_string(i))
                        .Run();
                    transaction.Commit();
                    Statement count = lease->Prepare("SELECT COUNT(*) FROM clients");
                    count.Step();
                } catch (const std::exception&) {
                    ++failures;
                }
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(failures.load(), 0);
    auto lease = database->Acquire();
    Statement count = lease->Prepare("SELECT COUNT(*) FROM clients");
    ASSERT_TRUE(count.Step());
    EXPECT_EQ(count.ColumnInt(0), kThreads * kWrites);
}

}  // namespace
}  // namespace vantroserver::store
