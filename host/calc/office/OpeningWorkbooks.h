// Opens workbooks in an office of ours, so that nothing of them is asked for elsewhere. Call
// thread.
#pragma once

#include <com/sun/star/frame/XDesktop2.hpp>
#include <com/sun/star/uno/XComponentContext.hpp>
#include <string>

namespace quorin::host::calc {

// Opens the file in a window in front. SpreadsheetError -1728 for what is no workbook.
void openWorkbookAlone(const css::uno::Reference<css::uno::XComponentContext>& context,
                       const css::uno::Reference<css::frame::XDesktop2>& desktop,
                       const std::string& path);

}  // namespace quorin::host::calc
