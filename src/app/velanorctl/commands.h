// The sub-commands of velanorctl, one source file each. A new one is declared here and joined to
// the table in main.cpp.
#pragma once

namespace CLI {
class App;
}

namespace velanor::app {

// The exit status when the database file itself is damaged.
inline constexpr int kDamaged = 3;

// Adds its sub-command to the program; when that is called, it leaves the exit status in `status`.
// A failure that ends it is an exception, whose sentence the program prints.
void add_play(CLI::App& program, int& status);
void add_demo(CLI::App& program, int& status);
void add_import(CLI::App& program, int& status);
void add_export(CLI::App& program, int& status);
void add_select(CLI::App& program, int& status);
void add_show(CLI::App& program, int& status);
void add_year(CLI::App& program, int& status);
void add_check(CLI::App& program, int& status);
void add_backup(CLI::App& program, int& status);
void add_restore(CLI::App& program, int& status);
void add_history(CLI::App& program, int& status);
void add_diff(CLI::App& program, int& status);
void add_restore_version(CLI::App& program, int& status);
void add_purge_history(CLI::App& program, int& status);
void add_copy(CLI::App& program, int& status);
void add_employees(CLI::App& program, int& status);
void add_setup_server(CLI::App& program, int& status);

}  // namespace velanor::app
