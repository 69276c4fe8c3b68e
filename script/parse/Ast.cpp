#include "script/parse/Ast.h"

#include "script/terms/Words.h"

namespace quorin::script {

const Handler* Program::find(std::string_view name) const {
  const std::string sought = lowerCase(name);
  for (const Handler& handler : handlers) {
    if (lowerCase(handler.name) == sought) return &handler;
  }
  return nullptr;
}

}  // namespace quorin::script
