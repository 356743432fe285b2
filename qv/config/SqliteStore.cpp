// CsqliteStore: the settings tree as rows of the table nodes.
#include "qv/config/SqliteStore.h"

#include <climits>
#include <sqlite3.h>
#include <string>

#include "qv/core/WideChar.h"
#include "qv/core/WideFormat.h"
#include "qv/filesystems/Path.h"
#include "qv/platform/Ticks.h"

namespace qv {

namespace {

constexpr char kCreateTable[] = "CREATE TABLE IF NOT EXISTS nodes(id INTEGER PRIMARY KEY, name TEXT, path TEXT "
                                "UNIQUE, parent INTEGER, type INTEGER, value);";
constexpr char kInsertRoot[] = "INSERT INTO nodes VALUES(NULL, '', '/', 0, 0, NULL);";
constexpr uint32_t kRetryMilliseconds = 100;

char const *const kStatementTexts[] = {
    "SELECT type FROM nodes WHERE path = ?1;",
    "SELECT id FROM nodes WHERE path = ?1;",
    "SELECT value FROM nodes WHERE path = ?1;",
    "INSERT INTO nodes VALUES(NULL, ?1, ?2, ?3, ?4, ?5);",
    "UPDATE nodes SET value = ?1 WHERE path = ?2;",
    ("SELECT name FROM nodes LEFT JOIN (SELECT id FROM nodes WHERE path = ?1) AS parents "
     "WHERE parents.id = nodes.parent;"),
};

std::string Utf8(CString const &text) {
    return std::string(text.GetUTF8());
}

// Resets a statement when it goes out of scope, so the next use starts clean.
class CStatementUse {
public:
    explicit CStatementUse(sqlite3_stmt *statement) : statement(statement) {}
    ~CStatementUse() {
        if (statement) {
            sqlite3_reset(statement);
            sqlite3_clear_bindings(statement);
        }
    }
    CStatementUse(CStatementUse const &) = delete;
    CStatementUse &operator=(CStatementUse const &) = delete;

private:
    sqlite3_stmt *statement;
};

// False when the bind fails (no memory, text over the length limit): a
// statement run then would see NULL in that parameter. A size that does not
// fit an int is refused before sqlite would take it as negative.
bool BindText(sqlite3_stmt *statement, int index, std::string const &text) {
    return text.size() <= size_t(INT_MAX) &&
           sqlite3_bind_text(statement, index, text.data(), int(text.size()), SQLITE_TRANSIENT) == SQLITE_OK;
}

bool BindInteger(sqlite3_stmt *statement, int index, int64_t number) {
    return sqlite3_bind_int64(statement, index, number) == SQLITE_OK;
}

// The value a double has after the "%.14e" text that the table keeps.
double AsStored(double value) {
    char text[64];
    c_snprintf(text, sizeof text, "%.14e", value);
    return c_strtod(text, nullptr);
}

} // namespace

struct CsqliteStore::SValue {
    int32_t type = Directory;
    double number = 0;
    int64_t integer = 0;
    std::string text;

    // False when the bind fails, as BindText.
    bool Bind(sqlite3_stmt *statement, int index) const {
        switch (type) {
        case Double:
            return sqlite3_bind_double(statement, index, number) == SQLITE_OK;
        case DWord:
        case Long:
            return BindInteger(statement, index, integer);
        case String:
            return BindText(statement, index, text);
        default:
            return sqlite3_bind_null(statement, index) == SQLITE_OK;
        }
    }

    void Take(sqlite3_stmt *statement, int column) {
        switch (type) {
        case Double:
            number = sqlite3_column_double(statement, column);
            break;
        case DWord:
        case Long:
            integer = sqlite3_column_int(statement, column);
            break;
        default: {
            auto const *bytes = reinterpret_cast<char const *>(sqlite3_column_text(statement, column));
            text = bytes ? std::string(bytes, size_t(sqlite3_column_bytes(statement, column))) : std::string();
        }
        }
    }
};

CsqliteStore::CsqliteStore() = default;

CsqliteStore::~CsqliteStore() {
    Close();
}

void CsqliteStore::SetBusyLimit(uint32_t milliseconds) {
    busyLimit = milliseconds;
    if (db)
        sqlite3_busy_timeout(db, busyLimit == kInfinite ? INT32_MAX : int(std::min<uint32_t>(busyLimit, INT32_MAX)));
}

void CsqliteStore::SetLengthLimit(uint32_t bytes) {
    lengthLimit = bytes;
    // sqlite holds the limit below its own ceiling.
    if (db) sqlite3_limit(db, SQLITE_LIMIT_LENGTH, int(std::min<uint32_t>(lengthLimit, INT32_MAX)));
}

bool CsqliteStore::Open(char16_t const *path) {
    Close();
    if (!path) return false;
    if (sqlite3_open(CString(path).GetUTF8(), &db) != SQLITE_OK) {
        Close();
        return false;
    }
    SetBusyLimit(busyLimit);
    SetLengthLimit(lengthLimit);
    bool ready = Execute(kCreateTable);
    if (ready) {
        sqlite3_stmt *select = Statement(SelectId);
        CStatementUse use(select);
        if (!select || sqlite3_bind_text(select, 1, "/", 1, SQLITE_STATIC) != SQLITE_OK)
            ready = false;
        else {
            int step = sqlite3_step(select);
            if (step == SQLITE_DONE)
                ready = Execute(kInsertRoot);
            else
                ready = step == SQLITE_ROW;
        }
    }
    if (!ready) Close();
    return ready;
}

void CsqliteStore::Close() {
    if (!db) return;
    Unlock();
    if (locked) Execute("ROLLBACK TRANSACTION;"); // the commit could not be made
    locked = false;
    for (sqlite3_stmt *&statement : statements) {
        sqlite3_finalize(statement);
        statement = nullptr;
    }
    sqlite3_close(db);
    db = nullptr;
}

sqlite3_stmt *CsqliteStore::Statement(EStatement which) {
    if (!db) return nullptr;
    if (!statements[which] &&
        sqlite3_prepare_v2(db, kStatementTexts[which], -1, &statements[which], nullptr) != SQLITE_OK) {
        sqlite3_finalize(statements[which]);
        statements[which] = nullptr;
    }
    return statements[which];
}

bool CsqliteStore::Execute(char const *sql) {
    return db && sqlite3_exec(db, sql, nullptr, nullptr, nullptr) == SQLITE_OK;
}

bool CsqliteStore::RetryWhileBusy(char const *sql) {
    uint32_t start = GetTickCount();
    for (;;) {
        int result = sqlite3_exec(db, sql, nullptr, nullptr, nullptr);
        if (result == SQLITE_OK) return true;
        if (result != SQLITE_BUSY) return false;
        if (busyLimit != kInfinite && GetTickCount() - start >= busyLimit) return false;
        Sleep(kRetryMilliseconds);
    }
}

bool CsqliteStore::Lock() {
    if (!db) return false;
    if (locked) return true;
    cachedDirectory.Empty();
    locked = RetryWhileBusy("BEGIN IMMEDIATE TRANSACTION;");
    return locked;
}

bool CsqliteStore::Unlock() {
    if (!db || !locked) return db != nullptr;
    if (!RetryWhileBusy("COMMIT TRANSACTION;")) return false;
    locked = false;
    return true;
}

int32_t CsqliteStore::GetType(char16_t const *path) {
    sqlite3_stmt *select = Statement(SelectType);
    if (!select) return None;
    CStatementUse use(select);
    CString key = path::RemoveTrailingSlash(ExpandPath(path));
    if (!BindText(select, 1, key.IsEmpty() ? std::string("/") : Utf8(key))) return None;
    return sqlite3_step(select) == SQLITE_ROW ? sqlite3_column_int(select, 0) : int32_t(None);
}

bool CsqliteStore::isLeaf(char16_t const *path) {
    int32_t type = GetType(path);
    return type != None && type != Directory;
}

bool CsqliteStore::isEntry(char16_t const *path) {
    return GetType(path) == Directory;
}

int64_t CsqliteStore::ParentOf(CString const &path, int depth) {
    CString directory = path::GetDirectory(path);
    if (directory.IsEmpty()) directory = u"/";
    // Inside a transaction no other connection changes the table, so the
    // last directory found stays valid until the transaction ends.
    if (locked && directory.Equals(cachedDirectory)) return cachedParent;
    sqlite3_stmt *select = Statement(SelectId);
    if (!select) return 0;
    int64_t id = 0;
    {
        CStatementUse use(select);
        if (!BindText(select, 1, Utf8(directory))) return 0;
        int step = sqlite3_step(select);
        if (step == SQLITE_ROW)
            id = sqlite3_column_int64(select, 0);
        else if (step != SQLITE_DONE)
            return 0;
    }
    // Each step up shortens the path, so this ends; the bound is a guard.
    if (id == 0) {
        if (directory.Equals(path) || depth > IConfigStore::PathSize) return 0;
        int64_t grandParent = ParentOf(directory, depth + 1);
        SValue none;
        id = grandParent && InsertRow(directory, grandParent, none) ? sqlite3_last_insert_rowid(db) : 0;
    }
    if (locked && id) {
        cachedDirectory = directory;
        cachedParent = id;
    }
    return id;
}

int64_t CsqliteStore::GetParent(char16_t const *path) {
    return ParentOf(ExpandPath(path), 0);
}

bool CsqliteStore::InsertRow(CString const &path, int64_t parent, SValue const &value) {
    sqlite3_stmt *insert = Statement(Insert);
    if (!insert) return false;
    CStatementUse use(insert);
    bool bound = BindText(insert, 1, Utf8(path::GetFilename(path))) && BindText(insert, 2, Utf8(path)) &&
                 BindInteger(insert, 3, parent) && BindInteger(insert, 4, value.type) && value.Bind(insert, 5);
    return bound && sqlite3_step(insert) == SQLITE_DONE;
}

bool CsqliteStore::Write(CString const &path, SValue const &value) {
    bool own = !locked;
    if (own && !Lock()) return false;
    sqlite3_stmt *update = Statement(Update);
    bool written = false;
    if (update) {
        CStatementUse use(update);
        bool bound = value.Bind(update, 1) && BindText(update, 2, Utf8(path));
        written = bound && sqlite3_step(update) == SQLITE_DONE;
    }
    if (written && sqlite3_changes(db) == 0) written = InsertNew(path, value);
    return Finish(own, written);
}

bool CsqliteStore::InsertNew(CString const &path, SValue const &value) {
    int64_t parent = ParentOf(path, 0);
    return parent && InsertRow(path, parent, value);
}

bool CsqliteStore::Finish(bool own, bool done) {
    if (!own) return done;
    if (done) return Unlock();
    Execute("ROLLBACK TRANSACTION;");
    locked = false;
    return false;
}

void CsqliteStore::ReadOrStore(CString const &path, SValue &value) {
    if (Read(path, value) != Missing) return;
    bool own = !locked;
    if (own && !Lock()) return;
    // Another process may have made the key since the first look.
    ERead again = Read(path, value);
    Finish(own, again == Found || (again == Missing && InsertNew(path, value)));
}

// The row's value into value (typed as asked), or why there is none; a
// path that cannot be bound fails rather than reading as missing.
CsqliteStore::ERead CsqliteStore::Read(CString const &path, SValue &value) {
    sqlite3_stmt *select = Statement(SelectValue);
    if (!select) return Failed;
    CStatementUse use(select);
    if (!BindText(select, 1, Utf8(path))) return Failed;
    int step = sqlite3_step(select);
    if (step == SQLITE_DONE) return Missing;
    if (step != SQLITE_ROW) return Failed;
    value.Take(select, 0);
    return Found;
}

double CsqliteStore::GetDouble(char16_t const *name, double defaultValue) {
    SValue value;
    value.type = Double;
    value.number = AsStored(defaultValue);
    CString path = ExpandPath(name);
    ReadOrStore(path, value);
    return value.number;
}

bool CsqliteStore::SetDouble(char16_t const *name, double number) {
    SValue value;
    value.type = Double;
    value.number = AsStored(number);
    return Write(ExpandPath(name), value);
}

int32_t CsqliteStore::GetLong(char16_t const *name, int32_t defaultValue) {
    SValue value;
    value.type = Long;
    value.integer = defaultValue;
    CString path = ExpandPath(name);
    ReadOrStore(path, value);
    return int32_t(value.integer);
}

bool CsqliteStore::SetLong(char16_t const *name, int32_t number) {
    SValue value;
    value.type = Long;
    value.integer = number;
    return Write(ExpandPath(name), value);
}

uint32_t CsqliteStore::GetDWORD(char16_t const *name, uint32_t defaultValue) {
    SValue value;
    value.type = DWord;
    value.integer = defaultValue;
    CString path = ExpandPath(name);
    ReadOrStore(path, value);
    return uint32_t(value.integer);
}

bool CsqliteStore::SetDWORD(char16_t const *name, uint32_t number) {
    SValue value;
    value.type = DWord;
    value.integer = number;
    return Write(ExpandPath(name), value);
}

CString CsqliteStore::GetString(char16_t const *name, char16_t const *defaultValue) {
    SValue value;
    value.type = String;
    value.text = CString(defaultValue ? defaultValue : u"").GetUTF8();
    CString path = ExpandPath(name);
    ReadOrStore(path, value);
    return CString(value.text.c_str());
}

bool CsqliteStore::SetString(char16_t const *name, char16_t const *text) {
    SValue value;
    value.type = String;
    value.text = CString(text ? text : u"").GetUTF8();
    return Write(ExpandPath(name), value);
}

bool CsqliteStore::list(TArray<CString> &names, char16_t const *path) {
    sqlite3_stmt *select = Statement(ListNames);
    if (!select) return false;
    CStatementUse use(select);
    CString parent = ExpandPath(path);
    if (parent.GetLength() > 1) parent = path::RemoveTrailingSlash(parent);
    if (!BindText(select, 1, Utf8(parent))) return false;
    int step;
    while ((step = sqlite3_step(select)) == SQLITE_ROW) {
        auto const *bytes = reinterpret_cast<char const *>(sqlite3_column_text(select, 0));
        names.Add(CString(bytes ? bytes : ""));
    }
    return step == SQLITE_DONE;
}

bool CsqliteStore::copyValue(IConfigStore &target, char16_t const *targetPath, char16_t const *sourcePath) {
    switch (GetType(sourcePath)) {
    case Double:
        return target.SetDouble(targetPath, GetDouble(sourcePath, 0));
    case Float:
        return target.SetFloat(targetPath, GetFloat(sourcePath, 0));
    case DWord:
        return target.SetDWORD(targetPath, GetDWORD(sourcePath, 0));
    case Long:
        return target.SetLong(targetPath, GetLong(sourcePath, 0));
    case Word:
    case Byte:
        return target.SetWORD(targetPath, GetWORD(sourcePath, 0));
    case Short:
        return target.SetLong(targetPath, GetLong(sourcePath, 0));
    case Char:
        return target.SetLong(targetPath, GetLong(sourcePath, 0));
    case Bool:
        return target.SetBool(targetPath, GetBool(sourcePath, false));
    case String:
        return target.SetString(targetPath, GetString(sourcePath, u""));
    case Font:
        return target.SetFont(targetPath, GetFont(sourcePath, DefaultFont));
    case Colour:
        return target.SetClr(targetPath, GetClr(sourcePath, 0));
    case Rect:
        return target.SetRect(targetPath, GetRect(sourcePath, DefaultRect));
    default:
        return false;
    }
}

} // namespace qv
