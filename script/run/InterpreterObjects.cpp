// Objects: parts of the script's own values, and specifiers of the applications' objects.
#include "kit/value/EventErrors.h"
#include "script/run/Interpreter.h"
#include "script/run/SpecifierBuilder.h"
#include "script/values/Coercion.h"
#include "script/values/Display.h"
#include "script/values/LocalObjects.h"
#include "script/values/ValueDescriptors.h"

namespace quorin::script {
namespace {

// The text whose characters have these code points.
std::optional<std::string> textOfCodePoints(const Value& points) {
  std::string text;
  for (const Value& item : toListItems(points)) {
    const double value = item.isNumber() ? item.number() : -1;
    if (!(value >= 0 && value <= 0x10FFFF) || (value >= 0xD800 && value <= 0xDFFF)) return {};
    const auto point = static_cast<std::uint32_t>(value);
    const auto put = [&](std::uint32_t byte) { text += static_cast<char>(byte); };
    if (point < 0x80) {
      put(point);
    } else if (point < 0x800) {
      put(0xC0 | (point >> 6));
      put(0x80 | (point & 0x3F));
    } else if (point < 0x10000) {
      put(0xE0 | (point >> 12));
      put(0x80 | ((point >> 6) & 0x3F));
      put(0x80 | (point & 0x3F));
    } else {
      put(0xF0 | (point >> 18));
      put(0x80 | ((point >> 12) & 0x3F));
      put(0x80 | ((point >> 6) & 0x3F));
      put(0x80 | (point & 0x3F));
    }
  }
  return text;
}

Value specifierValue(AppleEventDescriptor descriptor, Application* application) {
  return std::make_shared<const Specifier>(Specifier{std::move(descriptor), application});
}

}  // namespace

AppleEventDescriptor Interpreter::containerDescriptor(const Value& container) {
  const Specifier* specifier = container.specifier();
  return specifier ? specifier->descriptor : AppleEventDescriptor::null();
}

Interpreter::Resolved Interpreter::containerOf(const Part& part) {
  if (part.container) return resolve(*part.container);
  const bool ownCharacter =
      part.selector.code == fourCharCode("cha ") && part.selector.form == Form::id;
  if (ownCharacter) return {LanguageSelf{}, false};
  if (frame_->examining && frame_->target.application()) {
    return {specifierValue(examinedObject(), frame_->target.application()), true};
  }
  return {frame_->target, false};
}

Selector Interpreter::selectorOf(const Part& part, const Value& container) {
  Selector selector = part.selector;
  // Keys belong to what stands around the filter, not to the objects it looks at.
  const Restoring<bool> outside(frame_->examining, false);
  if (part.key) selector.key = dereference(evaluate(*part.key));
  if (part.upper) selector.upper = dereference(evaluate(*part.upper));
  if (selector.form == Form::index && selector.key.text()) selector.form = Form::name;
  if (selector.form == Form::name && container.application() && !selector.key.text()) {
    failCannotCoerce(selector.key, fourCharCode("ctxt"));
  }
  return selector;
}

Interpreter::Resolved Interpreter::resolvePart(const Part& part) {
  return resolveIn(part, containerOf(part));
}

Interpreter::Resolved Interpreter::resolveIn(const Part& part, const Resolved& holder) {
  // The whole of a reference is asked for by its contents.
  const bool contents =
      part.selector.form == Form::property && part.selector.code == fourCharCode("pcnt");
  const Value container = dereference(holder.value);
  Application* application = container.application();
  if (contents && application) return {container, container.specifier() != nullptr};
  Selector selector = selectorOf(part, container);
  if (std::optional<Value> special = specialPart(selector, container)) {
    return {std::move(*special), false};
  }
  if (!application) {
    if (part.filter) {
      throw Failure{eventErrors::noSuchObject,
                    "Can't get " + displaySelector(selector) + " of " + displayText(container) +
                        " by a condition.",
                    container};
    }
    return {getPart(container, selector, rules_), false};
  }
  AppleEventDescriptor root = containerDescriptor(container);
  if (part.filter) selector = filteredSelector(part, std::move(selector), root);
  return {specifierValue(buildSpecifier(selector, std::move(root)), application), true};
}

// What the language answers by itself: its delimiters, the script's own names, whether an
// application runs.
std::optional<Value> Interpreter::specialPart(const Selector& selector, const Value& container) {
  const bool property = selector.form == Form::property;
  const bool own = container.as<ScriptSelf>() || container.as<LanguageSelf>();
  if (property && own && selector.code == fourCharCode("txdl")) return delimiters_;
  if (own && selector.form == Form::id && selector.code == fourCharCode("cha ")) {
    const auto text = textOfCodePoints(selector.key);
    if (!text) failCannotGet("character id " + displayText(selector.key));
    return *text;
  }
  if (container.as<ScriptSelf>() && selector.form == Form::label) {
    const Value* global = globalNamed(selector.label);
    if (global && !global->isNothing()) return *global;
    failCannotGet(selector.label);
  }
  if (const auto* application = container.as<ApplicationObject>();
      application && property && selector.code == fourCharCode("prun")) {
    return application->application->isRunning();
  }
  return std::nullopt;
}

Interpreter::Resolved Interpreter::resolveInsertion(const Insertion& insertion) {
  const Value object =
      insertion.object ? dereference(resolve(*insertion.object).value) : frame_->target;
  Application* application = object.application();
  if (!application) {
    failCannotGet(std::string(insertion.position == fourCharCode("bgng") ? "beginning" : "end") +
                  " of " + displayText(object));
  }
  return {
      specifierValue(buildInsertion(insertion.position, containerDescriptor(object)), application),
      false};
}

// All elements of the class that pass the test are the container of an ordinal among them.
Selector Interpreter::filteredSelector(const Part& part, Selector selector,
                                       AppleEventDescriptor& container) {
  Selector test;
  test.form = Form::test;
  test.code = selector.code;
  test.test = testOf(*part.filter);
  if (selector.form == Form::all) return test;
  container = buildSpecifier(test, std::move(container));
  return selector;
}

AppleEventDescriptor Interpreter::testOperand(const Expression& operand) {
  Value value;
  {
    const Restoring<bool> examining(frame_->examining, true);
    if (std::holds_alternative<It>(operand.data)) return examinedObject();
    Resolved resolved = resolve(operand);
    value = std::move(resolved.value);
    const Specifier* specifier = value.specifier();
    if (!resolved.pending || !specifier || isRootedInExamined(specifier->descriptor)) {
      return toDescriptor(value);
    }
  }
  return toDescriptor(fetchObject(value));
}

AppleEventDescriptor Interpreter::testOf(const Expression& condition) {
  checkBudgets();
  const auto list = [](AppleEventDescriptor first) {
    AppleEventDescriptor::Items items;
    items.push_back(std::move(first));
    return items;
  };
  if (const auto* binary = std::get_if<Binary>(&condition.data)) {
    return buildComparison(binary->operation, testOperand(*binary->left),
                           testOperand(*binary->right));
  }
  if (const auto* logical = std::get_if<Logical>(&condition.data)) {
    AppleEventDescriptor::Items terms = list(testOf(*logical->left));
    terms.push_back(testOf(*logical->right));
    return buildLogical(logical->isAnd ? fourCharCode("AND ") : fourCharCode("OR  "),
                        std::move(terms));
  }
  if (const auto* negation = std::get_if<Not>(&condition.data)) {
    return buildLogical(fourCharCode("NOT "), list(testOf(*negation->operand)));
  }
  // A property that is itself true or false.
  return buildComparison(Operator::equal, testOperand(condition),
                         AppleEventDescriptor::boolean(true));
}

Value Interpreter::fetchObject(const Value& object) {
  const Specifier& specifier = *object.specifier();
  AppleEvent event;
  event.eventClass = fourCharCode("core");
  event.eventID = fourCharCode("getd");
  event.parameters.push_back({keyDirectObject, specifier.descriptor});
  std::optional<Value> answer = send(*specifier.application, std::move(event));
  if (answer) return std::move(*answer);
  throw Failure{eventErrors::noResult, "No result was returned from some part of this expression."};
}

}  // namespace quorin::script
