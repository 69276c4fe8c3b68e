#include "tools/quorinctl/AuditScript.h"

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <jsc/jsc.h>
#include <utility>
#include <vector>

namespace quorin::ctl {

namespace {

struct Unref {
  void operator()(gpointer object) const { g_object_unref(object); }
};
using Value = std::unique_ptr<JSCValue, Unref>;

std::string textOf(JSCValue* value) {
  const std::unique_ptr<char, decltype(&g_free)> text(jsc_value_to_string(value), &g_free);
  return text.get();
}

}  // namespace

struct AuditScript::Engine {
  explicit Engine(Host given) : host(std::move(given)), context(jsc_context_new()) {}

  Value own(JSCValue* value) const { return Value(value); }
  Value text(const std::string& bytes) const {
    return own(jsc_value_new_string(context.get(), bytes.c_str()));
  }
  Value truth(bool value) const { return own(jsc_value_new_boolean(context.get(), value)); }
  Value number(double value) const { return own(jsc_value_new_number(context.get(), value)); }

  // Throws what the script threw.
  void check() {
    JSCException* const thrown = jsc_context_get_exception(context.get());
    if (thrown == nullptr) return;
    const std::unique_ptr<char, decltype(&g_free)> report(jsc_exception_report(thrown), &g_free);
    const std::string why = report.get();
    jsc_context_clear_exception(context.get());
    throw Error(why);
  }

  Value call(const char* method, std::vector<JSCValue*> arguments) {
    Value result = own(jsc_value_object_invoke_methodv(
        audit.get(), method, static_cast<guint>(arguments.size()), arguments.data()));
    check();
    return result;
  }

  // Offers the script a function that takes one text.
  void offer(JSCValue* native, const char* name, std::function<void(std::string)> Host::*member) {
    struct Target {
      Engine* engine;
      std::function<void(std::string)> Host::*member;
    };
    const auto called = +[](const char* given, gpointer target) {
      const auto* const to = static_cast<Target*>(target);
      (to->engine->host.*to->member)(given);
    };
    const Value function = own(jsc_value_new_function(
        context.get(), name, G_CALLBACK(called), new Target{this, member},
        +[](gpointer target) { delete static_cast<Target*>(target); }, G_TYPE_NONE, 1,
        G_TYPE_STRING));
    jsc_value_object_set_property(native, name, function.get());
  }

  const Host host;
  const std::unique_ptr<JSCContext, Unref> context;
  Value audit;
};

void AuditScript::keepSmall() {
  constexpr const char* bytes = "60000000";
  ::setenv("JSC_forceRAMSize", bytes, 0);
}

std::filesystem::path AuditScript::installed() {
  const auto folder = std::filesystem::read_symlink("/proc/self/exe").parent_path();
  const auto built = folder / "resources" / "audit.js";
  if (std::filesystem::exists(built)) return built;
  return folder.parent_path() / "share" / "quorin" / "audit.js";
}

AuditScript::AuditScript(const std::filesystem::path& file, Host host)
    : engine_(std::make_unique<Engine>(std::move(host))) {
  std::ifstream stream(file, std::ios::binary);
  const std::string source((std::istreambuf_iterator<char>(stream)), {});
  if (!stream.is_open() || stream.bad()) throw Error(file.string() + " cannot be read");
  Engine& engine = *engine_;
  JSCContext* const context = engine.context.get();
  const Value native = engine.own(jsc_value_new_object(context, nullptr, nullptr));
  engine.offer(native.get(), "ask", &Host::ask);
  engine.offer(native.get(), "progress", &Host::progress);
  engine.offer(native.get(), "failed", &Host::failed);
  engine.offer(native.get(), "done", &Host::done);
  const auto after = +[](double milliseconds, int id, gpointer target) {
    static_cast<Engine*>(target)->host.after(
        std::chrono::milliseconds(static_cast<std::int64_t>(milliseconds)), id);
  };
  const Value function =
      engine.own(jsc_value_new_function(context, "after", G_CALLBACK(after), &engine, nullptr,
                                        G_TYPE_NONE, 2, G_TYPE_DOUBLE, G_TYPE_INT));
  jsc_value_object_set_property(native.get(), "after", function.get());
  const auto review = +[](const char* of, gpointer target) -> char* {
    return g_strdup(static_cast<Engine*>(target)->host.review(of).c_str());
  };
  const Value reviewed = engine.own(jsc_value_new_function(
      context, "review", G_CALLBACK(review), &engine, nullptr, G_TYPE_STRING, 1, G_TYPE_STRING));
  jsc_value_object_set_property(native.get(), "review", reviewed.get());
  jsc_context_set_value(context, "native", native.get());
  const Value ignored = engine.own(jsc_context_evaluate_with_source_uri(
      context, source.data(), static_cast<gssize>(source.size()), "audit.js", 1));
  engine.check();
  engine.audit = engine.own(jsc_context_get_value(context, "quorinAudit"));
  if (!jsc_value_is_object(engine.audit.get()))
    throw Error(file.string() + " is not the audit of this version");
}

AuditScript::~AuditScript() = default;

void AuditScript::begin(const std::string& file, int top, bool withReview, bool withPictures) {
  engine_->call("begin", {engine_->text(file).get(), engine_->number(top).get(),
                          engine_->truth(withReview).get(), engine_->truth(withPictures).get()});
}

void AuditScript::reply(const std::string& reply) {
  engine_->call("reply", {engine_->text(reply).get()});
}

void AuditScript::due(int id) {
  engine_->call("due", {engine_->number(id).get()});
}

std::string AuditScript::written(const std::string& reports, const std::string& format) {
  return textOf(engine_
                    ->call("write", {engine_->text(reports).get(), engine_->text(format).get(),
                                     engine_->text(QUORIN_VERSION).get()})
                    .get());
}

bool AuditScript::isLineByLine(const std::string& format) {
  return jsc_value_to_boolean(engine_->call("isLineByLine", {engine_->text(format).get()}).get());
}

}  // namespace quorin::ctl
