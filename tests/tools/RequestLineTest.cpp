#include <gmock/gmock.h>
#include <optional>
#include <string>
#include <utility>

#include "kit/value/Marshal.h"
#include "tools/quorinctl/RequestLine.h"

namespace quorin::ctl {
namespace {

using Array = JSONValue::Array;
using Object = JSONValue::Object;

std::string replyLine(const JSONValue& id, Bridge::Reply reply,
                      std::optional<double> milliseconds) {
  return Marshal::encode(replyObject(id, std::move(reply), milliseconds));
}

Request request(const std::string& line) {
  const auto parsed = parseRequest(line);
  if (const auto* const good = std::get_if<Request>(&parsed)) return *good;
  ADD_FAILURE() << line << " is no request";
  return {};
}

// The id and the message of the refusal, as text.
std::string refusal(const std::string& line) {
  const auto parsed = parseRequest(line);
  if (const auto* const refused = std::get_if<Refused>(&parsed))
    return replyLine(refused->id, refused->reply, std::nullopt);
  return "a request";
}

std::string refusalReply(const std::string& id, const std::string& message) {
  return "{\"id\":" + id + ",\"ok\":false,\"payload\":{\"kind\":\"transport\",\"message\":\"" +
         message + "\"}}";
}

TEST(RequestLine, ReadsIdVerbAndArguments) {
  EXPECT_EQ(request(R"({"id":3,"verb":"evaluate","args":["1/0"]})"),
            (Request{3, "evaluate", {"1/0"}}));
  EXPECT_EQ(request(R"({"verb":"x","id":1.5,"more":true})"), (Request{1.5, "x", {}}));
}

TEST(RequestLine, HasNoArgumentsWhereTheyAreNoArray) {
  EXPECT_EQ(request(R"({"id":1,"verb":"probe","args":"x"})"), (Request{1, "probe", {}}));
  EXPECT_EQ(request(R"({"id":1,"verb":"probe","args":null})"), (Request{1, "probe", {}}));
}

TEST(RequestLine, RefusesARequestWithoutVerb) {
  EXPECT_EQ(refusal(R"({"id":7})"), refusalReply("7", "missing verb"));
  EXPECT_EQ(refusal(R"({"id":7,"verb":""})"), refusalReply("7", "missing verb"));
  EXPECT_EQ(refusal(R"({"id":7,"verb":1})"), refusalReply("7", "missing verb"));
}

TEST(RequestLine, RefusesALineWithoutUsableId) {
  const std::string noId = refusalReply("null", "malformed request: \\\"id\\\" is not a number");
  EXPECT_EQ(refusal(R"({"verb":"probe"})"), noId);
  EXPECT_EQ(refusal(R"({"id":"1","verb":"probe"})"), noId);
  EXPECT_EQ(refusal(R"({"id":true,"verb":"probe"})"), noId);
  EXPECT_EQ(refusal("[1]"), refusalReply("null", "malformed request: not an object"));
  EXPECT_EQ(refusal("1"), refusalReply("null", "malformed request: not an object"));
}

TEST(RequestLine, SaysWhereALineIsNoJSON) {
  for (const char* line : {"", "{", "{\"id\":1,}", "probe", "{\"id\":1}{}", "\xff"}) {
    EXPECT_THAT(refusal(line),
                testing::StartsWith("{\"id\":null,\"ok\":false,\"payload\":{\"kind\":"
                                    "\"transport\",\"message\":\"malformed request: "))
        << line;
    EXPECT_THAT(refusal(line), testing::HasSubstr(" (byte ")) << line;
  }
}

TEST(RequestLine, RefusesALineThatIsTooLong) {
  const Refused refused = tooLong(100);
  EXPECT_EQ(replyLine(refused.id, refused.reply, std::nullopt),
            refusalReply("null", "malformed request: longer than 100 bytes"));
}

TEST(ReplyLine, IsWhatThePageGets) {
  EXPECT_EQ(replyLine(7, {true, Object{{"b", 1}, {"a", "x/y"}}}, std::nullopt),
            R"({"id":7,"ok":true,"payload":{"a":"x\/y","b":1}})");
  EXPECT_EQ(replyLine(1.5, {false, nullptr}, std::nullopt),
            R"({"id":1.5,"ok":false,"payload":null})");
}

TEST(ReplyLine, CarriesTheTimeWhereItWasMeasured) {
  EXPECT_EQ(replyLine(7, {true, nullptr}, 12.345),
            R"({"id":7,"ms":12.345,"ok":true,"payload":null})");
}

}  // namespace
}  // namespace quorin::ctl
