// WorkbookNames: what the open workbooks of one office are called: always differently, whatever the
// case of the letters, and each by the same name as long as it is open and its file has that name.
// What somebody was told a workbook is called is still true when another of its name is opened.
// Call thread.
//
// The memory is the office's own, in its component context, so that the names are the same on the
// next connection and for the next process.
#pragma once

#include <com/sun/star/container/XNameContainer.hpp>
#include <com/sun/star/uno/XComponentContext.hpp>
#include <map>
#include <string>
#include <vector>

namespace quorin::host::calc {

struct OpenWorkbook {
  std::string uid;          // its "RuntimeUID"
  std::string url = {};     // empty before it is saved
  std::string title = {};   // of one without a URL
  std::string called = {};  // so far; empty for one that is new
};

class WorkbookNames {
 public:
  explicit WorkbookNames(const css::uno::Reference<css::uno::XComponentContext>& context);

  // Of all that are open, in the order of opening: a name for each.
  std::vector<std::string> of(std::vector<OpenWorkbook> open);

 private:
  std::string remembered(const std::string& uid) const;
  void remember(const std::string& uid, const std::string& name) const;
  void forgetAllBut(const std::vector<OpenWorkbook>& open);

  const css::uno::Reference<css::container::XNameContainer> memory_;  // or none
  std::map<std::string, std::string> called_;                         // by uid
};

// The name as Excel would give it, the file's with its suffix or the title of an unsaved one. Where
// another has it already, as many of the folders that it is in as tell them apart are put in front,
// and where they do not a number behind. One that is called by any of these names keeps it.
std::vector<std::string> workbookNames(const std::vector<OpenWorkbook>& open);

}  // namespace quorin::host::calc
