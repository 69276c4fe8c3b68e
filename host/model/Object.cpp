#include "host/model/Object.h"

#include "host/Address.h"
#include "host/SheetPrefix.h"
#include "host/model/Codes.h"

namespace quorin::host {
namespace {

using Descriptor = AppleEventDescriptor;

Descriptor element(FourCharCode elementClass, FourCharCode form, Descriptor data,
                   Descriptor container) {
  return Descriptor::specifier({{codes::desiredClass, Descriptor::typeCode(elementClass)},
                                {codes::keyForm, Descriptor::enumerator(form)},
                                {codes::keyData, std::move(data)},
                                {codes::container, std::move(container)}});
}

Descriptor workbookSpecifier(const std::string& name) {
  return element(codes::workbook, codes::formName, Descriptor::text(name), Descriptor::null());
}

struct SpecifierOf {
  Descriptor operator()(const ApplicationObject&) const { return Descriptor::null(); }
  Descriptor operator()(const WorkbookObject& object) const {
    return workbookSpecifier(object.name);
  }
  Descriptor operator()(const SheetObject& object) const { return specifierOf(object.sheet); }
  Descriptor operator()(const WindowObject& object) const {
    return element(codes::window, codes::formIndex, Descriptor::integer(object.index),
                   Descriptor::null());
  }
  Descriptor operator()(const RangeObject& object) const { return specifierOf(object.range); }
  Descriptor operator()(const NamedItemObject& object) const {
    return element(codes::namedItem, codes::formName, Descriptor::text(listedName(object.name)),
                   workbookSpecifier(object.book));
  }
  Descriptor operator()(const ConditionObject& object) const {
    return element(codes::formatCondition, codes::formIndex, Descriptor::integer(object.index),
                   specifierOf(object.range));
  }
  Descriptor operator()(const InteriorObject& object) const {
    return element(codes::propertyType, codes::formProperty,
                   Descriptor::typeCode(codes::interiorObject), (*this)(object.condition));
  }
};

}  // namespace

Descriptor specifierOf(const Object& object) {
  return std::visit(SpecifierOf(), object);
}

Descriptor specifierOf(const SheetRef& sheet) {
  return element(codes::worksheet, codes::formName, Descriptor::text(sheet.sheet),
                 workbookSpecifier(sheet.book));
}

Descriptor specifierOf(const RangeRef& range) {
  return element(codes::range, codes::formName, Descriptor::text(addressText(range.areas)),
                 specifierOf(range.sheet));
}

std::string listedName(const DefinedName& name) {
  return name.sheet.empty() ? name.name : sheetPrefix({}, name.sheet) + name.name;
}

}  // namespace quorin::host
