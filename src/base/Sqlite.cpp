#include "base/Sqlite.h"

#include <sqlite3.h>

namespace vexo {

SqliteDb::SqliteDb(const std::filesystem::path& path, Mode mode) {
    int flags =
        mode == Mode::ReadOnly ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
    int rc = sqlite3_open_v2(path.string().c_str(), &m_db, flags, nullptr);
    if (rc != SQLITE_OK) {
        std::string why = m_db ? sqlite3_errmsg(m_db) : sqlite3_errstr(rc);
        sqlite3_close(m_db);
        m_db = nullptr;
        throw SqliteError(path.string() + ": " + why);
    }
}

SqliteDb::~SqliteDb() {
    sqlite3_close(m_db);
}

void SqliteDb::exec(const std::string& sql) {
    char* error = nullptr;
    if (sqlite3_exec(m_db, sql.c_str(), nullptr, nullptr, &error) != SQLITE_OK) {
        std::string why = error ? error : sqlite3_errmsg(m_db);
        sqlite3_free(error);
        throw SqliteError(why);
    }
}

SqliteStatement SqliteDb::prepare(std::string_view sql) {
    sqlite3_stmt* stmt = nullptr;
    if (sqlite3_prepare_v2(m_db, sql.data(), static_cast<int>(sql.size()), &stmt, nullptr) !=
        SQLITE_OK)
        throw SqliteError(std::string(sqlite3_errmsg(m_db)) + " in: " + std::string(sql));
    return SqliteStatement(m_db, stmt);
}

SqliteStatement::~SqliteStatement() {
    sqlite3_finalize(m_stmt);
}

SqliteStatement::SqliteStatement(SqliteStatement&& other) noexcept
    : m_db(other.m_db), m_stmt(other.m_stmt) {
    other.m_stmt = nullptr;
}

void SqliteStatement::check(int rc) const {
    if (rc != SQLITE_OK)
        throw SqliteError(sqlite3_errmsg(m_db));
}

SqliteStatement& SqliteStatement::bind(int index, double value) {
    check(sqlite3_bind_double(m_stmt, index, value));
    return *this;
}

SqliteStatement& SqliteStatement::bind(int index, int64_t value) {
    check(sqlite3_bind_int64(m_stmt, index, value));
    return *this;
}

SqliteStatement& SqliteStatement::bind(int index, std::string_view value) {
    check(sqlite3_bind_text(m_stmt, index, value.data(), static_cast<int>(value.size()),
                            SQLITE_TRANSIENT));
    return *this;
}

bool SqliteStatement::step() {
    int rc = sqlite3_step(m_stmt);
    if (rc == SQLITE_ROW)
        return true;
    if (rc == SQLITE_DONE)
        return false;
    throw SqliteError(sqlite3_errmsg(m_db));
}

void SqliteStatement::reset() {
    sqlite3_reset(m_stmt);
    sqlite3_clear_bindings(m_stmt);
}

double SqliteStatement::columnDouble(int column) const {
    return sqlite3_column_double(m_stmt, column);
}

int64_t SqliteStatement::columnInt(int column) const {
    return sqlite3_column_int64(m_stmt, column);
}

std::string SqliteStatement::columnText(int column) const {
    const unsigned char* text = sqlite3_column_text(m_stmt, column);
    return text ? std::string(reinterpret_cast<const char*>(text)) : std::string();
}

int SqliteStatement::columnIndex(std::string_view name) const {
    for (int i = 0, n = sqlite3_column_count(m_stmt); i < n; ++i)
        if (name == sqlite3_column_name(m_stmt, i))
            return i;
    throw SqliteError("no column " + std::string(name));
}

} // namespace vexo
