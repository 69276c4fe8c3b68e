#include "tools/quorinctl/CommandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>

namespace quorin::ctl {

namespace {

Notice refusal(std::string text) {
  std::replace(text.begin(), text.end(), '\n', ' ');
  return {"quorinctl: " + text, 2};
}

}  // namespace

Command parseCommandLine(const std::vector<std::string>& arguments) {
  CLI::App app("Answers requests about a workbook, one line of JSON each.", "quorinctl");
  ServeCommand serve;
  LintCommand lint;
  std::string workbook;
  std::string data;
  std::string script;
  CLI::Option* const workbookOption =
      app.add_option("--workbook", workbook, "Open this workbook in a private, headless Calc")
          ->type_name("FILE");
  CLI::Option* const attachOption =
      app.add_flag("--attach", serve.attach, "Ask the running Calc instead of a private one");
  CLI::Option* const dataOption =
      app.add_option("--data", data, "Keep the private run's log and records here")
          ->type_name("DIR");
  app.add_flag("--timing", serve.timing, "Say in each reply how many milliseconds it took");
  app.set_version_flag("--version", QUORIN_VERSION);
  workbookOption->excludes(attachOption);
  dataOption->excludes(attachOption);
  CLI::App* const lintCommand = app.add_subcommand("lint", "Check a handler library");
  lintCommand->add_option("FILE", script, "The script's text")->required();

  try {
    std::vector<std::string> reversed(arguments.rbegin(), arguments.rend());
    app.parse(std::move(reversed));
  } catch (const CLI::CallForHelp&) {
    return Notice{app.help(), 0};
  } catch (const CLI::CallForVersion& version) {
    return Notice{version.what(), 0};
  } catch (const CLI::ParseError& error) {
    return refusal(error.what());
  }
  if (lintCommand->parsed()) {
    if (*workbookOption || *attachOption || *dataOption || serve.timing)
      return refusal("lint takes a file and nothing else");
    lint.file = script;
    return lint;
  }
  if (*workbookOption) serve.workbook = workbook;
  if (*dataOption) serve.data = data;
  return serve;
}

}  // namespace quorin::ctl
