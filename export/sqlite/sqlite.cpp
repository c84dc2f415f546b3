#include "export/sqlite/sqlite.h"

#include <sqlite3.h>

#include <cerrno>
#include <cstdio>
#include <memory>
#include <vector>

#include "export/tables.h"
#include "platform/files.h"

namespace {

struct closer_t {
  void operator()(sqlite3* database) const { sqlite3_close(database); }
  void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};

constexpr char indexes_and_views[] = R"(
CREATE INDEX instance_path ON instance(path);
CREATE INDEX instance_block ON instance(block);
CREATE INDEX net_path ON net(path);
CREATE INDEX net_bus ON net(bus);
CREATE INDEX pin_owner ON pin(owner_kind, owner);
CREATE INDEX pin_net ON pin(net);
CREATE INDEX connection_net ON connection(net, owner_kind);
CREATE INDEX connection_pin ON connection(owner_kind, pin);
CREATE INDEX property_owner ON property(owner_kind, owner, name);
CREATE INDEX child_net ON child(net);
CREATE VIEW fanout AS
  SELECT net.id AS net, net.path AS path, count(pin.id) AS pins,
         coalesce(sum(pin.type IN ('in', 'in/out')), 0) AS loads,
         coalesce(sum(pin.type IN ('out', 'in/out')), 0) AS drivers
  FROM net LEFT JOIN connection ON connection.net = net.id AND connection.owner_kind = 'instance'
           LEFT JOIN pin ON pin.owner_kind = 'instance' AND pin.id = connection.pin
  WHERE net.kind <> 'bus' OR net.bus <> 0
  GROUP BY net.id;
CREATE VIEW undriven AS
  SELECT net, path, loads FROM fanout
  WHERE drivers = 0 AND loads > 0 AND net NOT IN (SELECT id FROM net WHERE kind = 'global');
CREATE VIEW cell AS SELECT cell AS name, count(*) AS instances FROM instance GROUP BY cell;
CREATE VIEW devices AS
  SELECT instance.id AS instance, instance.path AS path, instance.cell AS cell,
         group_concat(pin.name || '=' || coalesce(net.path, ''), ' ') AS nets
  FROM instance JOIN pin ON pin.owner_kind = 'instance' AND pin.owner = instance.id
                LEFT JOIN net ON net.id = pin.net
  GROUP BY instance.id;
)";

class database_t {
 public:
  explicit database_t(const std::string& path) {
    sqlite3* opened = nullptr;
    const int code = sqlite3_open(path.c_str(), &opened);
    database_.reset(opened);
    if (code != SQLITE_OK) {
      fail();
      return;
    }
    // The file is nobody else's before it is whole.
    run("PRAGMA journal_mode=OFF; PRAGMA synchronous=OFF; PRAGMA locking_mode=EXCLUSIVE; BEGIN;");
    for (const kv_table_t& table : kv_tables) {
      run(creation(table));
      sqlite3_stmt* statement = nullptr;
      const std::string insert = insertion(table);
      if (sqlite3_prepare_v2(database_.get(), insert.c_str(), -1, &statement, nullptr) != SQLITE_OK)
        fail();
      inserts_.emplace_back(statement);
    }
  }

  void run(const std::string& statements) {
    if (trouble_.empty() &&
        sqlite3_exec(database_.get(), statements.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK)
      fail();
  }
  void put(kv_table table, std::span<const kv_cell_t> cells) {
    if (!trouble_.empty()) return;
    sqlite3_stmt* statement = gx_at(inserts_, table).get();
    int place = 0;
    for (const kv_cell_t& cell : cells) bind(statement, ++place, cell);
    if (sqlite3_step(statement) != SQLITE_DONE) fail();
    sqlite3_reset(statement);
  }
  // The findings of a check, as its file has them.
  void put_findings(std::string_view json) {
    run("CREATE TABLE finding(number INTEGER PRIMARY KEY, severity TEXT, rule TEXT, path TEXT, "
        "sheet TEXT, object_id INTEGER, words TEXT, waived INTEGER);");
    if (json.empty() || !trouble_.empty()) return;
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v2(database_.get(),
                       "INSERT INTO finding SELECT value ->> 'number', value ->> 'severity', "
                       "value ->> 'rule', value ->> 'path', value ->> 'sheet', "
                       "value ->> 'object_id', value ->> 'words', value ->> 'waived' "
                       "FROM json_each(?)",
                       -1, &statement, nullptr);
    const std::unique_ptr<sqlite3_stmt, closer_t> owner(statement);
    bind(statement, 1, kv_cell_t(json));
    if (sqlite3_step(statement) != SQLITE_DONE) fail();
  }
  // What went wrong, or "".
  std::string close() {
    inserts_.clear();
    if (trouble_.empty() && sqlite3_close(database_.release()) != SQLITE_OK) return "not closed";
    return trouble_;
  }

 private:
  void fail() {
    if (trouble_.empty()) trouble_ = sqlite3_errmsg(database_.get());
  }
  // Latin-1, as the texts of a design are, to UTF-8.
  void bind(sqlite3_stmt* statement, int place, const kv_cell_t& cell) {
    if (const auto* text = std::get_if<std::string_view>(&cell)) {
      if (std::ranges::all_of(*text, [](char c) { return c >= 0 && c != '\x7f'; })) {
        sqlite3_bind_text(statement, place, text->data(), static_cast<int>(text->size()),
                          SQLITE_TRANSIENT);
      } else {
        std::string utf8;
        for (const char c : *text) {
          const auto code = static_cast<unsigned char>(c);
          if (code >= 128) utf8 += static_cast<char>(0xC0U | (code >> 6U));
          utf8 += code >= 128 ? static_cast<char>(0x80U | (code & 0x3FU)) : c;
        }
        sqlite3_bind_text(statement, place, utf8.data(), static_cast<int>(utf8.size()),
                          SQLITE_TRANSIENT);
      }
    } else if (const auto* number = std::get_if<std::int64_t>(&cell)) {
      sqlite3_bind_int64(statement, place, *number);
    } else if (const auto* real = std::get_if<double>(&cell)) {
      sqlite3_bind_double(statement, place, *real);
    } else {
      sqlite3_bind_null(statement, place);
    }
  }

  // The columns of a table with `each` made of every one.
  template <typename Each>
  static std::string columns(const kv_table_t& table, Each each) {
    std::string text;
    std::string_view left = table.columns;
    for (std::size_t i = 0; !left.empty(); ++i) {
      const auto end = std::min(left.find(' '), left.size());
      text += (i == 0 ? "" : ", ") + each(std::string(left.substr(0, end)), table.types[i]);
      left.remove_prefix(std::min(end + 1, left.size()));
    }
    return text;
  }
  static std::string creation(const kv_table_t& table) {
    const bool has_key = table.columns.starts_with("id ") && table.name != "pin";
    return "CREATE TABLE " + std::string(table.name) + "(" +
           columns(table,
                   [&](const std::string& name, char type) {
                     if (name == "id" && has_key) return name + " INTEGER PRIMARY KEY";
                     return name + (type == 'T' ? " TEXT" : type == 'I' ? " INTEGER" : " REAL");
                   }) +
           ");";
  }
  static std::string insertion(const kv_table_t& table) {
    return "INSERT INTO " + std::string(table.name) + " VALUES (" +
           columns(table, [](const std::string&, char) { return std::string("?"); }) + ")";
  }

  std::unique_ptr<sqlite3, closer_t> database_;
  std::vector<std::unique_ptr<sqlite3_stmt, closer_t>> inserts_;
  std::string trouble_;
};

}  // namespace

std::string kv_write_sqlite(const kvi_design_t& design, const std::string& from,
                            std::string_view findings, const std::string& path) {
  const std::string unfinished = path + ".part";
  // The file is made anew: nothing that exists there is written into.
  if (auto file = x_create_new_file(unfinished); !file || !x_close(std::move(file)))
    return path + ": " + x_why(errno);
  database_t database(unfinished);
  const auto row = [&](kv_table table, std::span<const kv_cell_t> cells) {
    database.put(table, cells);
  };
  kv_table_writer_t(design, row).write();
  database.put_findings(findings);
  database.run(indexes_and_views);
  database.run("COMMIT;");
  std::string trouble = database.close();
  if (!design.is_unchanged()) trouble = kvi_changed_message(from);
  if (trouble.empty() && std::rename(unfinished.c_str(), path.c_str()) == 0) return "";
  const std::string why = trouble.empty() ? x_why(errno) : trouble;
  std::remove(unfinished.c_str());
  return path + ": " + why;
}
