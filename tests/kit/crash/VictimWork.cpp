#include "tests/kit/crash/VictimWork.h"

#include "host/EngineRunner.h"
#include "host/model/ExcelObjectModel.h"
#include "kit/bridge/Bridge.h"
#include "tests/fakes/FaultyFileSystem.h"

namespace quorin::crash {

namespace {

class Running : public TargetApplication {
  bool isRunning() override { return true; }
};

JSONValue answered(Bridge& bridge, const std::string& verb, const JSONValue::Array& args) {
  if (verb == "restoreStranded") {
    bridge.restoreStranded();
    return nullptr;
  }
  if (verb == "terminate") {
    bridge.clearMarksForTerminate();
    return nullptr;
  }
  const Bridge::Reply reply = bridge.dispatch(verb, args);
  return JSONValue::Array{reply.ok, reply.payload};
}

}  // namespace

void serve(
    Victim& victim, const std::filesystem::path& folder,
    const std::function<std::unique_ptr<host::Spreadsheet>(FileSystem& files)>& spreadsheet) {
  FaultyFileSystem files;
  files.tellAll([&](const std::string& step, const std::filesystem::path& path) {
    const std::string name = path == folder ? "folder" : path.filename().string();
    // The names of temporary files hold numbers of processes.
    const int number = victim.pass(step + " " + (name.ends_with(".tmp") ? "temporary" : name));
    if (number != 0) throw FileError(number, step, path);
  });
  DiagLog log(folder / "quorin.log", 4'000'000, 3'000'000);
  HighlightStore store(folder / "highlights.json", files, &log);
  UnhideStore unhide(folder / "unhidden.json", files, &log);
  Running target;
  ExcelThread thread(
      [&](CallThreadPost) {
        return std::make_unique<host::EngineRunner>(
            std::make_unique<host::ExcelObjectModel>(spreadsheet(files)));
      },
      log);
  Bridge bridge(thread, log, store, unhide, target);
  for (JSONValue answer = nullptr;;) {
    const JSONValue request = victim.next(std::move(answer));
    if (request.isNull()) return;
    answer = answered(bridge, *item(request, 0).string(), *item(request, 1).array());
  }
}

}  // namespace quorin::crash
