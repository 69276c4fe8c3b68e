#include "app/linux/updates/SoupTransport.h"

#include <algorithm>
#include <array>
#include <utility>

#include "app/linux/updates/Address.h"
#include "kit/platform/Thread.h"

namespace quorin {

namespace {

constexpr std::size_t pieceSize = 64 << 10;
constexpr int mostRedirections = 5;

// One file on its way. Each pending call of the library keeps it alive.
class SoupFetch : public std::enable_shared_from_this<SoupFetch> {
 public:
  SoupFetch(SoupSession* session, std::uint64_t limit, UpdateTransport::Handlers handlers)
      : session_(SOUP_SESSION(g_object_ref(session))),
        limit_(limit),
        handlers_(std::move(handlers)),
        cancellable_(g_cancellable_new()) {}

  void begin(const std::string& url) {
    address_ = url;
    g_idle_add_full(
        G_PRIORITY_DEFAULT,
        [](gpointer data) -> gboolean {
          taken(data)->send();
          return G_SOURCE_REMOVE;
        },
        keep(), nullptr);
  }

  void abandon() {
    over_ = true;
    g_cancellable_cancel(cancellable_.get());
  }

 private:
  gpointer keep() { return new std::shared_ptr<SoupFetch>(shared_from_this()); }
  static std::shared_ptr<SoupFetch> taken(gpointer data) {
    const std::unique_ptr<std::shared_ptr<SoupFetch>> held(
        static_cast<std::shared_ptr<SoupFetch>*>(data));
    return *held;
  }

  void send() {
    if (over_) return;
    if (!isSecure(address_)) return fail({UpdateFault::insecure, address_});
    message_.reset(soup_message_new(SOUP_METHOD_GET, address_.c_str()));
    if (!message_) return fail({UpdateFault::unreachable, address_});
    soup_message_add_flags(message_.get(), SOUP_MESSAGE_NO_REDIRECT);
    soup_session_send_async(
        session_.get(), message_.get(), G_PRIORITY_DEFAULT, cancellable_.get(),
        [](GObject*, GAsyncResult* result, gpointer data) { taken(data)->sent(result); }, keep());
  }

  void sent(GAsyncResult* result) {
    GError* error = nullptr;
    stream_.reset(soup_session_send_finish(session_.get(), result, &error));
    const GErrorPtr owned(error);
    if (over_) return;
    if (!stream_) return fail(explained(*error, false));
    const SoupStatus status = soup_message_get_status(message_.get());
    SoupMessageHeaders* const headers = soup_message_get_response_headers(message_.get());
    if (SOUP_STATUS_IS_REDIRECTION(status)) return follow(headers);
    if (status != SOUP_STATUS_OK) {
      return fail({UpdateFault::refused, "status " + std::to_string(status)});
    }
    if (soup_message_headers_get_encoding(headers) == SOUP_ENCODING_CONTENT_LENGTH) {
      const goffset announced = soup_message_headers_get_content_length(headers);
      if (static_cast<std::uint64_t>(announced) > limit_) return fail({UpdateFault::tooLong, {}});
      announced_ = static_cast<std::uint64_t>(announced);
    }
    read();
  }

  void follow(SoupMessageHeaders* headers) {
    const char* const location = soup_message_headers_get_one(headers, "Location");
    const std::optional<std::string> next = redirection(address_, location ? location : "");
    if (!location || !next || ++redirections_ > mostRedirections) {
      return fail({UpdateFault::redirected, location ? location : ""});
    }
    address_ = *next;
    stream_.reset();
    send();
  }

  void read() {
    g_input_stream_read_async(
        stream_.get(), piece_.data(), piece_.size(), G_PRIORITY_DEFAULT, cancellable_.get(),
        [](GObject*, GAsyncResult* result, gpointer data) { taken(data)->hasRead(result); },
        keep());
  }

  void hasRead(GAsyncResult* result) {
    GError* error = nullptr;
    const gssize count = g_input_stream_read_finish(stream_.get(), result, &error);
    const GErrorPtr owned(error);
    if (over_) return;
    if (count < 0) return fail(explained(*error, true));
    if (count == 0) return finish();
    body_.append(piece_.data(), static_cast<std::size_t>(count));
    if (body_.size() > limit_) return fail({UpdateFault::tooLong, {}});
    handlers_.progress(body_.size());
    if (!over_) read();
  }

  void finish() {
    if (announced_ && body_.size() < *announced_) return fail({UpdateFault::truncated, {}});
    over_ = true;
    handlers_.finished(std::move(body_));
  }

  void fail(const UpdateFailure& failure) {
    abandon();
    handlers_.failed(failure);
  }

  static UpdateFailure explained(const GError& error, bool inside) {
    if (g_error_matches(&error, G_IO_ERROR, G_IO_ERROR_TIMED_OUT)) {
      return {UpdateFault::stalled, {}};
    }
    const bool endless = g_error_matches(&error, G_TLS_ERROR, G_TLS_ERROR_EOF);
    if (error.domain == G_TLS_ERROR && !endless) return {UpdateFault::untrusted, error.message};
    return {inside ? UpdateFault::truncated : UpdateFault::unreachable, error.message};
  }

  const GObjectPtr<SoupSession> session_;
  const std::uint64_t limit_;
  const UpdateTransport::Handlers handlers_;
  const GObjectPtr<GCancellable> cancellable_;
  GObjectPtr<SoupMessage> message_;
  GObjectPtr<GInputStream> stream_;
  std::string address_, body_;
  std::optional<std::uint64_t> announced_;
  std::array<char, pieceSize> piece_{};
  int redirections_ = 0;
  bool over_ = false;
};

class SoupTransfer : public UpdateTransport::Transfer {
 public:
  explicit SoupTransfer(std::shared_ptr<SoupFetch> fetch) : fetch_(std::move(fetch)) {}
  ~SoupTransfer() override { fetch_->abandon(); }
  SoupTransfer(const SoupTransfer&) = delete;
  SoupTransfer& operator=(const SoupTransfer&) = delete;

 private:
  const std::shared_ptr<SoupFetch> fetch_;
};

}  // namespace

SoupSession* SoupTransport::session() {
  if (session_) return session_.get();
  const auto patience = static_cast<guint>(options_.patience.count());
  session_.reset(soup_session_new_with_options("user-agent", "Quorin", "timeout", patience,
                                               "idle-timeout", 1u, nullptr));
  // Files are signed as they lie on the server: nothing is to be unpacked on the way.
  soup_session_remove_feature_by_type(session_.get(), SOUP_TYPE_CONTENT_DECODER);
  if (!options_.authorities.empty()) {
    const GObjectPtr<GTlsDatabase> trusted(
        g_tls_file_database_new(options_.authorities.c_str(), nullptr));
    soup_session_set_tls_database(session_.get(), trusted.get());
  }
  return session_.get();
}

std::unique_ptr<UpdateTransport::Transfer> SoupTransport::fetch(const std::string& url,
                                                                std::uint64_t limit,
                                                                Handlers handlers) {
  MainThread::require("SoupTransport::fetch");
  auto fetch = std::make_shared<SoupFetch>(session(), limit, std::move(handlers));
  fetch->begin(url);
  return std::make_unique<SoupTransfer>(std::move(fetch));
}

}  // namespace quorin
