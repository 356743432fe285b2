/// @file
/// CsqliteStore: settings in one table of an SQLite 3 database, so that
/// several processes can share them. The only store with a lock across
/// processes.
///
/// The table, made by Open if missing:
///   CREATE TABLE IF NOT EXISTS nodes(id INTEGER PRIMARY KEY, name TEXT,
///     path TEXT UNIQUE, parent INTEGER, type INTEGER, value);
/// one row per key: name is the last path item, path the full path from "/"
/// (UTF-8), parent the id of the directory row (0 for the root), type an
/// EType, value the value in its native SQLite type (NULL for a directory).
/// The root row (name "", path "/", parent 0, type 0) always exists.
///
/// Native types: double (1, REAL), DWORD (3, INTEGER), long (4, INTEGER) and
/// string (10, TEXT); every other typed operation comes from IConfigStore and
/// so arrives as one of these. Doubles are stored as the "%.14e" text of the
/// value reads back, 15 significant digits, as existing databases hold them.
/// A write updates the row; when there is none it makes the row and every
/// missing directory row above it. An update keeps the row's type, so a key
/// written as a number and then as a string keeps its first type (copyValue
/// dispatches on it); existing databases depend on that. A read of a missing
/// key gives the default and stores it (so reads can write). isLeaf is false
/// for a missing path (unlike CMemStore); isEntry is true for a directory row.
/// list appends the children's names. unlink is not supported (false).
///
/// Transactions and waiting. Lock opens a write transaction (BEGIN
/// IMMEDIATE) that lasts until Unlock; a second Lock is a no-op. A write
/// outside a Lock runs in a transaction of its own, so the directory rows and
/// the row of one write appear together or not at all, whatever other
/// processes do. A busy database is tried again every 100 ms, and statements
/// wait for SQLite's locks, but only up to the busy limit (SetBusyLimit,
/// 30,000 ms by default; kInfinite waits for ever): then Lock and Unlock give
/// false, a write gives false and a read its default. Statements are
/// prepared once per open database and take their texts as bound parameters.
///
/// Failures: Open gives false when the file cannot be opened or is not an
/// SQLite database (or stays locked past the busy limit); the store is then
/// closed. A closed store gives defaults and false. A key or value that
/// cannot be handed to SQLite (longer than the length limit, SetLengthLimit,
/// or no memory) fails the operation whole: a write gives false and leaves
/// the stored row as it was, a read gives its default and stores nothing,
/// GetType gives None and list false. No message is kept.
///
/// Threads: a store belongs to one thread at a time (the lock flag has no
/// guard); other stores, also in other processes, may use the same file.
#pragma once

#include <cstdint>

#include "qv/config/IConfigStore.h"

struct sqlite3;
struct sqlite3_stmt;

namespace qv {

/// @copydoc SqliteStore.h
class QV_API CsqliteStore : public IConfigStore {
public:
    /// The type column of a row; None is what GetType gives for a missing row.
    enum EType : int32_t {
        None = -1,
        Directory = 0,
        Double = 1,
        Float = 2,
        DWord = 3,
        Long = 4,
        Word = 5,
        Short = 6,
        Byte = 7,
        Char = 8,
        Bool = 9,
        String = 10,
        Font = 11,
        Colour = 12,
        Rect = 13,
    };

    CsqliteStore();
    ~CsqliteStore() override;
    CsqliteStore(CsqliteStore const &) = delete;
    CsqliteStore &operator=(CsqliteStore const &) = delete;

    /// Closes, then opens (or makes) the database file and its table; false
    /// on failure, and the store is closed then.
    bool Open(char16_t const *path);
    void Close(); ///< commits an open transaction; idempotent
    bool IsOpen() const { return db != nullptr; } ///< Whether a database is open.
    /// Lock begins a write transaction (BEGIN IMMEDIATE, true if already
    /// locked); Unlock commits it (true if not locked). Both are false when no
    /// database is open or the statement fails (busy past the busy limit).
    ///@{
    bool Lock();
    bool Unlock();
    ///@}
    bool IsLocked() const { return locked; } ///< Whether a Lock transaction is open.
    /// Milliseconds that Lock, Unlock and statements wait for a busy database.
    void SetBusyLimit(uint32_t milliseconds);
    /// The longest key, value or row in bytes of UTF-8 this store hands to or
    /// takes from SQLite (kept across Open); longer ones fail as described
    /// above, and a stored value over it reads as the default. It bounds what
    /// a shared file can make a read allocate. It covers SQLite's own schema
    /// rows too, so under about 200 bytes Open fails. By default, and at
    /// most, SQLite's own ceiling.
    void SetLengthLimit(uint32_t bytes);

    /// The EType of path's row; None when it is missing or the query fails.
    int32_t GetType(char16_t const *path);
    /// The id of path's directory row, made (with those above it) if need be;
    /// 0 on failure.
    int64_t GetParent(char16_t const *path);

    bool copyValue(IConfigStore &target, char16_t const *targetPath, char16_t const *sourcePath) override;
    bool list(TArray<CString> &names, char16_t const *path) override;
    bool isLeaf(char16_t const *path) override;
    bool isEntry(char16_t const *path) override;
    double GetDouble(char16_t const *name, double defaultValue) override;
    bool SetDouble(char16_t const *name, double value) override;
    int32_t GetLong(char16_t const *name, int32_t defaultValue) override;
    bool SetLong(char16_t const *name, int32_t value) override;
    uint32_t GetDWORD(char16_t const *name, uint32_t defaultValue) override;
    bool SetDWORD(char16_t const *name, uint32_t value) override;
    CString GetString(char16_t const *name, char16_t const *defaultValue) override;
    bool SetString(char16_t const *name, char16_t const *value) override;

private:
    enum EStatement { SelectType, SelectId, SelectValue, Insert, Update, ListNames, StatementCount };
    enum ERead { Found, Missing, Failed }; ///< what a look for a row found
    struct SValue;                         ///< a typed value to bind

    sqlite3_stmt *Statement(EStatement which);
    bool Execute(char const *sql);
    bool RetryWhileBusy(char const *sql);
    int64_t ParentOf(CString const &path, int depth);
    bool Write(CString const &path, SValue const &value);
    ERead Read(CString const &path, SValue &value);
    void ReadOrStore(CString const &path, SValue &value);
    bool InsertNew(CString const &path, SValue const &value);
    bool InsertRow(CString const &path, int64_t parent, SValue const &value);
    /// Ends a transaction this write opened itself (own): commit when done,
    /// else roll back. Gives whether the write stands.
    bool Finish(bool own, bool done);

    sqlite3 *db = nullptr;
    bool locked = false;
    uint32_t busyLimit = 30000;
    uint32_t lengthLimit = UINT32_MAX; ///< SQLite keeps it below its ceiling
    sqlite3_stmt *statements[StatementCount] = {};
    CString cachedDirectory; ///< the last directory row found in this transaction
    int64_t cachedParent = 0;
};

} // namespace qv
