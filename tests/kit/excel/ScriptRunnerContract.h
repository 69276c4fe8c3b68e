// The contract of the port ScriptRunner, run against every implementation of it. A test program
// includes this header once and instantiates the suite:
//
//   INSTANTIATE_TEST_SUITE_P(Engine, ScriptRunnerContract,
//                            testing::Values(ScriptRunnerMaker{"engine", &makeEngineRunner}));
//
// The scripts speak to no application.
#pragma once

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <utility>

#include "kit/excel/ScriptRunner.h"
#include "kit/value/Marshal.h"
#include "tests/fakes/Named.h"

namespace quorin {

using ScriptRunnerMaker = fakes::Named<std::unique_ptr<ScriptRunner> (*)()>;

class ScriptRunnerContract : public testing::TestWithParam<ScriptRunnerMaker> {
 protected:
  static constexpr const char* script = R"script(
property calls9 : 0
on c_same(given9)
  return given9
end c_same
on c_less(first9, second9)
  return first9 - second9
end c_less
on c_nothing()
end c_nothing
on c_missing()
  return missing value
end c_missing
on c_next()
  set calls9 to calls9 + 1
  return calls9
end c_next
on c_fail()
  error "The range is too large." number -9001
end c_fail
on c_label(given9)
  return {a9 of given9, b9 of given9}
end c_label
on c_record()
  return {x9:1.5, y9:{"one", true}}
end c_record
)script";

  void SetUp() override {
    const auto error = runner->compile(script);
    ASSERT_FALSE(error) << error->message.value_or("");
  }

  ScriptReply call(const std::string& handler, JSONValue::Array arguments = {}) {
    AppleEvent event{fourCharCode("ascr"), fourCharCode("psbr"), {}, {}};
    event.parameters.push_back({fourCharCode("snam"), AppleEventDescriptor::text(handler)});
    event.parameters.push_back(
        {keyDirectObject, Marshal::toDescriptor(JSONValue(std::move(arguments)))});
    return runner->execute(event);
  }

  // The answer as JSON text, or "error ", its number and its message.
  std::string run(const std::string& handler, JSONValue::Array arguments = {}) {
    const ScriptReply reply = call(handler, std::move(arguments));
    if (reply.error)
      return "error " + std::to_string(reply.error->number.value_or(0)) + " " +
             reply.error->message.value_or("");
    return Marshal::encode(
        Marshal::fromDescriptor(reply.result.value_or(AppleEventDescriptor::null())));
  }

  int errorOf(const std::string& handler, JSONValue::Array arguments = {}) {
    const ScriptReply reply = call(handler, std::move(arguments));
    return reply.error ? reply.error->number.value_or(0) : 0;
  }

  const std::unique_ptr<ScriptRunner> runner = GetParam().value();
};

TEST_P(ScriptRunnerContract, HandsEveryValueOverAndBack) {
  const JSONValue::Object nested{{"a9", 1}, {"b9", JSONValue::Array{true, "x"}}};
  const JSONValue values[] = {true,
                              false,
                              3,
                              -2147483648.0,
                              2147483648.0,
                              3.5,
                              1e10,
                              "",
                              "é – \"quoted\"\n\t東",
                              JSONValue::Array{},
                              JSONValue::Array{1, JSONValue::Array{2.5, "b"}, false},
                              nested};
  for (const JSONValue& value : values) {
    EXPECT_EQ(run("c_same", {value}), Marshal::encode(value));
  }
}

TEST_P(ScriptRunnerContract, PassesArgumentsByPosition) {
  EXPECT_EQ(run("c_less", {10, 3}), "7");
  EXPECT_EQ(errorOf("c_less", {10}), -1721);
}

TEST_P(ScriptRunnerContract, PassesAnObjectAsARecord) {
  EXPECT_EQ(run("c_label", {JSONValue::Object{{"b9", "two"}, {"a9", 1}}}), R"([1,"two"])");
  EXPECT_EQ(run("c_record"), R"({"x9":1.5,"y9":["one",true]})");
}

TEST_P(ScriptRunnerContract, GivesNullForNothingAndForMissingValue) {
  EXPECT_EQ(run("c_nothing"), "null");
  EXPECT_EQ(run("c_missing"), "null");
}

TEST_P(ScriptRunnerContract, GivesAnErrorsNumberAndMessage) {
  EXPECT_EQ(run("c_fail"), "error -9001 The range is too large.");
}

TEST_P(ScriptRunnerContract, FailsForAHandlerThatIsNotThere) {
  EXPECT_EQ(errorOf("c_nobody"), -1708);
}

TEST_P(ScriptRunnerContract, KeepsTheScriptFromCallToCall) {
  EXPECT_EQ(run("c_next"), "1");
  EXPECT_EQ(run("c_next"), "2");
}

TEST_P(ScriptRunnerContract, SaysWhyAScriptDoesNotCompile) {
  const auto error = GetParam().value()->compile("on broken(\nreturn 1\nend broken\n");
  ASSERT_TRUE(error);
  EXPECT_NE(error->number.value_or(0), 0);
  EXPECT_NE(error->message.value_or(""), "");
}

}  // namespace quorin
