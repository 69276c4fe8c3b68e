#include <cstdio>
#include <string>
#include <variant>
#include <vector>

#include "tools/quorinctl/Audit.h"
#include "tools/quorinctl/CommandLine.h"
#include "tools/quorinctl/Lint.h"
#include "tools/quorinctl/Serve.h"
#include "tools/quorinctl/WorkerMain.h"

int main(int argc, char** argv) {
  using namespace quorin::ctl;
  const Command command = parseCommandLine(std::vector<std::string>(argv + 1, argv + argc));
  if (const auto* const notice = std::get_if<Notice>(&command)) {
    std::fprintf(notice->status == 0 ? stdout : stderr, "%s\n", notice->text.c_str());
    return notice->status;
  }
  if (const auto* const check = std::get_if<LintCommand>(&command)) return lint(check->file);
  if (const auto* const review = std::get_if<AuditCommand>(&command)) return audit(*review);
  if (const auto* const one = std::get_if<AuditWorkbookCommand>(&command))
    return auditWorkbook(*one);
  return serve(std::get<ServeCommand>(command));
}
