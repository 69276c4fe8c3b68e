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

// quorinctl audit FILE... [--format FORMAT] [--output FILE] [--top N] [--fail-on LEVEL] [--jobs N]
//                         [--give-up SECONDS] [--resume]
struct AuditCommand {
  std::vector<std::filesystem::path> files;  // workbooks, and folders of them
  std::string format = "text";               // text, json, jsonl, csv, html or sarif
  std::optional<std::filesystem::path> output;
  int top = 100;                      // so many findings of each workbook at most
  std::optional<std::string> failOn;  // fact, doubt or style
  std::optional<int> jobs;  // so many workbooks at a time; as many as processors if absent
  std::optional<std::filesystem::path> review;  // the file with what was said of findings
  int giveUp = 600;                             // seconds without a word from a workbook
  bool resume = false;                          // goes on with the output, which is jsonl
  bool operator==(const AuditCommand&) const = default;
};

// quorinctl audit-workbook FILE --top N [--pictures], which `quorinctl audit` runs for each
// workbook.
struct AuditWorkbookCommand {
  std::filesystem::path file;
  int top = 100;
  std::optional<std::filesystem::path> review;
  bool pictures = false;  // of the sheets, in the report
  bool operator==(const AuditWorkbookCommand&) const = default;
};

// Nothing to do but to say this: help on standard output with status 0, or one line on standard
// error with status 2.
struct Notice {
  std::string text;
  int status = 0;
  bool operator==(const Notice&) const = default;
};

using Command = std::variant<ServeCommand, LintCommand, AuditCommand, AuditWorkbookCommand, Notice>;

// Reads the arguments, without the program's own name.
Command parseCommandLine(const std::vector<std::string>& arguments);

}  // namespace quorin::ctl
