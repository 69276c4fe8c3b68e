// The shapes of a page, from which the user and the marks keeper take some away meanwhile. The
// pages here are the test's own: no office is asked.
#include <com/sun/star/container/XNamed.hpp>
#include <com/sun/star/drawing/XDrawPage.hpp>
#include <com/sun/star/drawing/XShape.hpp>
#include <com/sun/star/lang/IndexOutOfBoundsException.hpp>
#include <cppuhelper/implbase1.hxx>
#include <cppuhelper/implbase2.hxx>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "host/calc/marks/MarkShape.h"
#include "host/calc/uno/Text.h"

namespace quorin::host::calc {
namespace {

using css::uno::Any;
using css::uno::Reference;
using testing::ElementsAre;

class Shape : public cppu::WeakImplHelper2<css::drawing::XShape, css::container::XNamed> {
 public:
  explicit Shape(const char* name) : name_(toUno(name)) {}

  rtl::OUString SAL_CALL getName() override { return name_; }
  void SAL_CALL setName(const rtl::OUString&) override {}
  rtl::OUString SAL_CALL getShapeType() override { return {}; }
  css::awt::Point SAL_CALL getPosition() override { return {}; }
  void SAL_CALL setPosition(const css::awt::Point&) override {}
  css::awt::Size SAL_CALL getSize() override { return {}; }
  void SAL_CALL setSize(const css::awt::Size&) override {}

 private:
  const rtl::OUString name_;
};

class Page : public cppu::WeakImplHelper1<css::drawing::XDrawPage> {
 public:
  // Its first shape goes each time that the one at `goesAt` has been given, `times` times in all.
  Page(const std::vector<const char*>& names, sal_Int32 goesAt, int times)
      : goesAt_(goesAt), times_(times) {
    for (const char* name : names) shapes_.emplace_back(new Shape(name));
  }

  sal_Int32 SAL_CALL getCount() override { return static_cast<sal_Int32>(shapes_.size()); }
  Any SAL_CALL getByIndex(sal_Int32 index) override {
    if (index < 0 || index >= getCount()) throw css::lang::IndexOutOfBoundsException();
    const Any shape(shapes_[static_cast<std::size_t>(index)]);
    if (index == goesAt_ && times_-- > 0) shapes_.erase(shapes_.begin());
    return shape;
  }
  css::uno::Type SAL_CALL getElementType() override {
    return cppu::UnoType<css::drawing::XShape>::get();
  }
  sal_Bool SAL_CALL hasElements() override { return !shapes_.empty(); }
  void SAL_CALL add(const Reference<css::drawing::XShape>&) override {}
  void SAL_CALL remove(const Reference<css::drawing::XShape>&) override {}

 private:
  const sal_Int32 goesAt_;
  int times_;
  std::vector<Reference<css::drawing::XShape>> shapes_;
};

std::vector<std::string> namesOn(const Reference<css::drawing::XDrawPage>& page) {
  std::vector<std::string> names;
  for (const NamedShape& shape : namedShapes(page)) names.push_back(shape.name);
  return names;
}

TEST(NamedShapes, AreThoseThatAreLeftWhenSomeGoMeanwhile) {
  EXPECT_THAT(namesOn(new Page({"a", "b", "c"}, 1, 0)), ElementsAre("a", "b", "c"));
  EXPECT_THAT(namesOn(new Page({"a", "b", "c"}, 1, 1)), ElementsAre("b", "c"));
  EXPECT_THAT(namesOn(new Page({"a", "b", "c", "d", "e"}, 0, 3)), ElementsAre("d", "e"));
}

TEST(NamedShapes, AreNotSoughtForEverOnAPageThatTellsMoreThanItHas) {
  class Wrong : public Page {
   public:
    Wrong() : Page({"a"}, 0, 0) {}
    sal_Int32 SAL_CALL getCount() override { return 1; }
    Any SAL_CALL getByIndex(sal_Int32) override { throw css::lang::IndexOutOfBoundsException(); }
  };
  EXPECT_THROW(namesOn(new Wrong), css::lang::IndexOutOfBoundsException);
}

}  // namespace
}  // namespace quorin::host::calc
