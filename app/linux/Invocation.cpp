#include "app/linux/Invocation.h"

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

#include "app/shell/Views.h"

namespace quorin {

std::variant<Invocation, int> parseInvocation(int argc, const char* const* argv) {
  Invocation invocation;
  CLI::App options("Quorin: a companion for auditing spreadsheets, beside LibreOffice Calc.",
                   "quorin");
  std::vector<std::string> names;
  std::string commands;
  for (const SummonedView& view : views::all) {
    names.emplace_back(view.name);
    commands += "--show " + names.back() + ", ";
  }
  CLI::Option* const show = options
                                .add_option("--show", invocation.request.view,
                                            "Bring the panel up, on a view where one is named")
                                ->type_name("[VIEW]")
                                ->expected(0, 1)
                                ->check(CLI::IsMember(names));
  options
      .add_option("--step", invocation.request.direction,
                  "Step forward (1) or back (-1) in the panel that is up")
      ->type_name("N")
      ->check(CLI::IsMember({1, -1}))
      ->excludes(show);
  options.footer(
      "Where the desktop keeps the key combinations of Quorin to itself, its settings can bind "
      "keys\n"
      "to these commands: quorin " +
      commands + "--step 1, --step -1");
  options.set_version_flag("--version", QUORIN_VERSION);
  constexpr int badCall = 2;
  try {
    options.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return options.exit(error) == 0 ? 0 : badCall;
  }
  invocation.show = show->count() > 0;
  return invocation;
}

}  // namespace quorin
