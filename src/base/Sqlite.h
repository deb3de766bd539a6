#pragma once
// A thin RAII layer over SQLite: one connection, prepared statements with bound values,
// and every failure raised as SqliteError carrying SQLite's own message.
#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace vexo {

class SqliteError : public std::runtime_error {
public:
    explicit SqliteError(const std::string& what) : std::runtime_error(what) {}
};

class SqliteStatement;

class SqliteDb {
public:
    enum class Mode { ReadOnly, Create };

    // Opens the file; ReadOnly fails for a missing file, Create makes it. Throws
    // SqliteError "PATH: reason" on failure.
    SqliteDb(const std::filesystem::path& path, Mode mode);
    ~SqliteDb();
    SqliteDb(const SqliteDb&) = delete;
    SqliteDb& operator=(const SqliteDb&) = delete;

    // Runs one or more statements that return no rows. Throws SqliteError.
    void exec(const std::string& sql);
    // Compiles one statement. Throws SqliteError.
    SqliteStatement prepare(std::string_view sql);

    sqlite3* handle() const { return m_db; }

private:
    sqlite3* m_db = nullptr;
};

class SqliteStatement {
public:
    SqliteStatement(sqlite3* db, sqlite3_stmt* stmt) : m_db(db), m_stmt(stmt) {}
    ~SqliteStatement();
    SqliteStatement(SqliteStatement&& other) noexcept;
    SqliteStatement(const SqliteStatement&) = delete;
    SqliteStatement& operator=(const SqliteStatement&) = delete;
    SqliteStatement& operator=(SqliteStatement&&) = delete;

    // Parameters count from 1, as in SQL "?".
    SqliteStatement& bind(int index, double value);
    SqliteStatement& bind(int index, int64_t value);
    SqliteStatement& bind(int index, std::string_view value);

    // Advances to the next row: true while there is one. Throws SqliteError.
    bool step();
    // Clears the row position and bindings, for the next run of the same statement.
    void reset();

    // Columns count from 0; NULL reads as 0 or "".
    double columnDouble(int column) const;
    int64_t columnInt(int column) const;
    std::string columnText(int column) const;
    // The index of the result column of that name; throws SqliteError when there is none.
    int columnIndex(std::string_view name) const;

private:
    void check(int rc) const;
    sqlite3* m_db;
    sqlite3_stmt* m_stmt;
};

} // namespace vexo
