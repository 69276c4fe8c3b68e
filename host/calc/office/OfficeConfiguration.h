// The office's registry. Call thread.
#pragma once

#include <com/sun/star/uno/XComponentContext.hpp>

namespace quorin::host::calc {

enum class ConfigurationUse { reading, changing };

// The node at that path, an XNameAccess and XPropertySet; to change it an XChangesBatch as well.
// Throws UNO's exceptions.
css::uno::Reference<css::uno::XInterface> configurationAt(
    const css::uno::Reference<css::uno::XComponentContext>& context, const char* path,
    ConfigurationUse use = ConfigurationUse::reading);

}  // namespace quorin::host::calc
