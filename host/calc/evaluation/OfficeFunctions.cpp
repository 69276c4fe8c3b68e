#include "host/calc/evaluation/OfficeFunctions.h"

#include <com/sun/star/lang/XMultiServiceFactory.hpp>
#include <com/sun/star/sheet/FormulaLanguage.hpp>
#include <com/sun/star/sheet/XFormulaOpCodeMapper.hpp>

#include "host/calc/uno/Arguments.h"
#include "host/calc/uno/Text.h"

namespace quorin::host::calc {

using css::uno::Reference;
using css::uno::UNO_QUERY_THROW;

bool OfficeFunctions::has(const Workbook& workbook, const std::string& function) {
  if (const auto known = asked_.find(function); known != asked_.end()) return known->second;
  const Reference<css::lang::XMultiServiceFactory> factory(workbook.model, UNO_QUERY_THROW);
  const Reference<css::sheet::XFormulaOpCodeMapper> mapper(
      factory->createInstance("com.sun.star.sheet.FormulaOpCodeMapper"), UNO_QUERY_THROW);
  const auto found =
      mapper->getMappings(sequenceOf({toUno(function)}), css::sheet::FormulaLanguage::API);
  const bool has = found.hasElements() && found[0].OpCode != mapper->getOpCodeUnknown();
  asked_.emplace(function, has);
  return has;
}

}  // namespace quorin::host::calc
