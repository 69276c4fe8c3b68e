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
  AuditCommand audit;
  std::string output;
  std::string level;
  CLI::App* const auditCommand =
      app.add_subcommand("audit", "List what is odd in workbooks, the most telling first");
  auditCommand->add_option("FILE", audit.files, "Workbooks, or folders of them")->required();
  auditCommand->add_option("--format", audit.format, "How the list is written")
      ->check(CLI::IsMember({"text", "json", "jsonl", "csv", "html", "sarif"}))
      ->capture_default_str();
  CLI::Option* const outputOption =
      auditCommand->add_option("--output", output, "Write it here instead of to standard output")
          ->type_name("FILE");
  auditCommand->add_option("--top", audit.top, "So many findings of each workbook at most")
      ->check(CLI::Range(1, 1000000))
      ->capture_default_str();
  CLI::Option* const levelOption =
      auditCommand
          ->add_option("--fail-on", level, "End with 1 for findings of this level or a graver one")
          ->check(CLI::IsMember({"fact", "doubt", "style"}));
  std::string review;
  CLI::Option* const reviewOption =
      auditCommand
          ->add_option("--review", review,
                       "What was said of findings, as the panel keeps it in reviews.json")
          ->type_name("FILE");
  int jobs = 0;
  CLI::Option* const jobsOption =
      auditCommand
          ->add_option("--jobs", jobs, "So many workbooks at a time; one a processor if not given")
          ->check(CLI::Range(1, 256));
  auditCommand
      ->add_option("--give-up", audit.giveUp,
                   "Give a workbook up after so many seconds without progress")
      ->type_name("SECONDS")
      ->check(CLI::Range(1, 86400))
      ->capture_default_str();
  auditCommand->add_flag(
      "--resume", audit.resume,
      "Go on with the list in the output, which is jsonl: what is in it and has not "
      "changed since is not audited again");
  AuditWorkbookCommand workbookAudit;
  CLI::App* const workbookCommand = app.add_subcommand("audit-workbook", "")->group("");
  workbookCommand->add_option("FILE", workbookAudit.file)->required();
  workbookCommand->add_option("--top", workbookAudit.top);
  CLI::Option* const saidOption = workbookCommand->add_option("--review", review);
  workbookCommand->add_flag("--pictures", workbookAudit.pictures);

  try {
    std::vector<std::string> reversed(arguments.rbegin(), arguments.rend());
    app.parse(std::move(reversed));
  } catch (const CLI::CallForHelp&) {
    return Notice{app.help(), 0};  // of the subcommand, where one was given
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
  if (auditCommand->parsed()) {
    if (*workbookOption || *attachOption || *dataOption || serve.timing)
      return refusal("audit takes its own options only: see quorinctl audit --help");
    if (*outputOption) audit.output = output;
    if (*levelOption) audit.failOn = level;
    if (*reviewOption) audit.review = review;
    if (*jobsOption) audit.jobs = jobs;
    if (audit.resume && (audit.format != "jsonl" || !audit.output))
      return refusal("--resume goes on with a list of lines: it needs --format jsonl and --output");
    return audit;
  }
  if (workbookCommand->parsed()) {
    if (*saidOption) workbookAudit.review = review;
    return workbookAudit;
  }
  if (*workbookOption) serve.workbook = workbook;
  if (*dataOption) serve.data = data;
  return serve;
}

}  // namespace quorin::ctl
