// AuditList: the list that `quorinctl audit` writes: of each workbook what was found, or why it
// could not be audited. Main thread.
#pragma once

#include <cstddef>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "kit/value/JSONValue.h"
#include "tools/quorinctl/AuditScript.h"
#include "tools/quorinctl/CommandLine.h"

namespace quorin::ctl {

class AuditList {
 public:
  // Throws AuditScript::Error, and Unserved when the output cannot be written.
  AuditList(const AuditCommand& command, std::vector<std::filesystem::path> files);
  ~AuditList();
  AuditList(const AuditList&) = delete;
  AuditList& operator=(const AuditList&) = delete;

  // The indexes of the files that are still to be audited. What the output has of the others
  // already counts as added.
  std::vector<std::size_t> open() const;

  // Lines of JSON are written as they come, texts as soon as those before them are, all else at the
  // end. Throws Unserved when that fails.
  void add(std::size_t index, JSONValue report);

  // Where it goes to a file: that is there when the list is whole, and as it was before otherwise,
  // but for a list that is gone on with. Throws Unserved.
  void finish();

  bool hasFailure() const { return hasFailure_; }  // a workbook could not be audited
  bool hasFinding() const { return hasFinding_; }  // of the level that the command fails on

 private:
  void takeUp();
  void judge(const JSONValue& report);
  void write(const std::string& text);

  const AuditCommand command_;
  const std::vector<std::filesystem::path> files_;
  AuditScript writer_;
  std::map<std::size_t, JSONValue> held_;  // not yet written
  std::set<std::size_t> known_;            // of a list that is gone on with
  std::size_t next_ = 0;                   // the first whose text is not yet written
  std::string text_;                       // for the file
  int begun_ = -1;                         // the file that is gone on with
  bool hasFailure_ = false;
  bool hasFinding_ = false;
};

}  // namespace quorin::ctl
