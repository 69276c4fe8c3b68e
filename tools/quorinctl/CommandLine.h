// CommandLine: what quorinctl was asked to do. Pure.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace quorin::ctl {

// quorinctl [--workbook FILE | --attach] [--data DIR] [--timing]
struct ServeCommand {
  std::optional<std::filesystem::path> workbook;  // opened in a private Calc
  bool attach = false;                            // to the user's own Calc instead
  std::optional<std::filesystem::path> data;      // where the private run keeps its files
  bool timing = false;
  bool operator==(const ServeCommand&) const = default;
};

// quorinctl lint FILE
struct LintCommand {
  std::filesystem::path file;
  bool operator==(const LintCommand&) const = default;
};

// Nothing to do but to say this: help on standard output with status 0, or one line on standard
// error with status 2.
struct Notice {
  std::string text;
  int status = 0;
  bool operator==(const Notice&) const = default;
};

using Command = std::variant<ServeCommand, LintCommand, Notice>;

// Reads the arguments, without the program's own name.
Command parseCommandLine(const std::vector<std::string>& arguments);

}  // namespace quorin::ctl
